#pragma once

#include "core/raster_image.h"

namespace rastrel {

// Conversions in place. Quality, resolution and file name stay; a failed conversion (no memory, or
// run-length data) leaves the raster as it was.

/// Expands a raster with a palette to 24 bits without one. 24 bits, or no palette: left, true.
[[nodiscard]] bool ExpandToTrueColor(RasterImage& raster);

/// Widens 1 or 4 bits to 8, index for index, the palette kept. 8 bits: left, true. Others: false.
[[nodiscard]] bool WidenTo8Bits(RasterImage& raster);

/// Narrows 8 bits to 1: index for index when only 0 and 1 are used; else black and white by the
/// pixels' grey value, white from 128 on. 1 bit: left, true. Others: false.
[[nodiscard]] bool NarrowTo1Bit(RasterImage& raster);

}  // namespace rastrel
