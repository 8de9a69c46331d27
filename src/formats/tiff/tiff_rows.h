#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "formats/tiff/tiff_layout.h"

namespace rastrel {

/// Decoded rows of a strip or tile, or some of them.
struct TiffRows {
    std::array<const std::uint8_t*, 3> planes = {};  ///< one when the samples are interleaved
    std::size_t row_bytes = 0;                       ///< of each plane
    std::uint32_t count = 0;
    /// The rows stand the other way round, as libtiff delivers colours that it makes.
    bool upward = false;

    /// Row i of a plane, counted as in the file.
    [[nodiscard]] std::span<const std::uint8_t> Row(std::size_t plane, std::uint32_t i) const {
        const std::size_t at = upward ? count - 1 - i : i;
        return {planes[plane] + at * row_bytes, row_bytes};
    }
};

/// Makes pixels of a bitmap (8-bit indices, or blue, green, red) from decoded samples.
class TiffRowConverter {
  public:
    explicit TiffRowConverter(const TiffLayout& layout) : layout_(layout) {}

    [[nodiscard]] std::size_t PixelBytes() const {
        return layout_.pixels == TiffPixels::kIndices ? 1 : 3;
    }
    /// The pixels of a row from a column on; out holds PixelBytes() bytes for each.
    void Convert(const TiffRows& rows, std::uint32_t row, std::size_t first_column,
                 std::span<std::uint8_t> out);

  private:
    void ConvertIndices(std::span<const std::uint8_t> row, std::size_t first,
                        std::span<std::uint8_t> out) const;
    void ConvertInterleaved(std::span<const std::uint8_t> row, std::size_t first,
                            std::span<std::uint8_t> out);
    void ConvertPlanes(const TiffRows& rows, std::uint32_t row, std::size_t first,
                       std::span<std::uint8_t> out);
    /// Samples from first on as bytes, 255 the highest: where they stand, or in the scratch space.
    [[nodiscard]] std::span<const std::uint8_t> SampleBytes(
        std::span<const std::uint8_t> row, std::size_t first, std::size_t count,
        std::vector<std::uint8_t>& scratch) const;

    const TiffLayout& layout_;
    std::array<std::vector<std::uint8_t>, 3> scratch_;
};

}  // namespace rastrel
