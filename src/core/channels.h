#pragma once

#include "core/raster_image.h"

namespace rastrel {

/// Makes the target a 24-bit raster with the red channel of one raster, the green of another and
/// the blue of a third. False, with the target as it was, when their sizes differ, one has no plain
/// rows, or memory does not suffice.
[[nodiscard]] bool CombineChannels(RasterImage& target, const RasterImage& red,
                                   const RasterImage& green, const RasterImage& blue);

}  // namespace rastrel
