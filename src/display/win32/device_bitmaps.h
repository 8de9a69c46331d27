#pragma once

#include "core/image_object.h"
#include "display/win32/gdi_objects.h"

namespace rastrel {

/// A bitmap of the screen's kind with the raster's pixels. Null, the user having been told why,
/// when the system makes none.
[[nodiscard]] OwnedBitmap MakeScreenBitmap(const RasterImage& raster);

}  // namespace rastrel
