#pragma once

#include "core/raster_image.h"

namespace rastrel {

/// Gives every pixel of a raster one colour: the nearest palette entry, without a palette the grey
/// value, at 32 bits with alpha 255. Run-length data become plain rows.
void Fill(RasterImage& raster, Color color);

}  // namespace rastrel
