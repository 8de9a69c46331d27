// Compositing: masks, brightness, blending and replacement of colours.

#include "imaging/compositing.h"

#include "api/calls.h"
#include "rastrel.h"

using namespace rastrel;

namespace {

/// The body of functions on two images that hold pixels.
template <class Use>
int WithTwoRasters(int first, int second, Use use) {
    return WithImages(
        0,
        [&use](const ImageObject& a, const ImageObject& b) {
            return a.IsValid() && b.IsValid() && use(*a.Raster(), *b.Raster()) ? 1 : 0;
        },
        first, second);
}

}  // namespace

int RASTREL_CALL Rastrel_Fusion(int first, int second, int key_flag, int red, int green, int blue,
                                double weight) {
    return Rastrel_FusionEx(first, second, key_flag, red, green, blue, weight,
                            static_cast<int>(BlendMode::kNormal));
}

int RASTREL_CALL Rastrel_FusionEx(int first, int second, int key_flag, int red, int green, int blue,
                                  double weight, int mode) {
    return WithTwoRasters(first, second, [=](RasterImage& a, const RasterImage& b) {
        return mode >= 0 && mode <= static_cast<int>(BlendMode::kAdd) &&
               Blend(a, b, KeyColor(key_flag, red, green, blue), weight,
                     static_cast<BlendMode>(mode));
    });
}

int RASTREL_CALL Rastrel_ApplyMask(int target, int mask, int invert, int red, int green, int blue) {
    return WithTwoRasters(target, mask, [=](RasterImage& a, const RasterImage& b) {
        return ApplyMask(a, b, invert != 0, ColorOf(red, green, blue));
    });
}

int RASTREL_CALL Rastrel_Luminance(int handle, int key_flag, int red, int green, int blue,
                                   int offset) {
    return WithImage(handle, 0, [=](const ImageObject& image) {
        if (!image.IsValid()) return 0;
        ShiftBrightness(*image.Raster(), KeyColor(key_flag, red, green, blue), offset);
        return 1;
    });
}

int RASTREL_CALL Rastrel_Modify(int target, int source, int red, int green, int blue, int new_red,
                                int new_green, int new_blue, int tolerance) {
    return WithTwoRasters(target, source, [=](RasterImage& a, const RasterImage& b) {
        return ReplaceColor(a, b, ColorOf(red, green, blue), tolerance,
                            ColorOf(new_red, new_green, new_blue));
    });
}
