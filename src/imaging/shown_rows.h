#pragma once

#include <array>
#include <optional>
#include <span>
#include <vector>

#include "core/geometry.h"
#include "core/pixel_reader.h"
#include "core/raster_image.h"

namespace rastrel {

// Pixels as what they look like, which is what can be averaged: one grey value, blue, green and
// red, or these with alpha.

/// Whether an image has no colours: up to 8 bits without a palette, or with one of greys.
[[nodiscard]] bool IsGrey(const RasterImage& raster);

/// Gives result, an image without a block, a block of zero pixels of the source's depth, with its
/// palette or colour table, its transparent index and quality. False without memory.
[[nodiscard]] bool MakeAlike(const RasterImage& source, Size size, RasterImage& result);
/// The same for averaged pixels: 8 bits for greys, with the grey palette where the source has a
/// palette; 32 bits for 32 bits; 24 bits for all others.
[[nodiscard]] bool MakeSmooth(const RasterImage& source, Size size, RasterImage& result);

/// The rows of a part of an image. The image must stay as it is meanwhile.
class ShownRows {
  public:
    /// The part lies inside the image, which has plain rows.
    ShownRows(const RasterImage& raster, const Rect& part);

    /// 1, 3 or 4 bytes a pixel.
    [[nodiscard]] std::size_t Channels() const { return channels_; }
    /// Of a row.
    [[nodiscard]] std::size_t Samples() const {
        return static_cast<std::size_t>(part_.width) * channels_;
    }
    /// Whether rows are given where they stand. Others go when the next is asked for.
    [[nodiscard]] bool AreStored() const { return !reader_; }
    /// Counts from the top of the part.
    [[nodiscard]] const std::uint8_t* Row(int y);

  private:
    const RasterImage& raster_;
    Rect part_;
    std::size_t channels_;
    std::array<std::uint8_t, 256> greys_ = {};
    std::optional<PixelReader> reader_;
    std::vector<std::uint8_t> row_;
};

/// Samples to be added up; colours with alpha are multiplied by it.
void LoadShownRow(const std::uint8_t* row, std::size_t channels, std::span<float> out);
/// Sums of such samples as pixels, rounded; halves go up. Colours without any alpha become black.
void StoreShownRow(std::span<const float> row, std::size_t channels, std::span<std::uint8_t> out);

}  // namespace rastrel
