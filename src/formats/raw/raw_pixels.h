#pragma once

#include "core/byte_source.h"
#include "core/dib_block.h"
#include "core/geometry.h"
#include "core/raster_image.h"
#include "formats/raw/raw_header.h"

namespace rastrel {

// Raw pixels: samples of 8 bits without anything between them, the top row first. One band is grey
// values or indices; of three bands the first is red, the second green, the third blue.

/// Reads a part that lies inside the image, and of it every reduction-th column and row from its
/// upper left. Of the file only the bytes are read that hold it; what a short file lacks is zero,
/// but a file that lacks more than kMostMissingBytes of the whole image is refused. Empty on
/// failure, and for pixels of other depths than 8 and 24 bits.
[[nodiscard]] DibBlock ReadRawPixels(ByteSource& source, const RawHeader& header, RawLayout layout,
                                     Rect part, int reduction);

/// Writes a raster's pixels, those of 1 and 4 bits index for index as bytes. False when the sink
/// fails, for other depths than 1, 4, 8 and 24 bits, and for run-length data.
[[nodiscard]] bool WriteRawPixels(ByteSink& sink, const RasterImage& raster, RawLayout layout);

/// Whether the raster's pixels can be written.
[[nodiscard]] bool HasRawPixels(const RasterImage& raster);

}  // namespace rastrel
