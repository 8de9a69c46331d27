#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "formats/quantize/color_parts.h"

namespace rastrel::simd {

// Vector forms, in the best instructions that the machine has.

/// Keys of pixels at a scale of at most 5 bits a part. The rescaling that halves a maximum of 2^n -
/// 1 makes (v - 1) / 2 of every v above 0, and so, several times over, (v - (2^k - 1)) / 2^k. Does
/// the first of count pixels and returns how many.
[[nodiscard]] std::size_t ShortKeys(const std::uint8_t* pixels, std::size_t count, int bits,
                                    std::uint16_t* keys);

/// Colours to be compared with, by part. Behind the last stand copies of the first, which no search
/// finds, up to a multiple of the longest vector's lanes.
struct ComparedColors {
    static constexpr std::size_t kMostColors = 256;
    static constexpr std::size_t kLongest = 16;

    alignas(64) std::array<std::array<std::int32_t, kMostColors>, 3> parts;
    std::size_t count;  ///< of the copies too
};

/// The distance to the nearest colour and, in the lowest byte, the first index that has it. The
/// distance is the sum of the parts' absolute or squared differences.
[[nodiscard]] std::uint32_t NearestByCityBlock(const ComparedColors& colors,
                                               const ColorParts& color);
[[nodiscard]] std::uint32_t NearestBySquares(const ComparedColors& colors, const ColorParts& color);

}  // namespace rastrel::simd
