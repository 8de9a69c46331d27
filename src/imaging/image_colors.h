#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "core/pixel_reader.h"

namespace rastrel {

// Runs of an image's colours, read and written as RasterImage::GetRgb and SetRgb do it one by one.

/// Whether every pixel is read as its own colour, by itself: three bytes of true colour or the
/// palette's entry. Others overlap, have no colour, or are coded.
[[nodiscard]] bool ReadsByRows(const RasterImage& raster);
/// Whether colours are written as they are.
[[nodiscard]] bool IsTrueColor(const RasterImage& raster);
/// Whether colours are written as the indices of the nearest entries.
[[nodiscard]] bool IsPalettised(const RasterImage& raster);

/// Remembers the nearest entries of colours that come again. The palette must stay.
class NearestIndices {
  public:
    explicit NearestIndices(const Palette& palette) : palette_(palette) {}
    [[nodiscard]] std::uint8_t Of(Color color);

  private:
    struct Known {
        std::uint32_t key = ~std::uint32_t{0};
        std::uint8_t index = 0;
    };
    static constexpr std::size_t kKnownColors = 4096;

    const Palette& palette_;
    std::vector<Known> known_ = std::vector<Known>(kKnownColors);
};

/// Reads runs of pixels as blue, green, red; y counts from the top of the picture. The image must
/// stay as it is meanwhile.
class ColorReader {
  public:
    explicit ColorReader(const RasterImage& raster)
        : raster_(raster), by_rows_(ReadsByRows(raster)), reader_(raster, PixelForm::kBgr) {}

    /// count pixels from (x, y) on, three bytes each. has_color, where it is not empty, gets 0 for
    /// pixels that have none and 1 for the others.
    void Read(int x, int y, std::span<std::uint8_t> out, std::span<std::uint8_t> has_color);

  private:
    const RasterImage& raster_;
    bool by_rows_;
    PixelReader reader_;
};

/// Writes runs of pixels given as blue, green, red; y counts from the top of the picture.
class ColorWriter {
  public:
    explicit ColorWriter(RasterImage& raster);

    /// Pixels from (x, y) on, of which writes tells, where it is not empty, by a byte that is not 0
    /// which ones are written.
    void Write(int x, int y, std::span<const std::uint8_t> colors,
               std::span<const std::uint8_t> writes);

  private:
    RasterImage& raster_;
    std::optional<NearestIndices> nearest_;
    std::vector<std::uint8_t> indices_;
};

}  // namespace rastrel
