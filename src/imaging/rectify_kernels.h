#pragma once

#include <cstddef>
#include <cstdint>

namespace rastrel::simd {

/// A place in a picture along a row of cells: coefficient * X + constant + origin, in this order,
/// where X is the middle of a column: x_min + (column + 0.5) * cell_size.
struct PlaceOnAxis {
    double coefficient;
    double constant;
    double origin;
};

/// A row of cells as places in a picture.
struct CellRow {
    double x_min;
    double cell_size;
    PlaceOnAxis column;
    PlaceOnAxis row;
};

/// Pixels in memory: where one begins, from the first pixel of the upper row on.
struct PixelSteps {
    std::int32_t pixel;  ///< to the right
    std::int32_t row;    ///< downward; negative in a bitmap
};

/// The pixels nearest to count cells from a column on: the fraction of the place, shifted by shift,
/// is cut off. All of them must be places of pixels.
void NearestOffsets(const CellRow& cells, const PixelSteps& steps, double shift, int first_column,
                    std::size_t count, std::int32_t* offsets);

/// The upper-left ones of the four pixels around each of count cells, and how far each cell lies to
/// the right of it and below it, 0 to 1. None may lie left of or above the first pixel.
void SquareOffsets(const CellRow& cells, const PixelSteps& steps, int first_column,
                   std::size_t count, std::int32_t* offsets, float* right, float* down);

/// The 24-bit pixels between the four pixels around each of count cells, rounded, halves up. Of
/// every row that they are in, the first two bytes after it are read.
void InterpolateSquares(const std::uint8_t* pixels, std::int32_t row_step,
                        const std::int32_t* offsets, const float* right, const float* down,
                        std::size_t count, std::uint8_t* out);

}  // namespace rastrel::simd
