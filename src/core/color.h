#pragma once

#include <cstdint>

namespace rastrel {

struct Color {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    friend bool operator==(const Color&, const Color&) = default;
};

struct Color32 {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    std::uint8_t alpha = 0;
};

/// The grey value of a colour, 0..255: the weights of ITU-R BT.601 in 256ths.
constexpr std::uint8_t GreyValue(Color color) {
    return static_cast<std::uint8_t>((77 * color.red + 150 * color.green + 29 * color.blue) >> 8);
}

}  // namespace rastrel
