// Palettes of images.

#include "api/calls.h"
#include "api/palette_arguments.h"
#include "rastrel.h"

using namespace rastrel;

int RASTREL_CALL Rastrel_SetPalette(int handle, int count, const uint8_t* red, const uint8_t* green,
                                    const uint8_t* blue) {
    return WithRaster(handle, 0, [=](RasterImage& raster) {
        const auto palette = PaletteFrom(count, red, green, blue);
        if (!palette) return 0;
        raster.SetPalette(*palette);
        return 1;
    });
}

int RASTREL_CALL Rastrel_GetPalette(int handle, int count, uint8_t* red, uint8_t* green,
                                    uint8_t* blue) {
    return WithRaster(handle, 0, [=](const RasterImage& raster) {
        const Palette* palette = raster.GetPalette();
        if (palette == nullptr || red == nullptr || green == nullptr || blue == nullptr) return 0;
        int stored = 0;
        for (const Color& color : palette->Entries()) {
            if (stored >= count) break;
            red[stored] = color.red;
            green[stored] = color.green;
            blue[stored] = color.blue;
            ++stored;
        }
        return stored;
    });
}

int RASTREL_CALL Rastrel_CopyPalette(int target, int source) {
    return WithImages(
        0,
        [](const ImageObject& to, const ImageObject& from) {
            if (to.Raster() == nullptr || from.Raster() == nullptr) return 0;
            const Palette* palette = from.Raster()->GetPalette();
            if (palette == nullptr) return 0;
            // A copy: the two may be one and the same.
            to.Raster()->SetPalette(Palette(*palette));
            return 1;
        },
        target, source);
}

int RASTREL_CALL Rastrel_SetGrayPalette(int handle) {
    return WithRaster(handle, 0, [](RasterImage& raster) {
        raster.SetPalette(Palette::Grey());
        return 1;
    });
}
