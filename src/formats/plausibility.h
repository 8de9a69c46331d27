#pragma once

#include <cstdint>

namespace rastrel {

/// Memory is taken for pixels that a file promises only as far as it holds them, plus this.
constexpr std::uint64_t kMostMissingBytes = std::uint64_t{64} << 20;

}  // namespace rastrel
