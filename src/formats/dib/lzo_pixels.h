#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "platform/global_memory.h"

namespace rastrel {

/// Bytes compressed by LZO1X-1.
struct LzoPixels {
    GlobalMemory memory;
    std::size_t size = 0;

    [[nodiscard]] std::span<const std::uint8_t> Bytes() const { return {memory.data(), size}; }
};

/// What incompressible bytes can grow to at most, by the library's documentation.
[[nodiscard]] constexpr std::size_t MostLzoBytes(std::size_t bytes) {
    return bytes + bytes / 16 + 64 + 3;
}

/// Compresses pixels as one LZO1X-1 stream; empty when memory or the library fails.
[[nodiscard]] LzoPixels CompressLzo(std::span<const std::uint8_t> pixels);

/// Decompresses an LZO1X stream into out, as far as it is sound and fits. Damage is not told: what
/// was decoded up to there stays.
void DecompressLzo(std::span<const std::uint8_t> stream, std::span<std::uint8_t> out);

}  // namespace rastrel
