#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace rastrel::simd {

// Masks of the first pixels of count, in the best instructions that the machine has; each returns
// how many it did.

[[nodiscard]] std::size_t Mask(const std::uint8_t* input, const std::uint8_t* mask,
                               std::size_t count, std::uint8_t* out);
[[nodiscard]] std::size_t Mask24(const std::uint8_t* input, const std::uint8_t* mask,
                                 std::size_t count, const std::array<std::uint8_t, 3>& color,
                                 bool invert, std::uint8_t* out);

}  // namespace rastrel::simd
