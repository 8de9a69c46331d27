#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "core/geometry.h"
#include "core/pixel_rows.h"
#include "core/raster_image.h"

namespace rastrel {

/// What a pixel value of a raster of up to 8 bits looks like: its palette entry, black where the
/// palette lacks it; without a palette a grey, the depth's greatest value being white.
[[nodiscard]] Color ShownColor(const RasterImage& raster, std::size_t value);

/// The forms that pixels are read in; the value is the bytes of a pixel.
enum class PixelForm {
    /// Palette indices; grey values of deeper pixels.
    kValues = 1,
    /// Blue, green, red: through the palette; without one, values as greys from black to white.
    kBgr = 3,
    /// The same with alpha, 255 where the raster has none.
    kBgra = 4,
};

/// Reads runs of pixels from a raster of any depth in one form. The raster must have a block, stay
/// as it is meanwhile, and the runs must lie inside it; y counts from the top of the picture.
class PixelReader {
  public:
    /// total_bytes: how much will be read in all, as far as it is known; much output goes past the
    /// caches.
    PixelReader(const RasterImage& raster, PixelForm form, std::size_t total_bytes = 0);

    /// Reads a run of as many pixels as out has room for.
    void Read(int x, int y, std::span<std::uint8_t> out);

  private:
    void ReadCached(int x, int y, std::span<std::uint8_t> out);
    void ReadValues(int x, int y, std::span<std::uint8_t> out);
    void ReadBgr(int x, int y, std::span<std::uint8_t> out);
    void ReadBgra(int x, int y, std::span<std::uint8_t> out);
    /// The stored bytes of count pixels of 8 bits or more.
    [[nodiscard]] std::span<const std::uint8_t> StoredPixels(int x, int y, std::size_t count) const;
    /// The indices of count pixels of up to 8 bits: the row itself or an unpacked copy.
    [[nodiscard]] std::span<const std::uint8_t> Indices(int x, int y, std::size_t count);
    [[nodiscard]] std::span<std::uint8_t> Scratch(std::size_t bytes);
    /// Whether the stored pixels have the form already.
    [[nodiscard]] bool IsStoredForm() const;

    const RasterImage& raster_;
    PixelForm form_;
    bool streams_;
    ValueColors colors_;  ///< for rasters of up to 8 bits
    std::vector<std::uint8_t> scratch_;
};

/// Copies a rectangle of pixels out of a raster: depth 8 as values, 24 as colours, 32 as colours
/// with alpha; other depths copy nothing. out points to rect.width x rect.height pixels, the top
/// row first; those outside the image are not written.
void CopyPixels(const RasterImage& raster, int depth, Rect rect, std::uint8_t* out);

}  // namespace rastrel
