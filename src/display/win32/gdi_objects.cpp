#include "display/win32/gdi_objects.h"

#include <algorithm>
#include <cstring>

namespace rastrel {

namespace {

constexpr WORD kPaletteVersion = 0x300;

/// LOGPALETTE with room for all entries.
struct LogicalPalette {
    WORD version = kPaletteVersion;
    WORD count = 0;
    std::array<PALETTEENTRY, Palette::kMostEntries> entries = {};
};

}  // namespace

OwnedPalette MakeGdiPalette(const Palette& palette) {
    LogicalPalette logical;
    const auto entries = palette.Entries();
    logical.count = static_cast<WORD>(entries.size());
    std::ranges::transform(entries, logical.entries.begin(), [](const Color& color) {
        return PALETTEENTRY{color.red, color.green, color.blue, 0};
    });
    return OwnedPalette(CreatePalette(reinterpret_cast<const LOGPALETTE*>(&logical)));
}

GdiBitmapInfo DescribeBitmap(const RasterImage& raster, const DeviceColors& colors) {
    GdiBitmapInfo info;
    info.header.biSize = sizeof info.header;
    info.header.biWidth = raster.Width();
    info.header.biHeight = raster.Height();
    info.header.biPlanes = 1;
    info.header.biBitCount = static_cast<WORD>(raster.Bits());
    // Bit fields go without: blocks keep the place of the masks, not the masks.
    info.header.biCompression = BI_RGB;
    const DibHeader stored = raster.Block().Header();
    if (IsRunLengthCoded(stored)) {
        const auto most = static_cast<std::uint32_t>(raster.Block().PixelData().size());
        info.header.biCompression = stored.compression;
        info.header.biSizeImage = std::min<DWORD>(stored.image_size, most);
    }
    if (raster.Bits() <= 8) {
        info.header.biClrUsed = DWORD{1} << raster.Bits();
        static_assert(sizeof(RGBQUAD) == sizeof(DeviceColors::value_type));
        std::memcpy(info.colors.data(), colors.data(), sizeof colors);
    }
    return info;
}

}  // namespace rastrel
