#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "display/draw_device.h"
#include "display/surface/chosen_bytes.h"

namespace rastrel {

// Pixels of a surface, four bytes each: blue, green, red, unused. Outputs may stand at any address
// and hold four bytes for every pixel.

/// Colours in the two forms that rows are made from.
struct SurfaceColors {
    explicit SurfaceColors(const DeviceColors& colors);

    DeviceColors pixels;
    /// The same by byte, the lowest first.
    std::array<std::array<std::uint8_t, 256>, 4> channels;
    bool uses_all_bytes;  ///< the unused one of some pixel is not 0
};

/// One to one: out.size() / 4 pixels from palette indices, or from blue, green, red bytes.
void BgrxFromIndices(const std::uint8_t* indices, const SurfaceColors& colors,
                     std::span<std::uint8_t> out);
void BgrxFrom24(const std::uint8_t* pixels, std::span<std::uint8_t> out);

/// Chosen ones: a pixel for each offset, in bytes from row on. 24-bit pixels are read with the byte
/// behind them. The groups are those of the same offsets, or none.
void ChooseFromIndices(const std::uint8_t* row, std::span<const std::uint32_t> offsets,
                       const ChosenBytes& groups, const SurfaceColors& colors,
                       std::span<std::uint8_t> out);
void ChooseFrom24(const std::uint8_t* row, std::span<const std::uint32_t> offsets,
                  const ChosenBytes& groups, std::span<std::uint8_t> out);
void ChooseFrom32(const std::uint8_t* row, std::span<const std::uint32_t> offsets,
                  std::span<std::uint8_t> out);

/// Combines pixels with those that are there; both have the same size.
void AndBytes(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out);
void OrBytes(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out);

}  // namespace rastrel
