#include "core/palette.h"

#include <algorithm>
#include <limits>

namespace rastrel {

Palette::Palette(std::span<const Color> colors) : count_(std::min(colors.size(), kMostEntries)) {
    std::copy_n(colors.begin(), count_, entries_.begin());
}

Palette Palette::Grey() {
    std::array<Color, kMostEntries> ramp;
    for (std::size_t i = 0; i < kMostEntries; ++i) {
        const auto level = static_cast<std::uint8_t>(i);
        ramp[i] = {level, level, level};
    }
    return Palette(ramp);
}

const Palette& Palette::SystemDefault() {
    static constexpr std::array<Color, 20> kColors = {{
        {0, 0, 0},       {128, 0, 0},     {0, 128, 0},     {128, 128, 0},   {0, 0, 128},
        {128, 0, 128},   {0, 128, 128},   {192, 192, 192}, {192, 220, 192}, {166, 202, 240},
        {255, 251, 240}, {160, 160, 164}, {128, 128, 128}, {255, 0, 0},     {0, 255, 0},
        {255, 255, 0},   {0, 0, 255},     {255, 0, 255},   {0, 255, 255},   {255, 255, 255},
    }};
    static const Palette palette{kColors};
    return palette;
}

std::optional<Color> Palette::Entry(int index) const {
    if (index < 0 || static_cast<std::size_t>(index) >= count_) return std::nullopt;
    return entries_[static_cast<std::size_t>(index)];
}

std::uint8_t Palette::NearestIndex(Color color) const {
    std::size_t nearest = 0;
    int least = std::numeric_limits<int>::max();
    for (std::size_t i = 0; i < count_ && least > 0; ++i) {
        const int red = entries_[i].red - color.red;
        const int green = entries_[i].green - color.green;
        const int blue = entries_[i].blue - color.blue;
        const int distance = red * red + green * green + blue * blue;
        if (distance < least) {
            least = distance;
            nearest = i;
        }
    }
    return static_cast<std::uint8_t>(nearest);
}

}  // namespace rastrel
