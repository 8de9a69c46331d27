#include "process/terrain_plain.h"

#include <cmath>

#include "process/precise_math.h"

namespace rastrel {

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kOverPi = 0.3183098861837907;
constexpr double kOver180 = 0.005555555555555556;

}  // namespace

Light::Light(double altitude_degrees, double azimuth_degrees)
    : sin_altitude(PreciseSin(altitude_degrees * kOver180 * kPi)),
      cos_altitude(PreciseCos(altitude_degrees * kOver180 * kPi)),
      azimuth(azimuth_degrees * kOver180 * kPi) {}

namespace plain {

std::uint8_t Hillshade(const Gradient& gradient, const Light& light) {
    const double slope = PreciseAtan(std::sqrt(gradient.x * gradient.x + gradient.y * gradient.y));
    const double aspect = PreciseAtan2(-gradient.x, -gradient.y);
    const double illumination =
        light.sin_altitude * PreciseCos(slope) +
        light.cos_altitude * PreciseSin(slope) * PreciseCos(aspect - light.azimuth);
    const double value = illumination * 255 + 0.4999999999999;
    return value >= 1 ? static_cast<std::uint8_t>(value) : 0;
}

std::uint8_t Slope(const Gradient& gradient) {
    const double slope = PreciseAtan(std::sqrt(gradient.x * gradient.x + gradient.y * gradient.y));
    const double degrees = slope * 180 * kOverPi;
    return degrees >= 1 ? static_cast<std::uint8_t>(degrees) : 0;
}

std::optional<std::uint8_t> Aspect(const Gradient& gradient) {
    if (gradient.x == 0 && gradient.y == 0) return 8;
    const double angle = PreciseAtan2(-gradient.y, -gradient.x);
    double bearing = -(angle * 180 * kOverPi - 90);
    while (bearing < 0)
        bearing += 360;
    if (bearing >= 337.7 || bearing < 22.5) return 0;
    // Seven classes of 45 degrees; what is not below the last one's end has no class.
    for (std::uint8_t sector = 1; sector < 8; ++sector) {
        if (bearing < 22.5 + 45.0 * sector) return sector;
    }
    return std::nullopt;
}

}  // namespace plain
}  // namespace rastrel
