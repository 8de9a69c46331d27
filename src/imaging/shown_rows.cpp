#include "imaging/shown_rows.h"

#include <algorithm>

#include "core/color.h"

namespace rastrel {

namespace {

std::size_t ShownChannels(const RasterImage& raster) {
    if (IsGrey(raster)) return 1;
    return raster.Bits() == 32 ? 4 : 3;
}

std::uint8_t Rounded(float value) {
    return static_cast<std::uint8_t>(std::clamp(value + 0.5F, 0.0F, 255.0F));
}

}  // namespace

bool IsGrey(const RasterImage& raster) {
    if (raster.Bits() > 8) return false;
    const Palette* palette = raster.GetPalette();
    return palette == nullptr || std::ranges::all_of(palette->Entries(), [](Color color) {
               return color.red == color.green && color.green == color.blue;
           });
}

bool MakeAlike(const RasterImage& source, Size size, RasterImage& result) {
    DibHeader header = source.Block().Header();
    header.width = size.width;
    header.height = size.height;
    header.compression = kDibUncompressed;
    header.image_size = DibImageSize(header);
    if (header.image_size == 0) return false;
    DibBlock block = DibBlock::ForHeader(header);
    if (!block) return false;
    std::ranges::copy(source.Block().ColorTable(), block.ColorTable().begin());
    result.ReplaceBlock(std::move(block), source.ColorType());
    if (source.GetPalette() != nullptr) result.SetPalette(*source.GetPalette());
    result.SetTransparentIndex(source.TransparentIndex());
    result.SetQuality(source.Quality());
    return true;
}

bool MakeSmooth(const RasterImage& source, Size size, RasterImage& result) {
    const std::size_t channels = ShownChannels(source);
    const int color_type = channels == 4 ? source.ColorType() : -1;
    if (!result.Create(size.width, size.height, static_cast<int>(8 * channels), color_type))
        return false;
    if (channels == 1 && source.GetPalette() != nullptr) {
        result.ReplaceBlock(result.DetachBlock(), kColorTypePalettised);
        result.SetPalette(Palette::Grey());
    }
    result.SetQuality(source.Quality());
    return true;
}

ShownRows::ShownRows(const RasterImage& raster, const Rect& part)
    : raster_(raster), part_(part), channels_(ShownChannels(raster)) {
    bool is_stored = static_cast<int>(8 * channels_) == raster.Bits();
    if (channels_ == 1) {
        for (std::size_t value = 0; value < greys_.size(); ++value) {
            greys_[value] = ShownColor(raster, value).green;
            is_stored = is_stored && greys_[value] == value;
        }
    }
    if (is_stored) return;
    reader_.emplace(raster, static_cast<PixelForm>(channels_));
    row_.resize(Samples());
}

const std::uint8_t* ShownRows::Row(int y) {
    if (!reader_)
        return raster_.PictureRow(part_.y + y).data() +
               static_cast<std::size_t>(part_.x) * channels_;
    reader_->Read(part_.x, part_.y + y, row_);
    if (channels_ == 1) {
        for (std::uint8_t& value : row_)
            value = greys_[value];
    }
    return row_.data();
}

void LoadShownRow(const std::uint8_t* row, std::size_t channels, std::span<float> out) {
    if (channels != 4) {
        std::copy_n(row, out.size(), out.begin());
        return;
    }
    for (std::size_t i = 0; i < out.size(); i += 4) {
        const int alpha = row[i + 3];
        for (std::size_t c = 0; c < 3; ++c)
            out[i + c] = static_cast<float>(row[i + c] * alpha);
        out[i + 3] = static_cast<float>(alpha);
    }
}

void StoreShownRow(std::span<const float> row, std::size_t channels, std::span<std::uint8_t> out) {
    if (channels != 4) {
        std::transform(row.begin(), row.begin() + static_cast<std::ptrdiff_t>(out.size()),
                       out.begin(), Rounded);
        return;
    }
    for (std::size_t i = 0; i < out.size(); i += 4) {
        out[i + 3] = Rounded(row[i + 3]);
        for (std::size_t c = 0; c < 3; ++c)
            out[i + c] = out[i + 3] != 0 ? Rounded(row[i + c] / row[i + 3]) : std::uint8_t{0};
    }
}

}  // namespace rastrel
