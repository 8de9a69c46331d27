#include "imaging/tiff_to_gif.h"

#include "core/depth_conversion.h"
#include "formats/gif/gif_image.h"
#include "formats/quantize/conv24to8.h"
#include "formats/tiff/tiff_image.h"

namespace rastrel {

namespace {

/// The palette is made before the pixels' indices, so that the image stands in memory once, and
/// besides it only what it becomes.
bool ReduceColors(RasterImage& raster) {
    ColorHistogram histogram;
    AddColors(raster, histogram);
    return ReduceTo8Bits(raster, MedianCutPalette(histogram, Palette::kMostEntries));
}

}  // namespace

bool TiffToGif(const std::string& tiff_name, const std::string& gif_name) {
    TiffImage tiff;
    if (!tiff.Read(tiff_name)) return false;
    if (!(tiff.Bits() > 8 ? ReduceColors(tiff) : WidenTo8Bits(tiff))) return false;
    GifImage gif;
    gif.TakeOver(tiff);
    return gif.Write(gif_name);
}

}  // namespace rastrel
