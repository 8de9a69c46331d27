#pragma once

#include <optional>
#include <span>

namespace rastrel {

/// A place in a picture, columns and rows from its upper left with pixel centres at whole numbers,
/// or on the map.
struct PlanePoint {
    double x = 0;
    double y = 0;
};

/// A place in a picture and where it lies on the map.
struct ControlPoint {
    PlanePoint pixel;
    PlanePoint map;
};

/// x = x_column * column + x_row * row + x_origin, and y likewise.
struct AffineMap {
    double x_column = 1;
    double x_row = 0;
    double x_origin = 0;
    double y_column = 0;
    double y_row = 1;
    double y_origin = 0;

    [[nodiscard]] PlanePoint Apply(PlanePoint point) const {
        return {x_column * point.x + x_row * point.y + x_origin,
                y_column * point.x + y_row * point.y + y_origin};
    }
};

/// Both ways between a picture and the map.
struct AffineSolution {
    AffineMap to_map;
    AffineMap to_pixel;
};

/// The solution with the least sum of squared distances on the map. None for fewer than three
/// points, for points on a line, in the picture or on the map, and for values that are not finite.
///
/// Normal equations of centred and scaled coordinates, which keeps them well conditioned whatever
/// the map's origin and unit.
[[nodiscard]] std::optional<AffineSolution> FitAffine(std::span<const ControlPoint> points);

}  // namespace rastrel
