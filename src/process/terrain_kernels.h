#pragma once

#include <cstddef>
#include <cstdint>

#include "process/grid.h"
#include "process/terrain_plain.h"

namespace rastrel {

/// The same bytes as the plain forms give, decided with as little work as each cell needs.
namespace exact {

/// What a call for shaded relief needs besides its rows.
struct Hillshading {
    Hillshading(double altitude, double azimuth, double scale_in);

    Light light;
    double scale;
    double sin_azimuth;
    double cos_azimuth;
    std::uint8_t level;  ///< the value of level ground
};

[[nodiscard]] std::uint8_t Hillshade(const Gradient& gradient, const Hillshading& parameters);
[[nodiscard]] std::uint8_t Slope(const Gradient& gradient);
/// Returns kept where the plain form has no value.
[[nodiscard]] std::uint8_t Aspect(const Gradient& gradient, std::uint8_t kept);

}  // namespace exact

namespace simd {

/// Vector forms of a row: a quick estimate in single precision with a bound for its error, and the
/// exact form where the bound leaves the byte open.
///
/// The rows begin at their first column; the count cells from the second one on are written, out
/// being the first of them. Magnitude is the largest magnitude of the samples of the three rows.
/// False, with nothing done, when the parameters are beyond what the error bounds were derived for.
template <class Sample>
struct TerrainRows {
    bool (*hillshade)(const ThreeRows<Sample>& rows, std::size_t count, double magnitude,
                      const exact::Hillshading& parameters, std::uint8_t* out);
    bool (*slope)(const ThreeRows<Sample>& rows, std::size_t count, double magnitude, double scale,
                  std::uint8_t* out);
    bool (*aspect)(const ThreeRows<Sample>& rows, std::size_t count, double magnitude, double scale,
                   std::uint8_t* out);
};

/// In the best instructions that the machine has.
template <class Sample>
[[nodiscard]] TerrainRows<Sample> BestTerrainRows();

/// The largest magnitude of a row's samples; infinite when one is not a number.
[[nodiscard]] double LargestMagnitude(const std::int32_t* samples, std::size_t count);
[[nodiscard]] double LargestMagnitude(const float* samples, std::size_t count);

}  // namespace simd
}  // namespace rastrel
