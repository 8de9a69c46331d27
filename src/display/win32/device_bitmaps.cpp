#include "display/win32/device_bitmaps.h"

#include <optional>

#include "core/dib_palette.h"
#include "display/desktop.h"
#include "display/win32/device_contexts.h"
#include "platform/message.h"

namespace rastrel {

namespace {

/// Shows the user the system's own message for an error.
void ShowSystemMessage(DWORD error) {
    char* text = nullptr;
    constexpr DWORD kFlags =
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    // With the first flag the pointer to the text is stored where its characters else would be.
    FormatMessageA(kFlags, nullptr, error, 0, reinterpret_cast<LPSTR>(&text), 0, nullptr);
    ShowMessage(text != nullptr ? text : "The bitmap could not be made.");
    LocalFree(text);
}

/// The depth of a raster for a bitmap's: those that there are no rasters of go to the next.
int RasterBits(const BITMAP& bitmap) {
    const int bits = bitmap.bmBitsPixel * bitmap.bmPlanes;
    for (const int depth : {1, 4, 8, 24}) {
        if (bits <= depth) return depth;
    }
    return 32;
}

/// The colours that a palette device shows at the time.
OwnedPalette SystemPalette(const ScreenDevice& screen) {
    std::array<PALETTEENTRY, Palette::kMostEntries> entries = {};
    const UINT count = GetSystemPaletteEntries(screen.Get(), 0, entries.size(), entries.data());
    std::array<Color, Palette::kMostEntries> colors;
    std::ranges::transform(entries, colors.begin(), [](const PALETTEENTRY& entry) {
        return Color{entry.peRed, entry.peGreen, entry.peBlue};
    });
    return MakeGdiPalette(Palette(std::span(colors).first(count)));
}

Palette PaletteOf(const GdiBitmapInfo& info, int bits) {
    std::array<Color, Palette::kMostEntries> colors;
    std::ranges::transform(info.colors, colors.begin(), [](const RGBQUAD& color) {
        return Color{color.rgbRed, color.rgbGreen, color.rgbBlue};
    });
    return Palette(std::span(colors).first(std::size_t{1} << bits));
}

void MakeOpaque(const RasterImage& raster) {
    for (int y = 0; y < raster.Height(); ++y) {
        const auto row = raster.Row(y);
        for (std::size_t alpha = 3; alpha < row.size(); alpha += 4)
            row[alpha] = 255;
    }
}

/// Fills a raster of a bitmap's size from it.
bool ReadPixels(RasterImage& raster, HBITMAP bitmap) {
    const ScreenDevice screen;
    std::optional<SelectedPalette> selected;
    if (screen.HasPalette()) selected.emplace(screen.Get(), SystemPalette(screen));
    GdiBitmapInfo info = DescribeBitmap(raster, {});
    const auto lines = static_cast<UINT>(raster.Height());
    if (GetDIBits(screen.Get(), bitmap, 0, lines, raster.Pixels(), info.Get(), DIB_RGB_COLORS) !=
        raster.Height())
        return false;
    if (raster.Bits() <= 8) raster.SetPalette(PaletteOf(info, raster.Bits()));
    if (raster.Bits() == 32) MakeOpaque(raster);
    return true;
}

}  // namespace

OwnedBitmap MakeScreenBitmap(const RasterImage& raster) {
    const ScreenDevice screen;
    std::optional<SelectedPalette> selected;
    if (screen.HasPalette() && raster.Bits() <= 8) {
        if (const auto palette = CreateDibPalette(raster.Block()))
            selected.emplace(screen.Get(), MakeGdiPalette(*palette));
    }
    const GdiBitmapInfo info = DescribeBitmap(raster, TableColors(raster));
    OwnedBitmap bitmap(CreateDIBitmap(screen.Get(), &info.header, CBM_INIT, raster.Pixels(),
                                      info.Get(), DIB_RGB_COLORS));
    if (!bitmap) ShowSystemMessage(GetLastError());
    return bitmap;
}

RastrelBitmap MakeDeviceBitmap(const RasterImage& raster) {
    return MakeScreenBitmap(raster).release();
}

void ReadDeviceBitmap(ImageObject& image, RastrelBitmap bitmap) {
    BITMAP facts = {};
    if (GetObjectType(bitmap) != OBJ_BITMAP || GetObjectA(bitmap, sizeof facts, &facts) == 0)
        return;
    const int bits = RasterBits(facts);
    const int color_type = bits <= 8 ? kColorTypePalettised : -1;
    if (!image.Create(facts.bmWidth, facts.bmHeight, bits, color_type)) return;
    if (!ReadPixels(*image.Raster(), bitmap)) image.Adopt(kNoImageType, nullptr);
}

}  // namespace rastrel
