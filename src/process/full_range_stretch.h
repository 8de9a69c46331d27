#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>

namespace rastrel {

/// The bounds of a linear stretch.
struct StretchRange {
    double low = 1e300;
    double high = -1e300;
};

/// The least and greatest of the samples that are finite; low above high when there are none.
template <class Sample>
[[nodiscard]] StretchRange FiniteRange(std::span<const Sample> samples) {
    StretchRange range;
    for (const Sample sample : samples) {
        const auto value = static_cast<double>(sample);
        if (!std::isfinite(value)) continue;
        range.low = std::min(range.low, value);
        range.high = std::max(range.high, value);
    }
    return range;
}

/// 0 up to low, 255 from high on, (value - low) * 255 / (high - low) truncated between; 0 for what
/// is no number.
[[nodiscard]] inline std::uint8_t StretchToByte(double value, const StretchRange& range) {
    if (std::isnan(value) || value <= range.low) return 0;
    if (value >= range.high) return 255;
    return static_cast<std::uint8_t>((value - range.low) * 255 / (range.high - range.low));
}

}  // namespace rastrel
