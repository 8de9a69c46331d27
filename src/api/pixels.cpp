// Geometry, single pixels, and copies of many.

#include <cstdint>
#include <optional>

#include "api/calls.h"
#include "core/depth_conversion.h"
#include "core/fill.h"
#include "core/pixel_reader.h"
#include "core/portion.h"
#include "rastrel.h"

using namespace rastrel;

namespace {

/// Outputs may be null.
void StoreColor(Color color, uint8_t* red, uint8_t* green, uint8_t* blue) {
    if (red != nullptr) *red = color.red;
    if (green != nullptr) *green = color.green;
    if (blue != nullptr) *blue = color.blue;
}

}  // namespace

int RASTREL_CALL Rastrel_GetWidth(int handle) {
    return WithRaster(handle, 0, [](const RasterImage& raster) { return raster.Width(); });
}

int RASTREL_CALL Rastrel_GetHeight(int handle) {
    return WithRaster(handle, 0, [](const RasterImage& raster) { return raster.Height(); });
}

int RASTREL_CALL Rastrel_GetDepth(int handle) {
    return WithRaster(handle, 0, [](const RasterImage& raster) { return raster.Bits(); });
}

int RASTREL_CALL Rastrel_GetEffWidth(int handle) {
    return WithRaster(handle, 0, [](const RasterImage& raster) { return raster.EffectiveWidth(); });
}

uint8_t* RASTREL_CALL Rastrel_GetRawImage(int handle) {
    return WithRaster(handle, static_cast<uint8_t*>(nullptr),
                      [](const RasterImage& raster) { return raster.Pixels(); });
}

int RASTREL_CALL Rastrel_GetIndex(int handle, int x, int y) {
    return WithRaster(handle, 0, [=](const RasterImage& raster) { return raster.GetIndex(x, y); });
}

int RASTREL_CALL Rastrel_SetIndex(int handle, int x, int y, int index) {
    return WithRaster(handle, 0,
                      [=](RasterImage& raster) { return raster.SetIndex(x, y, index) ? 1 : 0; });
}

int RASTREL_CALL Rastrel_GetRGB(int handle, int x, int y, uint8_t* red, uint8_t* green,
                                uint8_t* blue) {
    return WithRaster(handle, 0, [=](const RasterImage& raster) {
        const std::optional<Color> color = raster.GetRgb(x, y);
        if (!color) return 0;
        StoreColor(*color, red, green, blue);
        return 1;
    });
}

int RASTREL_CALL Rastrel_SetRGB(int handle, int x, int y, int red, int green, int blue) {
    return WithRaster(handle, 0, [=](RasterImage& raster) {
        return raster.SetRgb(x, y, ColorOf(red, green, blue)) ? 1 : 0;
    });
}

int RASTREL_CALL Rastrel_Fill(int handle, int red, int green, int blue) {
    return WithRaster(handle, 0, [=](RasterImage& raster) {
        if (!raster.HasBlock()) return 0;
        Fill(raster, ColorOf(red, green, blue));
        return 1;
    });
}

int RASTREL_CALL Rastrel_GetTransparentColor(int handle, uint8_t* red, uint8_t* green,
                                             uint8_t* blue) {
    return WithRaster(handle, 0, [=](const RasterImage& raster) {
        StoreColor({}, red, green, blue);
        const Palette* palette = raster.GetPalette();
        const std::optional<Color> color =
            palette != nullptr ? palette->Entry(raster.TransparentIndex()) : std::nullopt;
        if (!color) return 0;
        StoreColor(*color, red, green, blue);
        return 1;
    });
}

int RASTREL_CALL Rastrel_GetImageByte(int handle, uint8_t* buffer, int depth, int x, int y,
                                      int width, int height) {
    return WithImage(handle, 0, [=](const ImageObject& image) {
        if (image.IsValid() && buffer != nullptr)
            CopyPixels(*image.Raster(), depth, {x, y, width, height}, buffer);
        return 1;
    });
}

int RASTREL_CALL Rastrel_ExtractPortion(int handle, int x, int y, int width, int height) {
    return WithRaster(handle, 0, [=](RasterImage& raster) {
        return ExtractPortion(raster, {x, y, width, height}) ? 1 : 0;
    });
}

int RASTREL_CALL Rastrel_Conv8To24(int handle) {
    return WithRaster(handle, 0,
                      [](RasterImage& raster) { return ExpandToTrueColor(raster) ? 1 : 0; });
}

int RASTREL_CALL Rastrel_Conv1To8(int handle) {
    return WithRaster(handle, 0, [](RasterImage& raster) { return WidenTo8Bits(raster) ? 1 : 0; });
}

int RASTREL_CALL Rastrel_Conv8To1(int handle) {
    return WithRaster(handle, 0, [](RasterImage& raster) { return NarrowTo1Bit(raster) ? 1 : 0; });
}
