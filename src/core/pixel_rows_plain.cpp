#include "core/pixel_rows_plain.h"

#include <cstring>

#include "core/color.h"

namespace rastrel::plain {

void ExpandTo24(std::span<const std::uint8_t> indices, const ValueColors& colors,
                std::span<std::uint8_t> out) {
    std::uint8_t* to = out.data();
    for (const std::uint8_t index : indices) {
        std::memcpy(to, &colors.pixels[index], 3);
        to += 3;
    }
}

void Bgr24From32(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out) {
    const std::uint8_t* in = pixels.data();
    std::uint8_t* to = out.data();
    for (std::size_t left = pixels.size() / 4; left > 0; --left, in += 4, to += 3)
        std::memcpy(to, in, 3);
}

void Bgra32From24(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out) {
    const std::uint8_t* in = pixels.data();
    std::uint8_t* to = out.data();
    for (std::size_t left = pixels.size() / 3; left > 0; --left, in += 3, to += 4) {
        std::memcpy(to, in, 3);
        to[3] = 255;
    }
}

void GreyFromBgr(std::span<const std::uint8_t> pixels, std::size_t pixel_bytes,
                 std::span<std::uint8_t> out) {
    const std::uint8_t* in = pixels.data();
    for (std::uint8_t& grey : out) {
        grey = GreyValue({.red = in[2], .green = in[1], .blue = in[0]});
        in += pixel_bytes;
    }
}

}  // namespace rastrel::plain
