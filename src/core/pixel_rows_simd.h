#pragma once

#include <cstddef>
#include <cstdint>

#include "core/pixel_rows.h"

namespace rastrel::simd {

// Vector forms of the row conversions, in the best instructions that the machine has. Each does the
// first pixels of count and returns how many; the plain form does the rest. Inputs and outputs may
// stand at any address and must not overlap; nothing outside count pixels is read or written.

[[nodiscard]] std::size_t ExpandTo24(const std::uint8_t* indices, const ValueColors& colors,
                                     std::size_t count, std::uint8_t* out);
[[nodiscard]] std::size_t Bgr24From32(const std::uint8_t* pixels, std::size_t count,
                                      std::uint8_t* out);
[[nodiscard]] std::size_t SwapRedBlue24(const std::uint8_t* pixels, std::size_t count,
                                        std::uint8_t* out);
[[nodiscard]] std::size_t Bgr24FromRgba32(const std::uint8_t* pixels, std::size_t count,
                                          std::uint8_t* out);
[[nodiscard]] std::size_t Bgr24FromPlanes(const std::uint8_t* red, const std::uint8_t* green,
                                          const std::uint8_t* blue, std::size_t count,
                                          std::uint8_t* out);
[[nodiscard]] std::size_t Bgra32From24(const std::uint8_t* pixels, std::size_t count,
                                       std::uint8_t* out);
[[nodiscard]] std::size_t GreyFromBgr24(const std::uint8_t* pixels, std::size_t count,
                                        std::uint8_t* out);
[[nodiscard]] std::size_t GreyFromBgra32(const std::uint8_t* pixels, std::size_t count,
                                         std::uint8_t* out);
[[nodiscard]] std::size_t TakeChannel(const std::uint8_t* pixels, std::size_t channel,
                                      std::size_t count, std::uint8_t* out);

/// Copies all of count bytes past the caches.
void StreamCopy(const std::uint8_t* from, std::size_t count, std::uint8_t* to);

}  // namespace rastrel::simd
