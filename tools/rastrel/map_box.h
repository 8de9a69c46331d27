#pragma once

#include <cmath>

namespace rastrel_cli {

/// A rectangle in map units, y upward.
struct MapBox {
    double x_min = 0;
    double y_min = 0;
    double x_max = 0;
    double y_max = 0;

    [[nodiscard]] double Width() const { return x_max - x_min; }
    [[nodiscard]] double Height() const { return y_max - y_min; }
    [[nodiscard]] bool Overlaps(const MapBox& other) const {
        return x_min < other.x_max && other.x_min < x_max && y_min < other.y_max &&
               other.y_min < y_max;
    }
};

}  // namespace rastrel_cli
