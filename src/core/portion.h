#pragma once

#include "core/geometry.h"
#include "core/raster_image.h"

namespace rastrel {

/// Crops a raster to a rectangle, clipped to it, then keeps every reduction-th column and row from
/// its upper left. Palette, transparent index, quality and colour type stay. False, with the raster
/// as it was, when nothing is left, reduction is below 1, the data are run-length coded, or memory
/// does not suffice.
[[nodiscard]] bool ExtractPortion(RasterImage& raster, Rect part, int reduction = 1);

}  // namespace rastrel
