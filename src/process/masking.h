#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace rastrel {

/// Input where the mask is not 0, else 0.
void Mask(const std::uint8_t* input, const std::uint8_t* mask, std::size_t count,
          std::uint8_t* out);

/// Three-byte pixels of the input where the mask is not 0 (inverted: where it is), else the colour:
/// blue, green, red.
void Mask24(const std::uint8_t* input, const std::uint8_t* mask, std::size_t count,
            const std::array<std::uint8_t, 3>& color, bool invert, std::uint8_t* out);

}  // namespace rastrel
