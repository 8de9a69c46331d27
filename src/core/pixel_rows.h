#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace rastrel {

/// What each of 256 pixel values looks like, in the two forms that rows are made from.
struct ValueColors {
    using Table = std::array<std::uint8_t, 256>;

    /// Blue in the lowest byte, then green, red and alpha: in memory, the bytes of a 32-bit pixel.
    std::array<std::uint32_t, 256> pixels;
    /// The same by channel, without alpha.
    Table blue;
    Table green;
    Table red;

    void Set(std::size_t value, std::uint32_t pixel) {
        pixels[value] = pixel;
        blue[value] = static_cast<std::uint8_t>(pixel);
        green[value] = static_cast<std::uint8_t>(pixel >> 8);
        red[value] = static_cast<std::uint8_t>(pixel >> 16);
    }
};

/// Takes out.size() pixels of 1, 4 or 8 bits from column first of a row on, one byte for each.
void UnpackIndices(std::span<const std::uint8_t> row, int bits, int first,
                   std::span<std::uint8_t> out);
/// Puts indices into a row of 1, 4 or 8 bits a pixel from column 0 on; at 1 bit any index but 0
/// sets the bit. The unused bits of the last byte are cleared.
void PackIndices(std::span<const std::uint8_t> indices, int bits, std::span<std::uint8_t> row);

/// Three bytes a pixel (blue, green, red) from other kinds of pixels; out holds 3 bytes for each.
void ExpandTo24(std::span<const std::uint8_t> indices, const ValueColors& colors,
                std::span<std::uint8_t> out);
void Bgr24From32(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out);
/// Between the two orders of three-byte pixels: blue, green, red and red, green, blue.
void SwapRedBlue24(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out);
/// From pixels of four bytes that begin with red, green, blue.
void Bgr24FromRgba32(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out);
/// From three rows of one channel each, as long as green.
void Bgr24FromPlanes(const std::uint8_t* red, std::span<const std::uint8_t> green,
                     const std::uint8_t* blue, std::span<std::uint8_t> out);
/// 16-bit pixels with five bits a channel, blue lowest; the top bit is unused.
void Bgr24From16(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out);

/// Four bytes a pixel, alpha 255; out holds 4 bytes for each.
void ExpandTo32(std::span<const std::uint8_t> indices, const ValueColors& colors,
                std::span<std::uint8_t> out);
void Bgra32From24(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out);

/// Grey values of pixels of pixel_bytes (3 or 4) bytes that begin with blue, green, red.
void GreyFromBgr(std::span<const std::uint8_t> pixels, std::size_t pixel_bytes,
                 std::span<std::uint8_t> out);
/// One channel (0 blue, 1 green, 2 red) of 24-bit pixels.
void TakeChannel(std::span<const std::uint8_t> pixels, std::size_t channel,
                 std::span<std::uint8_t> out);

/// From this many bytes on, output is better written past the caches, which it would only flush.
constexpr std::size_t kStreamedFrom = std::size_t{16} << 20;

/// Copies bytes past the caches; to and from must not overlap.
void StreamCopy(std::span<const std::uint8_t> from, std::uint8_t* to);

}  // namespace rastrel
