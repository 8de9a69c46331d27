#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include "process/grid.h"
#include "process/stretch_plain.h"

namespace rastrel {

// For all four sample types; nothing is allocated.

/// Of all samples: mean - k deviations and mean + k deviations.
template <class Sample>
[[nodiscard]] StretchBounds BoundsAroundMean(const Grid<Sample>& grid, double k);

/// The same, or for k <= 0 the minimum and maximum.
template <class Sample>
[[nodiscard]] StretchBounds BoundsAroundMeanOrExtremes(const Grid<Sample>& grid, double k);

/// The least and greatest of the samples that are finite; the first above the second when there are
/// none.
template <class Sample>
[[nodiscard]] StretchBounds FiniteExtremes(std::span<const Sample> samples) {
    StretchBounds bounds;
    for (const Sample sample : samples) {
        const auto value = static_cast<double>(sample);
        if (!std::isfinite(value)) continue;
        bounds.low = std::min(bounds.low, value);
        bounds.high = std::max(bounds.high, value);
    }
    return bounds;
}

/// 0 up to the lower bound, 255 from the upper one on, (value - low) * 255 / (high - low) truncated
/// between them, and 0 for what is not a number.
template <class Sample>
void Stretch(const Sample* samples, std::size_t count, const StretchBounds& bounds,
             std::uint8_t* out);

}  // namespace rastrel
