#pragma once

#include <cstddef>
#include <cstdint>

#include "process/grid.h"

namespace rastrel::simd {

// The plain form's samples, in the best instructions that the machine has. The rows begin at their
// first column; the count cells from the second one on are written, out being the first of them.

void SmoothRow(const ThreeRows<std::uint8_t>& rows, std::size_t count, std::uint8_t* out);
void SmoothRow(const ThreeRows<std::int16_t>& rows, std::size_t count, std::int16_t* out);
void SmoothRow(const ThreeRows<std::int32_t>& rows, std::size_t count, std::int32_t* out);
void SmoothRow(const ThreeRows<float>& rows, std::size_t count, float* out);

}  // namespace rastrel::simd
