#include "formats/tiff/quickbird.h"

#include <algorithm>
#include <cstring>

#include "core/checked_size.h"
#include "core/dib_block.h"
#include "core/raster_image.h"
#include "formats/tiff/tiff_layout.h"

namespace rastrel {

namespace {

constexpr std::uint16_t kSampleBits = 16;
constexpr std::uint16_t kSamples = 4;

}  // namespace

std::unique_ptr<QuickBirdScene> QuickBirdScene::Open(const std::string& name) {
    std::unique_ptr<QuickBirdScene> scene(new QuickBirdScene);
    scene->file_ = TiffInput::Open(name);
    ImageInfo info;
    if (!scene->file_ || !ReadTiffInfo(*scene->file_, info)) return nullptr;
    const TiffInput& file = *scene->file_;
    if (file.Field<std::uint16_t>(TIFFTAG_BITSPERSAMPLE) != kSampleBits ||
        file.Field<std::uint16_t>(TIFFTAG_SAMPLESPERPIXEL) != kSamples ||
        TIFFIsTiled(file.Tiff()) != 0)
        return nullptr;
    scene->size_ = {info.width, info.height};
    const bool from_top = file.Field<std::uint16_t>(TIFFTAG_ORIENTATION) == ORIENTATION_TOPLEFT;
    scene->row_ = from_top ? info.height - 1 : 0;
    scene->step_ = from_top ? -1 : 1;
    scene->separate_ = file.Field<std::uint16_t>(TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
    scene->rows_in_strip_ =
        std::min<std::int64_t>(file.Field<std::uint32_t>(TIFFTAG_ROWSPERSTRIP), info.height);
    scene->row_bytes_ = TIFFScanlineSize64(file.Tiff());
    // A damaged file's rows could be shorter than its pixels.
    const std::uint64_t samples = scene->separate_ ? 1 : kSamples;
    if (scene->rows_in_strip_ < 1 ||
        scene->row_bytes_ != 2 * samples * static_cast<std::uint64_t>(info.width))
        return nullptr;
    CheckedSize size(kMostBlockBytes);
    const std::uint64_t bytes = size.Mul(scene->row_bytes_, scene->rows_in_strip_);
    if (!size.Ok()) return nullptr;
    for (GlobalMemory& strip : scene->strips_) {
        strip = GlobalMemory(static_cast<std::size_t>(bytes));
        if (!strip) return nullptr;
    }
    return scene;
}

bool QuickBirdScene::DecodeStrip() {
    const auto row = static_cast<std::uint32_t>(row_);
    const auto rows = std::min(rows_in_strip_, size_.height - row_);
    const auto bytes = static_cast<tmsize_t>(row_bytes_ * static_cast<std::uint64_t>(rows));
    for (std::uint16_t band = 0; band < kBands; ++band) {
        const std::uint32_t strip = TIFFComputeStrip(file_->Tiff(), row, band);
        if (TIFFReadEncodedStrip(file_->Tiff(), strip, strips_[band].data(), bytes) != bytes)
            return false;
    }
    return true;
}

bool QuickBirdScene::ReadRow(std::uint8_t* row, Table red, Table green, Table blue) {
    if (row_ < 0 || row_ >= size_.height) return false;
    const std::int64_t in_strip = row_ % rows_in_strip_;
    if (in_strip == 0 && !DecodeStrip()) return false;
    const bool through_tables = red != nullptr && green != nullptr && blue != nullptr;
    const std::array<Table, kBands> tables = {blue, green, red};
    const std::size_t from_pixel_bytes = separate_ ? 2 : 2 * kSamples;
    for (std::size_t band = 0; band < kBands; ++band) {
        const std::uint8_t* in =
            strips_[band].data() + row_bytes_ * static_cast<std::uint64_t>(in_strip);
        if (!separate_) in += 2 * band;
        std::uint8_t* out = row + band;
        for (int x = 0; x < size_.width; ++x, in += from_pixel_bytes, out += kBands) {
            std::uint16_t sample = 0;
            std::memcpy(&sample, in, sizeof sample);
            const auto byte = static_cast<std::uint8_t>(sample >> 3);
            *out = through_tables ? tables[band][byte] : byte;
        }
    }
    row_ += step_;
    return true;
}

}  // namespace rastrel
