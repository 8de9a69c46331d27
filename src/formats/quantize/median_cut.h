#pragma once

#include <cstddef>
#include <vector>

#include "formats/quantize/color_histogram.h"

namespace rastrel {

/// Median cut (P. Heckbert, "Color Image Quantization for Frame Buffer Display", 1982): the colours
/// are cut into as many boxes as are wanted, or as there are colours, each time at the middle of
/// its pixels in its longest direction, weighted by how bright the direction is; the box of the
/// most pixels first. Returns the boxes' mean colours, of the same scale as the colours.
[[nodiscard]] std::vector<ColorParts> MedianCut(std::vector<CountedColor> colors,
                                                std::size_t wanted);

}  // namespace rastrel
