#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace rastrel {

/// Chosen bytes of a row, in groups of 64 that lie within 256 bytes each: what byte permutations of
/// vectors can pick out of four registers.
struct ChosenBytes {
    static constexpr std::size_t kGroup = 64;
    static constexpr std::size_t kWindow = 256;

    struct Group {
        std::uint32_t window;  ///< where in the row the bytes that are looked at begin
        std::uint32_t pixel;   ///< the first pixel that the group makes
        std::uint64_t upper;   ///< a bit for each place that is 128 or more
        alignas(kGroup) std::array<std::uint8_t, kGroup> places;  ///< in the window
    };
    std::vector<Group> groups;  ///< none: the bytes lie too far apart, or there are too few
};

/// The bytes at these offsets of rows that have row_bytes; the order within a group is the one that
/// the vector form below wants.
[[nodiscard]] ChosenBytes GroupIndices(std::span<const std::uint32_t> offsets,
                                       std::size_t row_bytes);
/// Three bytes from each offset on, and a zero.
[[nodiscard]] ChosenBytes Group24(std::span<const std::uint32_t> offsets, std::size_t row_bytes);

}  // namespace rastrel
