#pragma once

#include <functional>
#include <optional>

#include "core/geometry.h"
#include "core/raster_image.h"
#include "imaging/affine_fit.h"
#include "imaging/mosaic.h"
#include "imaging/resampling.h"

namespace rastrel {

/// How a picture is laid north-up over a box on the map.
struct Rectification {
    AffineMap to_pixel;  ///< from the map to the picture, pixel centres at whole numbers
    MapBox box;
    double cell_size = 1;  ///< in map units
    Resampling way = Resampling::kNearest;
    /// The only pixels of the source that are used; none: all.
    std::optional<Rect> used;
    /// Of cells without a source pixel; none: white, or index 255 where a palette has no white.
    std::optional<Color> background;
    /// Is told the fraction done, 0 at first and 1 at last; false ends the work.
    std::function<bool(double fraction)> progress;
};

/// Puts into result, an image without a block, square cells over the box: as many as fill half of
/// their last column and row. A cell that lies nearer to a used pixel than to a place outside, or
/// up to one and a half pixels left of or above the source, is found there as told; beyond the used
/// pixels' middles they go on as at the edge. Depth and palette are those that resizing gives.
///
/// False, with result without a block, for values that are not finite, boxes smaller than a cell,
/// sizes that are too large, area averages, run-length data, an empty used rectangle, when the
/// progress says so, and without memory.
[[nodiscard]] bool Rectify(const RasterImage& source, const Rectification& order,
                           RasterImage& result);

}  // namespace rastrel
