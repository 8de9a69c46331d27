// Laying images into others by where they lie on the map.

#include "api/calls.h"
#include "imaging/mosaic.h"
#include "rastrel.h"

using namespace rastrel;

namespace {

int Lay(const ImageObject& target, const Placement& target_place, const ImageObject& source,
        const Placement& source_place, const MosaicLimits& limits) {
    return target.IsValid() && source.IsValid() &&
                   LayInto(*target.Raster(), target_place, *source.Raster(), source_place, limits)
               ? 1
               : 0;
}

}  // namespace

int RASTREL_CALL Rastrel_Mosaica(int target, int source, double target_x, double target_y,
                                 double target_size, double source_x, double source_y,
                                 double source_size, int key_flag, int red, int green, int blue) {
    return Rastrel_MosaicaWithClipping(target, source, target_x, target_y, target_size, source_x,
                                       source_y, source_size, key_flag, red, green, blue, nullptr);
}

int RASTREL_CALL Rastrel_MosaicaWithClipping(int target, int source, double target_x,
                                             double target_y, double target_size, double source_x,
                                             double source_y, double source_size, int key_flag,
                                             int red, int green, int blue, const double* clip) {
    return WithImages(
        0,
        [&](const ImageObject& to, const ImageObject& from) {
            MosaicLimits limits;
            limits.key = KeyColor(key_flag, red, green, blue);
            if (clip != nullptr) limits.clip = {clip[0], clip[1], clip[2], clip[3]};
            return Lay(to, {target_x, target_y, target_size}, from,
                       {source_x, source_y, source_size}, limits);
        },
        target, source);
}

int RASTREL_CALL Rastrel_MosaicaWithMask(int target, int source, int mask, double target_x,
                                         double target_y, double target_size, double source_x,
                                         double source_y, double source_size, int key_flag, int red,
                                         int green, int blue) {
    return WithImages(
        0,
        [&](const ImageObject& to, const ImageObject& from, const ImageObject& shape) {
            if (!shape.IsValid()) return 0;
            MosaicLimits limits;
            limits.key = KeyColor(key_flag, red, green, blue);
            limits.mask = shape.Raster();
            return Lay(to, {target_x, target_y, target_size}, from,
                       {source_x, source_y, source_size}, limits);
        },
        target, source, mask);
}
