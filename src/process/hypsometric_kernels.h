#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "process/hypsometric_plain.h"

namespace rastrel::simd {

/// How many pixels are coloured at once.
constexpr std::size_t kHypsometricRun = 256;

/// Colours of at most kHypsometricRun pixels as words, blue in the lowest byte, in the best
/// instructions that the machine has; returns how many of the first pixels it did. The weight must
/// not be so large that products of it are infinite.
[[nodiscard]] std::size_t ColorHypsometrically(const std::uint8_t* indices,
                                               const std::uint8_t* shading, std::size_t count,
                                               const HypsometricTable& table,
                                               std::uint32_t* pixels);

}  // namespace rastrel::simd
