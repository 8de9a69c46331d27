#pragma once

#include <array>
#include <cstdint>

namespace rastrel {

/// One 255th, as the formulas have it.
constexpr double kOver255 = 0.00392156862745098;

/// How bright a hypsometric colour becomes: the palette's brightness times weight plus the
/// shading's times (1 - weight).
struct Blend {
    explicit Blend(double weight_in) : weight(weight_in), shading_weight(1 - weight_in) {}

    double weight;
    double shading_weight;
};

using BgrPixel = std::array<std::uint8_t, 3>;

namespace plain {

/// The colour of a palette entry (red in the lowest byte) with its value, as in hue, saturation and
/// value, blended with a shading. The conversions are those of A. R. Smith, "Color gamut transform
/// pairs", SIGGRAPH 1978.
[[nodiscard]] BgrPixel HypsometricColor(std::uint32_t entry, std::uint8_t shading,
                                        const Blend& blend);

}  // namespace plain

/// A palette entry made ready: its channels at full value, so that a channel is its coefficient
/// times the blended value. The same products in the same order as in the plain form.
struct alignas(32) HypsometricEntry {
    double value = 0;  ///< the palette's part of the blended value
    double blue = 0;
    double green = 0;
    double red = 0;
};

/// A palette of 256 colours made ready for a blend.
struct HypsometricTable {
    HypsometricTable(const std::uint32_t* palette, const Blend& blend_in);

    /// The same colour as the plain form's.
    [[nodiscard]] BgrPixel ColorOf(std::uint8_t index, std::uint8_t shading) const;

    Blend blend;
    std::array<HypsometricEntry, 256> entries;
};

}  // namespace rastrel
