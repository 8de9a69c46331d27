#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

#include "core/geometry.h"

namespace rastrel {

/// North-up cells over the ground: columns to the right and rows downward from the upper-left
/// corner, all in map units.
struct CellGrid {
    double x_min = 0;
    double y_max = 0;
    double cell_size = 1;

    [[nodiscard]] double CenterX(std::int64_t column) const {
        return x_min + (static_cast<double>(column) + 0.5) * cell_size;
    }
    [[nodiscard]] double CenterY(std::int64_t row) const {
        return y_max - (static_cast<double>(row) + 0.5) * cell_size;
    }
};

/// How many cells a length takes: a last one that is not filled by half is left out. None when that
/// is not even one, or too many.
[[nodiscard]] inline std::optional<int> CountCells(double length, double cell_size) {
    const double cells = length * (1.0 / cell_size) + 0.4999999;
    if (!(cells >= 1 && cells < std::numeric_limits<std::int32_t>::max())) return std::nullopt;
    return static_cast<int>(cells);
}

/// What is added to a place, in pixels with centres at whole numbers, before its fraction is cut
/// off: half a pixel, less a little so that an edge belongs to the pixel before it.
constexpr double kNearestPixelShift = 0.499999999;

/// The pixel nearest to a place. As the fraction is cut off, places up to one and a half pixels
/// below zero still give 0. None for places that no picture reaches.
[[nodiscard]] inline std::optional<std::int64_t> NearestPixel(double place) {
    const double shifted = place + kNearestPixelShift;
    if (!(std::abs(shifted) < 4.0e9)) return std::nullopt;
    return static_cast<std::int64_t>(shifted);
}

}  // namespace rastrel
