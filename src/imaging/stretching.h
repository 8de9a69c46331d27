#pragma once

#include <array>
#include <cstdint>

#include "core/raster_image.h"

namespace rastrel {

enum class StretchMethod {
    kDeviations,  ///< the mean less k deviations becomes 0, the mean plus k deviations 255
    kRange,       ///< the least value becomes 0, the greatest 255
    kTails,       ///< k percent of the pixels become 0, k percent 255, as near as whole values go
    kEqualised,   ///< every result about equally often
};

using StretchTable = std::array<std::uint8_t, 256>;

/// A table for each channel.
struct StretchTables {
    StretchTable red;
    StretchTable green;
    StretchTable blue;
};

/// What stretches each channel of an image, palettised ones by the colours they show. Between its
/// bounds a stretch is linear, truncated; the deviation is that of a sample (divisor n - 1). A
/// channel of one value only keeps it. None for images without plain rows, for a k of the first
/// method that is not finite or not above 0, and of the third one outside 0 to 50.
[[nodiscard]] std::optional<StretchTables> CalculateStretching(const RasterImage& image,
                                                               StretchMethod method, double k);

/// Puts the channels of a true-colour image, or the palette of another, through tables. False for
/// images without either.
[[nodiscard]] bool ApplyStretching(RasterImage& image, const StretchTables& tables);

}  // namespace rastrel
