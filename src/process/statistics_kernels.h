#pragma once

#include <cstddef>
#include <cstdint>

namespace rastrel::simd {

// Sums over a run of samples, in the best instructions that the machine has.

/// Of bytes and shorts: exact.
struct WholeSums {
    std::int64_t sum = 0;
    std::uint64_t squares = 0;
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
};

/// More samples than this at once could overflow 32-bit partial sums.
constexpr std::size_t kMostWholeSamples = 32768;

/// Count from 1 to kMostWholeSamples.
[[nodiscard]] WholeSums SumsOf(const std::uint8_t* samples, std::size_t count);
[[nodiscard]] WholeSums SumsOf(const std::int16_t* samples, std::size_t count);

/// Of the differences from a center.
struct Spread {
    double sum = 0;
    double squares = 0;
    double minimum = 0;  ///< of the samples themselves
    double maximum = 0;
};

/// Count from 1. Always added in the same order, in sixteen interleaved sums, whatever the
/// instructions: the results have the same bits on every machine. Where a sample is not finite,
/// nothing but squares' not being finite can be relied on.
[[nodiscard]] Spread SpreadAround(const std::int32_t* samples, std::size_t count, double center);
[[nodiscard]] Spread SpreadAround(const float* samples, std::size_t count, double center);

}  // namespace rastrel::simd
