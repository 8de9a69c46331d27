#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "display/draw_device.h"

namespace rastrel {

// Pixels of a surface, four bytes each: blue, green, red, unused. Outputs may stand at any address
// and hold four bytes for every pixel.

/// One to one: out.size() / 4 pixels from palette indices, or from blue, green, red bytes.
void BgrxFromIndices(const std::uint8_t* indices, const DeviceColors& colors,
                     std::span<std::uint8_t> out);
void BgrxFrom24(const std::uint8_t* pixels, std::span<std::uint8_t> out);

/// Chosen ones: a pixel for each offset, in bytes from row on. 24-bit pixels are read with the byte
/// behind them.
void ChooseFromIndices(const std::uint8_t* row, std::span<const std::uint32_t> offsets,
                       const DeviceColors& colors, std::span<std::uint8_t> out);
void ChooseFrom24(const std::uint8_t* row, std::span<const std::uint32_t> offsets,
                  std::span<std::uint8_t> out);
void ChooseFrom32(const std::uint8_t* row, std::span<const std::uint32_t> offsets,
                  std::span<std::uint8_t> out);

/// Combines pixels with those that are there; both have the same size.
void AndBytes(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out);
void OrBytes(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out);

}  // namespace rastrel
