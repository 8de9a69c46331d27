// Bitmap files that others made, good and broken: whatever they hold, nothing may break, and what
// loads must stand up to everything that can be done with an image.

#include <cstdlib>
#include <filesystem>

#include "support/images.h"

namespace rastrel_test {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> FilesBelow(const std::string& folder) {
    std::vector<std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.path().extension() == ".bmp") files.push_back(entry.path().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// Converts, crops, saves and reads an image again; every result must agree with the others.
void Exercise(const TestImage& image, const std::string& name) {
    const TestFolder folder;
    const int width = image.Width();
    const int height = image.Height();
    ASSERT_GT(width, 0) << name;
    ASSERT_GT(height, 0) << name;
    Bytes colors(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
    EXPECT_EQ(Rastrel_GetImageByte(image, colors.data(), 24, 0, 0, width, height), 1);
    for (const char* copy_name : {"copy.bmp", "copy.qvi"}) {
        const TestImage copy;
        ASSERT_EQ(Rastrel_Copy(copy, image), 1) << name;
        ASSERT_EQ(Rastrel_Save(copy, folder.Path(copy_name).c_str(), -1), 1) << name;
        ASSERT_EQ(Rastrel_Read(copy, folder.Path(copy_name).c_str(), -1), 1) << name;
        Bytes again(colors.size());
        Rastrel_GetImageByte(copy, again.data(), 24, 0, 0, width, height);
        EXPECT_EQ(copy.Depth(), image.Depth()) << name;
        // Run-length data end with their stated size, bit fields 12 bytes early: all others agree.
        const Bytes header(Rastrel_GetRawImage(image) - 40, Rastrel_GetRawImage(image));
        if (image.Depth() > 8 && U32At(header, 0) == 40 && U32At(header, 16) == 0) {
            EXPECT_EQ(again, colors) << name << " as " << copy_name;
        }
    }
    const TestImage part;
    ASSERT_EQ(Rastrel_Copy(part, image), 1);
    if (Rastrel_ExtractPortion(part, width / 3, height / 3, width, height) == 1) {
        EXPECT_EQ(part.Width(), width - width / 3) << name;
    }
    const TestImage expanded;
    ASSERT_EQ(Rastrel_Copy(expanded, image), 1);
    if (Rastrel_Conv8To24(expanded) == 1 && image.Depth() <= 8) {
        EXPECT_EQ(expanded.Depth(), 24) << name;
        Bytes again(colors.size());
        Rastrel_GetImageByte(expanded, again.data(), 24, 0, 0, width, height);
        EXPECT_EQ(again, colors) << name;
    }
}

TEST(Corpus, NothingBreaks) {
    const char* folder = std::getenv("RASTREL_CORPUS");
    ASSERT_NE(folder, nullptr) << "RASTREL_CORPUS names the folder of test images";
    const std::vector<std::string> files = FilesBelow(folder);
    ASSERT_GE(files.size(), 50u) << folder << " holds too few images to tell anything";
    std::size_t loaded = 0;
    for (const std::string& name : files) {
        const TestImage image;
        if (Rastrel_Read(image, name.c_str(), -1) != 1) continue;
        ++loaded;
        Exercise(image, name);
    }
    EXPECT_GE(loaded, files.size() / 3);
}

}  // namespace
}  // namespace rastrel_test
