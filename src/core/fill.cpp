#include "core/fill.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <vector>

#include "core/pixel_rows.h"

namespace rastrel {

namespace {

/// The bytes of one filled pixel, or of eight at 1 bit and two at 4, as often as needed.
std::vector<std::uint8_t> FillPattern(const RasterImage& raster, Color color) {
    const std::uint8_t grey = GreyValue(color);
    const Palette* palette = raster.GetPalette();
    const unsigned index = palette ? palette->NearestIndex(color) : 0;
    switch (raster.Bits()) {
        case 1:
            return {static_cast<std::uint8_t>((palette ? index != 0 : grey >= 128) ? 0xff : 0)};
        case 4:
            return {static_cast<std::uint8_t>((palette ? index & 15u : grey >> 4u) * 0x11u)};
        case 8:
            return {palette ? static_cast<std::uint8_t>(index) : grey};
        case 16: {
            const unsigned pixel = static_cast<unsigned>(color.red >> 3) << 10 |
                                   static_cast<unsigned>(color.green >> 3) << 5 |
                                   static_cast<unsigned>(color.blue >> 3);
            return {static_cast<std::uint8_t>(pixel), static_cast<std::uint8_t>(pixel >> 8)};
        }
        case 24:
            return {color.blue, color.green, color.red};
        default:
            return {color.blue, color.green, color.red, 255};
    }
}

/// Rows are repeated by copying as many of them at a time: they stay in the cache meanwhile.
constexpr std::size_t kTileBytes = std::size_t{128} << 10;

/// Fills rows with copies of the first.
void RepeatFirstRow(std::span<std::uint8_t> rows, std::size_t row_bytes) {
    const std::size_t most = std::max(kTileBytes / row_bytes, std::size_t{1}) * row_bytes;
    const bool streams = rows.size() >= kStreamedFrom;
    for (std::size_t filled = row_bytes; filled < rows.size();) {
        const auto tile = rows.first(std::min({filled, most, rows.size() - filled}));
        if (streams && tile.size() == most)
            StreamCopy(tile, &rows[filled]);
        else
            std::memcpy(&rows[filled], tile.data(), tile.size());
        filled += tile.size();
    }
}

}  // namespace

void Fill(RasterImage& raster, Color color) {
    if (!raster.HasBlock()) return;
    raster.DropRunLengthCoding();
    const std::vector<std::uint8_t> pattern = FillPattern(raster, color);
    const std::size_t used_bits =
        static_cast<std::size_t>(raster.Bits()) * static_cast<std::size_t>(raster.Width());
    const std::size_t used_bytes = (used_bits + 7) / 8;
    const auto first = raster.Row(0);
    for (std::size_t at = 0; at < used_bytes; ++at)
        first[at] = pattern[at % pattern.size()];
    RepeatFirstRow({raster.Pixels(), first.size() * static_cast<std::size_t>(raster.Height())},
                   first.size());
}

}  // namespace rastrel
