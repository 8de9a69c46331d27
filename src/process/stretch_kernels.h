#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "process/stretch_plain.h"

namespace rastrel::simd {

// The plain form's bytes, in the best instructions that the machine has.

using ByteTable = std::array<std::uint8_t, 256>;

/// By the plain form's answers for all 256 bytes.
void StretchBytes(const std::uint8_t* samples, std::size_t count, const StretchBounds& bounds,
                  const ByteTable& table, std::uint8_t* out);

/// By single-precision estimates with a bound for their error, and the plain form where the bound
/// leaves a byte open. False, with nothing done, for bounds that the error's bound was not derived
/// for.
[[nodiscard]] bool Stretch(const std::int16_t* samples, std::size_t count,
                           const StretchBounds& bounds, std::uint8_t* out);
[[nodiscard]] bool Stretch(const std::int32_t* samples, std::size_t count,
                           const StretchBounds& bounds, std::uint8_t* out);
[[nodiscard]] bool Stretch(const float* samples, std::size_t count, const StretchBounds& bounds,
                           std::uint8_t* out);

}  // namespace rastrel::simd
