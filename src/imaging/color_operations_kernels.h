#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "imaging/compositing.h"

namespace rastrel::simd {

// Operations on the first pixels, or bytes, of count, in the best instructions that the machine
// has; each returns how many it did. Pixels and colours are blue, green, red. Output may be an
// input.

using Bgr = std::array<std::uint8_t, 3>;

/// target where a mask pixel has no channel of 0 (inverted: all are 0), else the colour.
[[nodiscard]] std::size_t PaintMasked(const std::uint8_t* target, const std::uint8_t* mask,
                                      std::size_t count, bool invert, const Bgr& color,
                                      std::uint8_t* out);

/// Bytes plus an offset of -255 to 255, clamped.
[[nodiscard]] std::size_t ShiftBytes(const std::uint8_t* bytes, std::size_t count, int offset,
                                     std::uint8_t* out);

/// Bytes a (1 - weight) + f(a, b) weight in double precision, truncated and clamped, f as the mode
/// tells; a finite weight.
[[nodiscard]] std::size_t BlendBytes(const std::uint8_t* a, const std::uint8_t* b,
                                     std::size_t count, double weight, BlendMode mode,
                                     std::uint8_t* out);

/// Copies pixels of kept to out where the pixel of another run is the key.
[[nodiscard]] std::size_t KeepWhereKey(const std::uint8_t* other, std::size_t count, const Bgr& key,
                                       const std::uint8_t* kept, std::uint8_t* out);

/// The new colour where every channel of a pixel is within the tolerance of a colour, else the
/// pixel.
[[nodiscard]] std::size_t ReplaceNear(const std::uint8_t* pixels, std::size_t count,
                                      const Bgr& color, std::uint8_t tolerance,
                                      const Bgr& new_color, std::uint8_t* out);

}  // namespace rastrel::simd
