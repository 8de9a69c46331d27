#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace rastrel {

/// What each of 256 pixel values looks like: blue in the lowest byte, then green, red and alpha, so
/// that its bytes in memory are those of a 32-bit pixel.
using ValueColors = std::array<std::uint32_t, 256>;

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
/// 16-bit pixels with five bits a channel, blue lowest; the top bit is unused.
void Bgr24From16(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out);

/// Four bytes a pixel, alpha 255; out holds 4 bytes for each.
void ExpandTo32(std::span<const std::uint8_t> indices, const ValueColors& colors,
                std::span<std::uint8_t> out);
void Bgra32From24(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out);

/// Grey values of pixels of pixel_bytes bytes that begin with blue, green, red.
void GreyFromBgr(std::span<const std::uint8_t> pixels, std::size_t pixel_bytes,
                 std::span<std::uint8_t> out);

}  // namespace rastrel
