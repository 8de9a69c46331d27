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

void SwapRedBlue24(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out) {
    for (std::size_t at = 0; at + 3 <= pixels.size(); at += 3) {
        for (std::size_t channel = 0; channel < 3; ++channel)
            out[at + channel] = pixels[at + 2 - channel];
    }
}

void Bgr24FromRgba32(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out) {
    for (std::size_t pixel = 0; pixel < pixels.size() / 4; ++pixel) {
        for (std::size_t channel = 0; channel < 3; ++channel)
            out[3 * pixel + channel] = pixels[4 * pixel + 2 - channel];
    }
}

void Bgr24FromPlanes(const std::uint8_t* red, std::span<const std::uint8_t> green,
                     const std::uint8_t* blue, std::span<std::uint8_t> out) {
    for (std::size_t pixel = 0; pixel < green.size(); ++pixel) {
        out[3 * pixel] = blue[pixel];
        out[3 * pixel + 1] = green[pixel];
        out[3 * pixel + 2] = red[pixel];
    }
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

void TakeChannel(std::span<const std::uint8_t> pixels, std::size_t channel,
                 std::span<std::uint8_t> out) {
    for (std::size_t pixel = 0; pixel < out.size(); ++pixel)
        out[pixel] = pixels[3 * pixel + channel];
}

}  // namespace rastrel::plain
