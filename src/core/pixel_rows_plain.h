#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "core/pixel_rows.h"

namespace rastrel::plain {

// The row conversions told pixel by pixel: the truth for the vector forms, and what does the pixels
// that those leave over.

void ExpandTo24(std::span<const std::uint8_t> indices, const ValueColors& colors,
                std::span<std::uint8_t> out);
void Bgr24From32(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out);
void SwapRedBlue24(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out);
void Bgr24FromRgba32(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out);
void Bgr24FromPlanes(const std::uint8_t* red, std::span<const std::uint8_t> green,
                     const std::uint8_t* blue, std::span<std::uint8_t> out);
void Bgra32From24(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out);
void GreyFromBgr(std::span<const std::uint8_t> pixels, std::size_t pixel_bytes,
                 std::span<std::uint8_t> out);
void TakeChannel(std::span<const std::uint8_t> pixels, std::size_t channel,
                 std::span<std::uint8_t> out);

}  // namespace rastrel::plain
