// Images brought to another size.

#include "api/calls.h"
#include "imaging/resize.h"
#include "rastrel.h"

using namespace rastrel;

namespace {

constexpr int kAutomatic = -1;
constexpr int kModes = 4;

int ResizePart(int target, int source, std::optional<Rect> part, Size size, int mode) {
    if (mode < kAutomatic || mode >= kModes) return 0;
    return MakeImageFrom(target, source, [&](const RasterImage& raster, RasterImage& result) {
        const Rect inside =
            Clip(part.value_or(Rect{0, 0, raster.Width(), raster.Height()}), raster.PixelSize());
        const Resampling way = mode == kAutomatic
                                   ? BestResampling(raster, {inside.width, inside.height}, size)
                                   : static_cast<Resampling>(mode);
        return Resize(raster, inside, size, way, result);
    });
}

}  // namespace

int RASTREL_CALL Rastrel_Resize(int target, int source, int width, int height, int mode) {
    return ResizePart(target, source, std::nullopt, {width, height}, mode);
}

int RASTREL_CALL Rastrel_ResizeEx(int target, int source, int x, int y, int width, int height,
                                  int new_width, int new_height) {
    return ResizePart(target, source, Rect{x, y, width, height}, {new_width, new_height},
                      kAutomatic);
}
