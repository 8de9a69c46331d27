#pragma once

#include "core/byte_source.h"
#include "core/raster_image.h"

namespace rastrel {

/// Writes a raster of plain rows as a JP2 file through OpenJPEG: one channel for images whose
/// palette is all grey and for those of up to 8 bits without one, else three. Quality 1 to 99 loses
/// detail, down to a peak signal-to-noise ratio of 25 to 45 dB; any other loses nothing.
[[nodiscard]] bool WriteJp2(ByteSink& sink, const RasterImage& raster);

}  // namespace rastrel
