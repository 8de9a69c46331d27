#pragma once

#include <cstdint>
#include <type_traits>

#include "process/grid.h"

namespace rastrel {

/// One twelfth: the eight neighbours weigh 1 each, the cell itself 4.
constexpr double kSmoothingFactor = 0.08333333333333333;

namespace plain {

/// The smoothed value of the cell at the rows' first column. Whole samples are summed in 32 bits,
/// which wrap, and the product is truncated toward zero.
template <class Sample>
[[nodiscard]] Sample Smooth(const ThreeRows<Sample>& at) {
    using Sum = std::conditional_t<std::is_same_v<Sample, float>, double, std::uint32_t>;
    const auto term = [](Sample sample) { return static_cast<Sum>(sample); };
    const Sum sum = term(at.above[-1]) + term(at.above[0]) + term(at.above[1]) +
                    term(at.middle[-1]) + term(at.middle[1]) + term(at.below[-1]) +
                    term(at.below[0]) + term(at.below[1]) + 4 * term(at.middle[0]);
    if constexpr (std::is_same_v<Sample, float>)
        return static_cast<float>(sum * kSmoothingFactor);
    else
        return static_cast<Sample>(static_cast<std::int32_t>(sum) * kSmoothingFactor);
}

}  // namespace plain
}  // namespace rastrel
