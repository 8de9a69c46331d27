#pragma once

#include <optional>

#include "core/raster_image.h"

namespace rastrel {

// Operations that are told pixel by pixel: read a colour, write a colour, as RasterImage::GetRgb
// and SetRgb do at every depth. Palettised images take the nearest entry; a pixel that has no
// colour is left alone. Rows of ordinary images are worked on as a whole, with the same results. An
// image may be its own second one.

/// Paints the target where the mask has a channel that is 0, inverted: one that is not 0. The two
/// are not each other's complement: pure red is painted under both. False when the sizes differ.
[[nodiscard]] bool ApplyMask(RasterImage& target, const RasterImage& mask, bool invert,
                             Color paint);

/// Adds an offset to every channel, clamped to 0..255, but for pixels of the key colour. Offsets of
/// 256 and more, below -255, and 0 change nothing.
void ShiftBrightness(RasterImage& image, std::optional<Color> key, int offset);

/// How the channel b of one image goes onto the channel a of another, before weighing.
enum class BlendMode {
    kNormal,      ///< b
    kMultiply,    ///< a b / 255
    kScreen,      ///< 255 - (255 - a)(255 - b) / 255
    kOverlay,     ///< multiplied twice where a < 128, else screened twice
    kDarken,      ///< the smaller
    kLighten,     ///< the greater
    kDifference,  ///< |a - b|
    kAdd,         ///< a + b
};

/// Every channel of the first image becomes a (1 - weight) + f(a, b) weight, f clamped to 0..255,
/// the result truncated toward zero and clamped; not where the second image shows the key colour.
/// False when the sizes differ.
[[nodiscard]] bool Blend(RasterImage& first, const RasterImage& second, std::optional<Color> key,
                         double weight, BlendMode mode);

/// Where every channel of the source is within the tolerance of a colour the target gets the new
/// colour, elsewhere the source's pixel. False when the sizes differ.
[[nodiscard]] bool ReplaceColor(RasterImage& target, const RasterImage& source, Color color,
                                int tolerance, Color new_color);

}  // namespace rastrel
