#pragma once

#include <cstdint>
#include <span>

#include "formats/quantize/color_parts.h"
#include "formats/quantize/quantize_simd.h"

namespace rastrel {

/// What is summed over the parts of two colours to tell how far they are from each other.
enum class ColorDistance {
    kCityBlock,  ///< absolute differences
    kSquares,    ///< squared differences
};

/// Finds, of 1 to 256 colours, the one nearest to another, the first of equals.
class NearestColor {
  public:
    NearestColor(std::span<const ColorParts> colors, ColorDistance distance);

    [[nodiscard]] std::uint8_t Find(const ColorParts& color) const {
        return static_cast<std::uint8_t>(distance_ == ColorDistance::kCityBlock
                                             ? simd::NearestByCityBlock(colors_, color)
                                             : simd::NearestBySquares(colors_, color));
    }

  private:
    simd::ComparedColors colors_;
    ColorDistance distance_;
};

}  // namespace rastrel
