#include "core/depth_conversion.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "core/pixel_reader.h"
#include "core/pixel_rows.h"

namespace rastrel {

namespace {

/// An image of the raster's size and resolution at another depth, to be filled row by row; without
/// a block when memory does not suffice.
class ConvertedImage : public RasterImage {
  public:
    ConvertedImage(const RasterImage& raster, int bits) {
        DibBlock block = DibBlock::Create(raster.Width(), raster.Height(), bits);
        if (!block) return;
        CopyResolution(raster.Block(), block);
        ReplaceBlock(std::move(block));
    }
};

bool UsesOnlyIndices0And1(const RasterImage& raster) {
    const auto width = static_cast<std::size_t>(raster.Width());
    for (int y = 0; y < raster.Height(); ++y) {
        std::uint8_t seen = 0;
        for (const std::uint8_t index : raster.Row(y).first(width))
            seen |= index;
        if (seen > 1) return false;
    }
    return true;
}

/// For every index whether it is to be white.
std::array<std::uint8_t, 256> WhiteIndices(const RasterImage& raster) {
    std::array<std::uint8_t, 256> white = {};
    for (std::size_t i = 0; i < white.size(); ++i) {
        const auto grey = static_cast<std::uint8_t>(i);
        const Palette* palette = raster.GetPalette();
        const Color color = palette ? palette->Entry(static_cast<int>(i)).value_or(Color{})
                                    : Color{grey, grey, grey};
        white[i] = GreyValue(color) >= 128 ? 1 : 0;
    }
    return white;
}

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

bool ExpandToTrueColor(RasterImage& raster) {
    if (!raster.HasBlock()) return false;
    if (raster.Bits() == 24 || raster.GetPalette() == nullptr) return true;
    if (!raster.HasPlainRows()) return false;
    ConvertedImage converted(raster, 24);
    if (!converted.HasBlock()) return false;
    const std::size_t run_bytes = static_cast<std::size_t>(raster.Width()) * 3;
    PixelReader reader(raster, PixelForm::kBgr,
                       run_bytes * static_cast<std::size_t>(raster.Height()));
    for (int y = 0; y < raster.Height(); ++y)
        reader.Read(0, y, converted.PictureRow(y).first(run_bytes));
    raster.RemovePalette();
    raster.ReplaceBlock(converted.DetachBlock(), kColorTypeColor);
    raster.SetTransparentIndex(-1);
    return true;
}

bool WidenTo8Bits(RasterImage& raster) {
    if (raster.Bits() == 8) return true;
    if ((raster.Bits() != 1 && raster.Bits() != 4) || !raster.HasPlainRows()) return false;
    ConvertedImage converted(raster, 8);
    if (!converted.HasBlock()) return false;
    const auto width = static_cast<std::size_t>(raster.Width());
    for (int y = 0; y < raster.Height(); ++y)
        UnpackIndices(raster.Row(y), raster.Bits(), 0, converted.Row(y).first(width));
    raster.ReplaceBlock(converted.DetachBlock());
    return true;
}

bool NarrowTo1Bit(RasterImage& raster) {
    if (raster.Bits() == 1) return true;
    if (raster.Bits() != 8 || !raster.HasPlainRows()) return false;
    ConvertedImage converted(raster, 1);
    if (!converted.HasBlock()) return false;
    const bool keeps_indices = UsesOnlyIndices0And1(raster);
    const std::array<std::uint8_t, 256> white = WhiteIndices(raster);
    const auto width = static_cast<std::size_t>(raster.Width());
    std::vector<std::uint8_t> narrowed(width);
    for (int y = 0; y < raster.Height(); ++y) {
        const auto indices = raster.Row(y).first(width);
        std::transform(indices.begin(), indices.end(), narrowed.begin(),
                       [&](std::uint8_t index) { return keeps_indices ? index : white[index]; });
        PackIndices(narrowed, 1, converted.Row(y));
    }
    const int transparent = raster.TransparentIndex();
    if (keeps_indices && raster.GetPalette() != nullptr) {
        const auto entries = raster.GetPalette()->Entries();
        raster.SetPalette(Palette(entries.first(std::min<std::size_t>(entries.size(), 2))));
    } else if (!keeps_indices) {
        constexpr std::array<Color, 2> kBlackAndWhite = {{{0, 0, 0}, {255, 255, 255}}};
        raster.SetPalette(Palette(kBlackAndWhite));
    }
    raster.ReplaceBlock(converted.DetachBlock());
    raster.SetTransparentIndex(keeps_indices && transparent <= 1 ? transparent : -1);
    return true;
}

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
