#include "core/depth_conversion.h"

#include <algorithm>
#include <array>
#include <vector>

#include "core/converted_image.h"
#include "core/pixel_reader.h"
#include "core/pixel_rows.h"

namespace rastrel {

namespace {

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
        white[i] = GreyValue(ShownColor(raster, i)) >= 128 ? 1 : 0;
    }
    return white;
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

}  // namespace rastrel
