#pragma once

#include "core/raster_image.h"

namespace rastrel {

/// Makes the target an 8-bit raster with the indices of one whose data are run-length coded (RLE4
/// or RLE8, at most 8 bits). Pixels that the data leave out are 0. False without memory.
[[nodiscard]] bool DecodeRunLengths(const RasterImage& source, RasterImage& target);

}  // namespace rastrel
