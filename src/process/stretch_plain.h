#pragma once

#include <cstddef>
#include <cstdint>

namespace rastrel {

/// The bounds of a linear stretch: up to low everything becomes 0, from high on 255.
struct StretchBounds {
    double low = 1e300;
    double high = -1e300;
};

namespace plain {

/// What is not a number becomes 0.
[[nodiscard]] inline std::uint8_t Stretch(double value, const StretchBounds& bounds) {
    if (value <= bounds.low) return 0;
    if (value >= bounds.high) return 255;
    const double stretched = (value - bounds.low) * 255 / (bounds.high - bounds.low);
    return stretched >= 1 ? static_cast<std::uint8_t>(stretched) : 0;
}

template <class Sample>
void Stretch(const Sample* samples, std::size_t count, const StretchBounds& bounds,
             std::uint8_t* out) {
    for (std::size_t i = 0; i < count; ++i)
        out[i] = Stretch(static_cast<double>(samples[i]), bounds);
}

}  // namespace plain
}  // namespace rastrel
