#pragma once

#include <cstddef>
#include <cstdint>

#include "display/surface/surface_rows.h"

namespace rastrel::simd {

// Vector forms, in the best instructions that the machine has. Each makes the first pixels of count
// and returns how many; the plain form does the rest. Nothing outside count pixels, or the row, is
// read or written.

[[nodiscard]] std::size_t BgrxFromIndices(const std::uint8_t* indices, const SurfaceColors& colors,
                                          std::size_t count, std::uint8_t* out);
[[nodiscard]] std::size_t BgrxFrom24(const std::uint8_t* pixels, std::size_t count,
                                     std::uint8_t* out);
/// All or none.
[[nodiscard]] std::size_t ChooseFromIndices(const std::uint8_t* row, const ChosenBytes& chosen,
                                            const SurfaceColors& colors, std::size_t count,
                                            std::uint8_t* out);
[[nodiscard]] std::size_t ChooseFrom24(const std::uint8_t* row, const ChosenBytes& chosen,
                                       std::size_t count, std::uint8_t* out);

/// Bytes, not pixels.
[[nodiscard]] std::size_t AndBytes(const std::uint8_t* bytes, std::size_t count, std::uint8_t* out);
[[nodiscard]] std::size_t OrBytes(const std::uint8_t* bytes, std::size_t count, std::uint8_t* out);

}  // namespace rastrel::simd
