#pragma once

#include <cstdint>
#include <span>

#include "core/byte_source.h"

namespace rastrel {

/// Writes to a sink, which may throw when memory is exhausted, below a codec library that cannot be
/// thrown through.
[[nodiscard]] inline bool WriteQuietly(ByteSink& sink,
                                       std::span<const std::uint8_t> bytes) noexcept {
    try {
        return sink.Write(bytes);
    } catch (...) {
        return false;
    }
}

}  // namespace rastrel
