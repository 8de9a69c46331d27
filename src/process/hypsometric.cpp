#include "process/hypsometric.h"

#include <algorithm>

#include "process/hypsometric_plain.h"

namespace rastrel {

void ColorHypsometrically(const std::uint8_t* indices, const std::uint8_t* shading,
                          std::size_t count, double weight, const std::uint32_t* palette,
                          std::uint8_t* out) {
    const Blend blend(weight);
    for (std::size_t i = 0; i < count; ++i) {
        const BgrPixel pixel = plain::HypsometricColor(palette[indices[i]], shading[i], blend);
        std::copy(pixel.begin(), pixel.end(), out + 3 * i);
    }
}

}  // namespace rastrel
