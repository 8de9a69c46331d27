#pragma once

#include "core/geometry.h"
#include "core/raster_image.h"
#include "imaging/resampling.h"

namespace rastrel {

/// How an image of this kind is best brought from one size to another: palettes other than grey by
/// the nearest pixel, others by area when a side is reduced and bilinearly when none is.
[[nodiscard]] Resampling BestResampling(const RasterImage& source, Size from, Size to);

/// Puts into result, an image without a block, a part of the source, brought to another size. The
/// part lies inside the source, and its edge pixels go on outside it.
///
/// The nearest pixel keeps the depth and palette. Otherwise greys of up to 8 bits become 8 bits
/// with the grey palette, other palettes and 16 bits become 24 bits, and colours of 32 bits count
/// by their alpha. Sums are of single precision: a value is within 0.001 of the exact one before it
/// is rounded, halves up.
///
/// False, with result without a block, for run-length data, sizes below 1, averages over sides of
/// more than 2^28 samples, and without memory.
[[nodiscard]] bool Resize(const RasterImage& source, const Rect& part, Size size, Resampling way,
                          RasterImage& result);

}  // namespace rastrel
