#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>

#include "process/precise_math.h"
#include "process/terrain_kernels.h"

namespace rastrel::exact {

namespace {

/// Squares of gradients at which the slope reaches the next degree: the least double for which the
/// formula gives at least that many.
std::array<double, 90> MakeSlopeLimits() {
    std::array<double, 90> limits = {};
    // Doubles that are not negative are ordered like their bits.
    std::uint64_t low = 0;
    for (std::size_t i = 0; i < limits.size(); ++i) {
        const std::size_t degrees = i + 1;
        auto high = std::bit_cast<std::uint64_t>(HUGE_VAL);
        while (low + 1 < high) {
            const std::uint64_t middle = low + (high - low) / 2;
            const double root = std::sqrt(std::bit_cast<double>(middle));
            if (plain::Slope({root, 0}) >= degrees)
                high = middle;
            else
                low = middle;
        }
        limits[i] = std::bit_cast<double>(high);
    }
    return limits;
}

}  // namespace

Hillshading::Hillshading(double altitude, double azimuth, double scale_in)
    : light(altitude, azimuth),
      scale(scale_in),
      sin_azimuth(PreciseSin(light.azimuth)),
      cos_azimuth(PreciseCos(light.azimuth)),
      level(plain::Hillshade({0, 0}, light)) {}

std::uint8_t Hillshade(const Gradient& gradient, const Hillshading& parameters) {
    if (std::isnan(gradient.x) || std::isnan(gradient.y)) return 0;
    // With sin(atan g) = g / sqrt(1 + g^2) and the like no angle is left; see the vector form. Both
    // ways are within 1e-9 of the true value as long as the azimuth is no thousand turns.
    const Light& light = parameters.light;
    const double toward_light =
        gradient.x * parameters.sin_azimuth + gradient.y * parameters.cos_azimuth;
    const double square = gradient.x * gradient.x + gradient.y * gradient.y;
    const double value =
        (light.sin_altitude - light.cos_altitude * toward_light) / std::sqrt(1 + square) * 255 +
        0.4999999999999;
    constexpr double kBound = 1e-8;
    const bool is_certain = std::abs(value - std::nearbyint(value)) > kBound || value < 0.5;
    if (!is_certain || !std::isfinite(square)) return plain::Hillshade(gradient, light);
    return value >= 1 ? static_cast<std::uint8_t>(value) : 0;
}

std::uint8_t Slope(const Gradient& gradient) {
    static const std::array<double, 90> limits = MakeSlopeLimits();
    const double square = gradient.x * gradient.x + gradient.y * gradient.y;
    if (std::isnan(square)) return plain::Slope(gradient);
    return static_cast<std::uint8_t>(std::upper_bound(limits.begin(), limits.end(), square) -
                                     limits.begin());
}

std::uint8_t Aspect(const Gradient& gradient, std::uint8_t kept) {
    // Between tangents the class needs no angle. Where the slopes' quotient comes within 1e-12 of a
    // limit, or the bearing lies before north where not every one has a class, the formula decides.
    constexpr double kLimit = 0.41421356237309503;  // tan 22.5 degrees
    constexpr double kMargin = 1e-12;
    const double east = -gradient.x;
    const double north = -gradient.y;
    const double across = std::abs(east);
    const double along = std::abs(north);
    const double size = across + along;
    const double past_north = across - kLimit * along;
    const double past_east = along - kLimit * across;
    const bool is_before_north = north > 0 && east < 0 && past_north < 0;
    const bool is_certain = std::abs(past_north) > kMargin * size &&
                            std::abs(past_east) > kMargin * size && size > 1e-290 && size < 1e290 &&
                            !is_before_north;
    if (!is_certain) return plain::Aspect(gradient).value_or(kept);
    if (past_north < 0) return north > 0 ? 0 : 4;
    if (past_east < 0) return east > 0 ? 2 : 6;
    if (north > 0) return east > 0 ? 1 : 7;
    return east > 0 ? 3 : 5;
}

}  // namespace rastrel::exact
