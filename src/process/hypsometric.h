#pragma once

#include <cstddef>
#include <cstdint>

namespace rastrel {

/// Colours count pixels by their palette entries (256, red in the lowest byte) and blends the
/// colours' value with the shading's: weight 1 keeps the colours. Out takes blue, green and red of
/// each pixel. Nothing is allocated.
void ColorHypsometrically(const std::uint8_t* indices, const std::uint8_t* shading,
                          std::size_t count, double weight, const std::uint32_t* palette,
                          std::uint8_t* out);

}  // namespace rastrel
