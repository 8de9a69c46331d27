#pragma once

#include <cstdint>
#include <span>

#include "core/raster_image.h"

namespace rastrel {

/// Puts an image's pixels, as they come from a GIF file, into the rows that they belong to.
class GifRows {
  public:
    /// The raster is of 8 bits, and stays as it is but for its pixels.
    GifRows(RasterImage& raster, bool interlaced) : raster_(raster), interlaced_(interlaced) {}

    /// Pixels beyond the last row go nowhere.
    void Append(std::span<const std::uint8_t> pixels);
    [[nodiscard]] bool Complete() const { return row_ >= raster_.Height(); }

  private:
    void NextRow();

    RasterImage& raster_;
    bool interlaced_;
    int row_ = 0;  ///< of the picture, from the top
    std::size_t column_ = 0;
    std::size_t pass_ = 0;
};

}  // namespace rastrel
