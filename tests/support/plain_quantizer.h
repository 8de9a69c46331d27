#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace rastrel_test {

/// What reducing an image to a few colours gives.
struct PlainReduction {
    std::vector<std::array<std::uint8_t, 3>> palette;  ///< blue, green, red
    std::vector<std::uint8_t> indices;
};

/// Reduces pixels of blue, green and red bytes to at most wanted colours as the algorithm is told:
/// with chains of colours for a table, counting anew at each scale, sorting box by box. The truth
/// that the library's form is held to, and the form that it is measured against.
[[nodiscard]] PlainReduction ReducePlainly(const std::vector<std::uint8_t>& pixels,
                                           std::size_t wanted);

/// The same to a given palette, nearest by city block.
[[nodiscard]] std::vector<std::uint8_t> MapPlainly(
    const std::vector<std::uint8_t>& pixels,
    const std::vector<std::array<std::uint8_t, 3>>& palette);

/// The colours that median cut chooses for an image of any number of colours.
[[nodiscard]] std::vector<std::array<std::uint8_t, 3>> ChoosePlainly(
    const std::vector<std::uint8_t>& pixels, std::size_t wanted);

}  // namespace rastrel_test
