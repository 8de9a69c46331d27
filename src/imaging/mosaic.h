#pragma once

#include <optional>

#include "core/raster_image.h"

namespace rastrel {

/// Where an image lies on the map: the upper-left corner of its upper-left pixel and the side of
/// its square pixels, in map units; y upward.
struct Placement {
    double x = 0;
    double y = 0;
    double pixel_size = 0;
};

/// A rectangle in map units.
struct MapBox {
    double x_min = 0;
    double y_min = 0;
    double x_max = 0;
    double y_max = 0;
};

/// What is spared when one image is laid into another.
struct MosaicLimits {
    std::optional<Color> key;    ///< source pixels of this colour
    std::optional<MapBox> clip;  ///< centres at or right of x_max, at or below y_min, outside
    const RasterImage* mask = nullptr;  ///< source pixels where this, of the same size, is black
};

/// Lays the source into the target: every target pixel whose centre lies in the source gets the
/// source pixel under it; a centre on an edge belongs to the pixel to its right or below. Colours
/// are read and written as by GetRgb and SetRgb. True also when nothing overlaps; false, with the
/// target as it was, for placements that are not finite or whose pixels have no size, and a mask of
/// another size.
[[nodiscard]] bool LayInto(RasterImage& target, const Placement& target_place,
                           const RasterImage& source, const Placement& source_place,
                           const MosaicLimits& limits);

}  // namespace rastrel
