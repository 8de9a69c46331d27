#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "process/hypsometric_plain.h"

namespace rastrel::simd {

/// A palette made ready for a blend, exactly and in single precision: channels times 255.
struct HypsometricTable {
    HypsometricTable(const std::uint32_t* palette, const Blend& blend_in);

    struct alignas(16) Single {
        float value, blue, green, red;
    };

    Blend blend;
    std::array<HypsometricEntry, 256> entries;
    std::array<Single, 256> singles;
};

/// How many pixels are colored at once.
constexpr std::size_t kHypsometricRun = 256;

/// Colours of at most kHypsometricRun pixels as words, blue in the lowest byte, in the best
/// instructions that the machine has; returns how many of the first pixels it did. The weight's
/// magnitude is at most 4: the error's bound supposes that.
[[nodiscard]] std::size_t ColorHypsometrically(const std::uint8_t* indices,
                                               const std::uint8_t* shading, std::size_t count,
                                               const HypsometricTable& table,
                                               std::uint32_t* pixels);

}  // namespace rastrel::simd
