#include "process/hypsometric_plain.h"

#include <algorithm>
#include <cmath>

namespace rastrel {

namespace {

constexpr double kOver60 = 0.016666666666666666;
constexpr double kNoHue = -1;

struct Hsv {
    double hue = kNoHue;  ///< in degrees
    double saturation = 0;
    double value = 0;
};

Hsv HsvFromEntry(std::uint32_t entry) {
    const double r = (entry & 255) * kOver255;
    const double g = (entry >> 8 & 255) * kOver255;
    const double b = (entry >> 16 & 255) * kOver255;
    Hsv hsv;
    hsv.value = std::max({r, g, b});
    const double least = std::min({r, g, b});
    if (hsv.value != 0) hsv.saturation = (hsv.value - least) / hsv.value;
    if (hsv.saturation == 0) return hsv;
    const double range = hsv.value - least;
    const double rc = (hsv.value - r) / range;
    const double gc = (hsv.value - g) / range;
    const double bc = (hsv.value - b) / range;
    if (r == hsv.value)
        hsv.hue = bc - gc;
    else if (g == hsv.value)
        hsv.hue = 2 + rc - bc;
    else
        hsv.hue = 4 + gc - rc;
    hsv.hue *= 60;
    if (hsv.hue < 0) hsv.hue += 360;
    return hsv;
}

/// The three lower channels of a hue's sector, for a value of 1.
struct SectorChannels {
    explicit SectorChannels(const Hsv& hsv) {
        const double hue = hsv.hue == 360 ? 0 : hsv.hue;
        sector = std::max(static_cast<int>(std::floor(hue * kOver60)), 0);
        const double f = hue / 60 - sector;
        p = 1 - hsv.saturation;
        q = 1 - f * hsv.saturation;
        t = 1 - (1 - f) * hsv.saturation;
    }
    int sector;
    double p;
    double q;
    double t;
};

/// Blue, green and red for a value of 1.
std::array<double, 3> ChannelsOf(const Hsv& hsv) {
    if (hsv.hue == kNoHue || hsv.saturation == 0) return {1, 1, 1};
    const SectorChannels of(hsv);
    switch (of.sector) {
        case 1:
            return {of.p, 1, of.q};
        case 2:
            return {of.t, 1, of.p};
        case 3:
            return {1, of.q, of.p};
        case 4:
            return {1, of.p, of.t};
        case 5:
            return {of.q, of.p, 1};
        default:
            return {of.p, of.t, 1};
    }
}

/// To the nearest whole byte; 0 for what is not a number.
std::uint8_t ByteFromChannel(double channel) {
    const double byte = std::floor(channel * 255 + 0.5);
    return byte >= 1 ? static_cast<std::uint8_t>(byte) : 0;
}

/// From 0 to 1; what is not a number stays so.
double ClampToOne(double value) {
    if (value < 0) return 0;
    return value > 1 ? 1 : value;
}

}  // namespace

namespace plain {

BgrPixel HypsometricColor(std::uint32_t entry, std::uint8_t shading, const Blend& blend) {
    const Hsv hsv = HsvFromEntry(entry);
    const double value =
        ClampToOne(hsv.value * blend.weight + shading * blend.shading_weight * kOver255);
    const std::array<double, 3> channels = ChannelsOf(hsv);
    return {ByteFromChannel(channels[0] * value), ByteFromChannel(channels[1] * value),
            ByteFromChannel(channels[2] * value)};
}

}  // namespace plain

HypsometricTable::HypsometricTable(const std::uint32_t* palette, const Blend& blend_in)
    : blend(blend_in) {
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const Hsv hsv = HsvFromEntry(palette[i]);
        const std::array<double, 3> channels = ChannelsOf(hsv);
        entries[i] = {hsv.value * blend.weight, channels[0], channels[1], channels[2]};
    }
}

BgrPixel HypsometricTable::ColorOf(std::uint8_t index, std::uint8_t shading) const {
    const HypsometricEntry& entry = entries[index];
    const double value = ClampToOne(entry.value + shading * blend.shading_weight * kOver255);
    return {ByteFromChannel(entry.blue * value), ByteFromChannel(entry.green * value),
            ByteFromChannel(entry.red * value)};
}

}  // namespace rastrel
