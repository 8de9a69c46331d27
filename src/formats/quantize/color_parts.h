#pragma once

#include <array>
#include <cstdint>

namespace rastrel {

/// A colour as colour reduction sees it: the three bytes in the order of 24-bit pixels, blue first.
/// The first one counts as the most significant.
using ColorParts = std::array<std::uint8_t, 3>;

}  // namespace rastrel
