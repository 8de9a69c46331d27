#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "core/geometry.h"
#include "core/pixel_rows.h"
#include "core/raster_image.h"

namespace rastrel {

/// Reads runs of pixels from a raster of any depth in one form. The raster must have a block, stay
/// as it is meanwhile, and the runs must lie inside it; y counts from the top of the picture.
class PixelReader {
  public:
    explicit PixelReader(const RasterImage& raster);

    /// Palette indices; deeper pixels give their grey value. One byte a pixel.
    void ReadValues(int x, int y, std::span<std::uint8_t> out);
    /// Colours as blue, green, red: through the palette; without one, values as greys from black to
    /// white. Three bytes a pixel.
    void ReadBgr(int x, int y, std::span<std::uint8_t> out);
    /// The same with alpha, 255 where the raster has none. Four bytes a pixel.
    void ReadBgra(int x, int y, std::span<std::uint8_t> out);

  private:
    /// The stored bytes of count pixels of 8 bits or more.
    [[nodiscard]] std::span<const std::uint8_t> StoredPixels(int x, int y, std::size_t count) const;
    /// The indices of count pixels of up to 8 bits: the row itself or an unpacked copy.
    [[nodiscard]] std::span<const std::uint8_t> Indices(int x, int y, std::size_t count);
    [[nodiscard]] std::span<std::uint8_t> Scratch(std::size_t bytes);

    const RasterImage& raster_;
    ValueColors colors_;  ///< for rasters of up to 8 bits
    std::vector<std::uint8_t> scratch_;
};

/// Copies a rectangle of pixels out of a raster: depth 8 as ReadValues, 24 as ReadBgr, 32 as
/// ReadBgra tell; other depths copy nothing. out points to rect.width x rect.height pixels, the top
/// row first; those outside the image are not written.
void CopyPixels(const RasterImage& raster, int depth, Rect rect, std::uint8_t* out);

}  // namespace rastrel
