#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "process/grid.h"

namespace rastrel {

/// Where the light of a shaded relief comes from.
struct Light {
    /// From degrees above the horizon and degrees clockwise from north.
    Light(double altitude_degrees, double azimuth_degrees);

    double sin_altitude;
    double cos_altitude;
    double azimuth;  ///< in radians
};

/// The rise of the ground to the right and downward. B. K. P. Horn, "Hill shading and the
/// reflectance map", Proceedings of the IEEE 69 (1981), page 18.
struct Gradient {
    double x = 0;
    double y = 0;
};

// The derivatives of one cell, told as formulas: the truth that the vector forms are held to, and
// what they leave to be decided to the last bit.
namespace plain {

/// Of the cell at the rows' first column; the columns before and after it are read.
template <class Sample>
[[nodiscard]] Gradient GradientAt(const ThreeRows<Sample>& at, double scale) {
    const double z1 = at.above[-1];
    const double z2 = at.above[0];
    const double z3 = at.above[1];
    const double z4 = at.middle[-1];
    const double z6 = at.middle[1];
    const double z7 = at.below[-1];
    const double z8 = at.below[0];
    const double z9 = at.below[1];
    return {((z3 + 2 * z6 + z9) - (z1 + 2 * z4 + z7)) * scale * 0.125,
            ((z7 + 2 * z8 + z9) - (z1 + 2 * z2 + z3)) * scale * 0.125};
}

/// 0 in the shade to 255 facing the light; 0 where the gradient is not a number.
[[nodiscard]] std::uint8_t Hillshade(const Gradient& gradient, const Light& light);

/// Whole degrees, truncated; 0 where the gradient is not a number.
[[nodiscard]] std::uint8_t Slope(const Gradient& gradient);

/// The bearing that the ground falls to, were the first row the southern one, in eight classes
/// clockwise from north; 8 on level ground. None between 337.5 and 337.7 degrees, which no class
/// claims, nor where the gradient is not a number.
[[nodiscard]] std::optional<std::uint8_t> Aspect(const Gradient& gradient);

}  // namespace plain
}  // namespace rastrel
