#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "formats/tiff/geotiff.h"
#include "formats/tiff/quickbird.h"
#include "formats/tiff/tiff_image.h"
#include "formats/tiff/tiff_layout.h"
#include "read_and_use.h"

namespace {

/// A folder in memory where the system has one. libtiff's messages would fill it: a folder stands
/// where their log would be.
const std::string& WorkFolder() {
    static const std::string folder = [] {
        std::string path = std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : "/tmp";
        path += "/rastrel-fuzz-" + std::to_string(getpid());
        std::filesystem::create_directories(path + "/RASTER.LOG");
        if (chdir(path.c_str()) != 0) std::abort();
        return path;
    }();
    return folder;
}

void WriteFile(const std::string& path, const std::uint8_t* data, std::size_t size) {
    const std::unique_ptr<std::FILE, decltype(&std::fclose)> file(std::fopen(path.c_str(), "wb"),
                                                                  &std::fclose);
    rastrel_fuzz::Require(file && std::fwrite(data, 1, size, file.get()) == size);
}

void ReadRows(const std::string& path) {
    const auto scene = rastrel::QuickBirdScene::Open(path);
    const auto file = rastrel::TiffInput::Open(path);
    rastrel::ImageInfo info;
    if (!scene || !file || !ReadTiffInfo(*file, info) || info.width > 65536) return;
    std::vector<std::uint8_t> row(static_cast<std::size_t>(info.width) * 3);
    for (int i = 0; i < 64 && scene->ReadRow(row.data(), nullptr, nullptr, nullptr); ++i) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    WorkFolder();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace rastrel;
    const std::string path = WorkFolder() + "/input.tif";
    WriteFile(path, data, size);
    ReadRows(path);
    ImageInfo info;
    TiffImage image;
    const bool has_info = image.ReadInfo(path, info);
    if (!has_info) return 0;
    TiffImage part;
    if (part.ReadPartReduced(path, {1, 2, 40, 30}, 3))
        rastrel_fuzz::Require(part.Width() <= 14 && part.Height() <= 10);
    // Larger ones are zeros for the most part: they would only slow the search down.
    if (std::uint64_t{static_cast<unsigned>(info.width)} * static_cast<unsigned>(info.height) >
            (1u << 20) ||
        !image.Read(path))
        return 0;
    rastrel_fuzz::Require(info.width == image.Width() && info.height == image.Height());
    // What was read can be written in any compression, and gives the same pixels where none is
    // lost.
    TiffImage again;
    for (const int compression : {COMPRESSION_NONE, COMPRESSION_LZW}) {
        image.SetQuality(compression);
        rastrel_fuzz::Require(image.Write(WorkFolder() + "/output.tif") &&
                              again.Read(WorkFolder() + "/output.tif") &&
                              again.PixelSize() == image.PixelSize());
        for (int y = 0; y < image.Height(); ++y) {
            const auto used = static_cast<std::size_t>(image.Width() * image.Bits() / 8);
            rastrel_fuzz::Require(
                std::ranges::equal(image.Row(y).first(used), again.Row(y).first(used)));
        }
    }
    return 0;
}
