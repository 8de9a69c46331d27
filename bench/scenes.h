#pragma once

#include <cstdint>
#include <vector>

namespace rastrel_bench {

/// The side of the pictures below.
constexpr int kSceneSide = 4096;

/// A picture like a photograph of hilly ground: kSceneSide x kSceneSide pixels of blue, green, red
/// bytes in two million colours.
[[nodiscard]] const std::vector<std::uint8_t>& Photograph();

/// The photograph in 216 colours, with ordered dithering: neighbours are hardly ever alike.
[[nodiscard]] const std::vector<std::uint8_t>& DitheredPhotograph();

/// A map in 12 colours: elevations in steps, with a grid of lines.
[[nodiscard]] const std::vector<std::uint8_t>& FlatMap();

}  // namespace rastrel_bench
