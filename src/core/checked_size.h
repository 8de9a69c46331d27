#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace rastrel {

/// Arithmetic on sizes that a file or a caller influences: additions and products in 64 bits that
/// remember whether one of them left the range, so that one question at the end covers them all.
class CheckedSize {
  public:
    /// The ceiling above which a result no longer counts as a size.
    explicit constexpr CheckedSize(std::uint64_t most = std::numeric_limits<std::size_t>::max())
        : most_(most) {}

    template <std::integral A, std::integral B>
    [[nodiscard]] constexpr std::uint64_t Mul(A a, B b) {
        std::uint64_t product = 0;
        const bool overflow = __builtin_mul_overflow(a, b, &product);
        return Keep(overflow, product);
    }
    template <std::integral A, std::integral B>
    [[nodiscard]] constexpr std::uint64_t Add(A a, B b) {
        std::uint64_t sum = 0;
        const bool overflow = __builtin_add_overflow(a, b, &sum);
        return Keep(overflow, sum);
    }
    /// True as long as no result was negative, wrapped round or above the ceiling.
    [[nodiscard]] constexpr bool Ok() const { return ok_; }

  private:
    constexpr std::uint64_t Keep(bool overflow, std::uint64_t value) {
        if (overflow || value > most_) ok_ = false;
        return ok_ ? value : 0;
    }

    std::uint64_t most_;
    bool ok_ = true;
};

}  // namespace rastrel
