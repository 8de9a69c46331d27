#pragma once

#include <optional>
#include <string>

#include "core/dib_block.h"
#include "core/palette.h"
#include "core/raster_image.h"
#include "formats/quantize/color_histogram.h"

namespace rastrel {

/// An image's pixels as 8-bit indices, and their palette.
struct IndexedImage {
    DibBlock block;
    Palette palette;
};

/// Reduces a raster of more than 8 bits to at most maximum colours (256 at the most; 0 or less:
/// 255). An image of no more colours keeps them, sorted by blue, green and red, and status says
/// that nothing was lost; else they are chosen by median cut. None, with the reason as status, when
/// memory does not suffice.
[[nodiscard]] std::optional<IndexedImage> Conv24to8(const RasterImage& raster, int maximum,
                                                    std::string& status);

/// Counts the colours of a raster of more than 8 bits, from the top on.
void AddColors(const RasterImage& raster, ColorHistogram& histogram);

/// The palette of at most wanted colours that median cut chooses for counted pixels.
[[nodiscard]] Palette MedianCutPalette(const ColorHistogram& histogram, std::size_t wanted);

// Reductions in place. Quality, resolution and file name stay; a raster of 8 bits or fewer is left,
// true. False, with the raster as it was, when memory does not suffice.

/// To at most 255 colours of the image's own or chosen for it.
[[nodiscard]] bool ReduceTo8Bits(RasterImage& raster);

/// To a given palette, which has an entry: each pixel to the entry with the least sum of absolute
/// component differences, the first of equals.
[[nodiscard]] bool ReduceTo8Bits(RasterImage& raster, const Palette& palette);

}  // namespace rastrel
