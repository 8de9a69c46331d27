// Colour reduction, and GIF files from TIFF files.

#include "api/calls.h"
#include "api/palette_arguments.h"
#include "formats/quantize/conv24to8.h"
#include "imaging/tiff_to_gif.h"
#include "rastrel.h"

using namespace rastrel;

int RASTREL_CALL Rastrel_Conv24To8(int handle) {
    return WithRaster(handle, 0, [](RasterImage& raster) { return ReduceTo8Bits(raster) ? 1 : 0; });
}

int RASTREL_CALL Rastrel_Conv24To8_Precalcolata(int handle, int count, const uint8_t* red,
                                                const uint8_t* green, const uint8_t* blue) {
    return WithRaster(handle, 0, [=](RasterImage& raster) {
        const auto palette = PaletteFrom(count, red, green, blue);
        return palette && ReduceTo8Bits(raster, *palette) ? 1 : 0;
    });
}

int RASTREL_CALL Rastrel_Tiff2Gif(const char* tiff_name, const char* gif_name) {
    return Guarded(0, [=] {
        if (tiff_name == nullptr || gif_name == nullptr) return 0;
        return TiffToGif(tiff_name, gif_name) ? 1 : 0;
    });
}
