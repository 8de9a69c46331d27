#include "formats/quantize/nearest_color.h"

namespace rastrel {

NearestColor::NearestColor(std::span<const ColorParts> colors, ColorDistance distance)
    : distance_(distance) {
    constexpr std::size_t kLongest = simd::ComparedColors::kLongest;
    colors_.count = (colors.size() + kLongest - 1) / kLongest * kLongest;
    for (std::size_t part = 0; part < colors_.parts.size(); ++part) {
        for (std::size_t i = 0; i < colors_.count; ++i)
            colors_.parts[part][i] = colors[i < colors.size() ? i : 0][part];
    }
}

}  // namespace rastrel
