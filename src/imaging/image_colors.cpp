#include "imaging/image_colors.h"

#include <algorithm>

#include "imaging/color_operations.h"

namespace rastrel {

namespace {

/// Whether some pixel of up to 8 bits has an index for which the palette has no colour.
bool HasStrayIndices(const RasterImage& raster) {
    const std::size_t entries = raster.GetPalette()->Entries().size();
    if (entries >= std::size_t{1} << raster.Bits()) return false;
    std::vector<std::uint8_t> indices(static_cast<std::size_t>(raster.Width()));
    for (int y = 0; y < raster.Height(); ++y) {
        UnpackIndices(raster.Row(y), raster.Bits(), 0, indices);
        if (std::any_of(indices.begin(), indices.end(), [&](auto i) { return i >= entries; }))
            return true;
    }
    return false;
}

}  // namespace

bool ReadsByRows(const RasterImage& raster) {
    if (!raster.HasPlainRows()) return false;
    if (raster.Bits() > 16) return raster.GetPalette() == nullptr;
    return raster.Bits() <= 8 && raster.GetPalette() != nullptr && !HasStrayIndices(raster);
}

bool IsTrueColor(const RasterImage& raster) {
    return raster.Bits() > 16 && (raster.ColorType() & kColorTypePalette) == 0;
}

bool IsPalettised(const RasterImage& raster) {
    return raster.HasPlainRows() && raster.Bits() <= 8 &&
           (raster.ColorType() & kColorTypePalette) != 0 && raster.GetPalette() != nullptr;
}

std::uint8_t NearestIndices::Of(Color color) {
    const std::uint32_t key = std::uint32_t{color.red} << 16 | std::uint32_t{color.green} << 8 |
                              std::uint32_t{color.blue};
    Known& known = known_[(key ^ key >> 9u) % kKnownColors];
    if (known.key != key) known = {key, palette_.NearestIndex(color)};
    return known.index;
}

void ColorReader::Read(int x, int y, std::span<std::uint8_t> out,
                       std::span<std::uint8_t> has_color) {
    if (by_rows_) {
        reader_.Read(x, y, out);
        std::fill(has_color.begin(), has_color.end(), std::uint8_t{1});
        return;
    }
    const int stored_y = raster_.Height() - 1 - y;
    for (std::size_t i = 0; i < out.size() / 3; ++i) {
        const auto color = raster_.GetRgb(x + static_cast<int>(i), stored_y);
        if (!has_color.empty()) has_color[i] = color ? 1 : 0;
        if (!color) continue;
        out[3 * i] = color->blue;
        out[3 * i + 1] = color->green;
        out[3 * i + 2] = color->red;
    }
}

ColorWriter::ColorWriter(RasterImage& raster) : raster_(raster) {
    if (IsPalettised(raster)) nearest_.emplace(*raster.GetPalette());
}

void ColorWriter::Write(int x, int y, std::span<const std::uint8_t> colors,
                        std::span<const std::uint8_t> writes) {
    const std::size_t count = colors.size() / 3;
    const auto is_written = [writes](std::size_t i) { return writes.empty() || writes[i] != 0; };
    if (nearest_) {
        const auto row = raster_.PictureRow(y);
        indices_.resize(static_cast<std::size_t>(raster_.Width()));
        UnpackIndices(row, raster_.Bits(), 0, indices_);
        for (std::size_t i = 0; i < count; ++i) {
            if (is_written(i))
                indices_[static_cast<std::size_t>(x) + i] =
                    nearest_->Of(ColorAt(colors.data() + 3 * i));
        }
        PackIndices(indices_, raster_.Bits(), row);
        return;
    }
    if (!IsTrueColor(raster_)) {
        for (std::size_t i = 0; i < count; ++i) {
            if (is_written(i))
                raster_.SetRgb(x + static_cast<int>(i), raster_.Height() - 1 - y,
                               ColorAt(colors.data() + 3 * i));
        }
        return;
    }
    const auto pixel_bytes = static_cast<std::size_t>(raster_.Bits() / 8);
    std::uint8_t* out = raster_.PictureRow(y).data() + static_cast<std::size_t>(x) * pixel_bytes;
    if (writes.empty() && pixel_bytes == 3) {
        std::copy(colors.begin(), colors.end(), out);
        return;
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (is_written(i)) std::copy_n(colors.data() + 3 * i, 3, out + pixel_bytes * i);
    }
}

}  // namespace rastrel
