#include "imaging/affine_fit.h"

#include <algorithm>
#include <cmath>

namespace rastrel {

namespace {

/// Area over squared extent below which points count as lying on a line: well above rounding.
constexpr double kLeastSpread = 1e-14;

/// The centre of some points, and their greatest distance from it along an axis.
struct Frame {
    PlanePoint center;
    double scale = 0;

    [[nodiscard]] PlanePoint ToUnit(PlanePoint point) const {
        return {(point.x - center.x) / scale, (point.y - center.y) / scale};
    }
};

Frame FrameOf(std::span<const ControlPoint> points, PlanePoint ControlPoint::*side) {
    const auto count = static_cast<double>(points.size());
    Frame frame;
    for (const ControlPoint& point : points) {
        frame.center.x += (point.*side).x / count;
        frame.center.y += (point.*side).y / count;
    }
    for (const ControlPoint& point : points)
        frame.scale = std::max({frame.scale, std::abs((point.*side).x - frame.center.x),
                                std::abs((point.*side).y - frame.center.y)});
    return frame;
}

/// A linear map of the plane: no origin.
struct Linear {
    double xx = 0;
    double xy = 0;
    double yx = 0;
    double yy = 0;

    [[nodiscard]] double Determinant() const { return xx * yy - xy * yx; }
};

/// From points in one frame to points in another; its determinant may be 0.
std::optional<Linear> FitLinear(std::span<const ControlPoint> points, const Frame& pixels,
                                const Frame& map) {
    double uu = 0;
    double uv = 0;
    double vv = 0;
    Linear sums;
    for (const ControlPoint& point : points) {
        const PlanePoint from = pixels.ToUnit(point.pixel);
        const PlanePoint to = map.ToUnit(point.map);
        uu += from.x * from.x;
        uv += from.x * from.y;
        vv += from.y * from.y;
        sums.xx += from.x * to.x;
        sums.xy += from.y * to.x;
        sums.yx += from.x * to.y;
        sums.yy += from.y * to.y;
    }
    const double determinant = uu * vv - uv * uv;
    if (!(determinant > kLeastSpread * (uu + vv) * (uu + vv))) return std::nullopt;
    return Linear{.xx = (sums.xx * vv - sums.xy * uv) / determinant,
                  .xy = (sums.xy * uu - sums.xx * uv) / determinant,
                  .yx = (sums.yx * vv - sums.yy * uv) / determinant,
                  .yy = (sums.yy * uu - sums.yx * uv) / determinant};
}

/// A linear map between two frames, scaled, that takes the one's centre to the other's.
AffineMap Between(const Linear& linear, double scale, PlanePoint from, PlanePoint to) {
    AffineMap map;
    map.x_column = linear.xx * scale;
    map.x_row = linear.xy * scale;
    map.y_column = linear.yx * scale;
    map.y_row = linear.yy * scale;
    map.x_origin = to.x - map.x_column * from.x - map.x_row * from.y;
    map.y_origin = to.y - map.y_column * from.x - map.y_row * from.y;
    return map;
}

bool IsFinite(const AffineMap& map) {
    return std::isfinite(map.x_column) && std::isfinite(map.x_row) && std::isfinite(map.x_origin) &&
           std::isfinite(map.y_column) && std::isfinite(map.y_row) && std::isfinite(map.y_origin);
}

}  // namespace

std::optional<AffineSolution> FitAffine(std::span<const ControlPoint> points) {
    if (points.size() < 3) return std::nullopt;
    const Frame pixels = FrameOf(points, &ControlPoint::pixel);
    const Frame map = FrameOf(points, &ControlPoint::map);
    if (!(pixels.scale > 0 && map.scale > 0)) return std::nullopt;
    const auto linear = FitLinear(points, pixels, map);
    if (!linear) return std::nullopt;
    const double determinant = linear->Determinant();
    const double extent = linear->xx * linear->xx + linear->xy * linear->xy +
                          linear->yx * linear->yx + linear->yy * linear->yy;
    if (!(std::abs(determinant) > std::sqrt(kLeastSpread) * extent)) return std::nullopt;
    const Linear inverse = {.xx = linear->yy / determinant,
                            .xy = -linear->xy / determinant,
                            .yx = -linear->yx / determinant,
                            .yy = linear->xx / determinant};
    const AffineSolution solution = {
        Between(*linear, map.scale / pixels.scale, pixels.center, map.center),
        Between(inverse, pixels.scale / map.scale, map.center, pixels.center)};
    if (!IsFinite(solution.to_map) || !IsFinite(solution.to_pixel)) return std::nullopt;
    return solution;
}

}  // namespace rastrel
