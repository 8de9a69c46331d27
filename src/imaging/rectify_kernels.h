#pragma once

#include <cstddef>
#include <cstdint>

namespace rastrel::simd {

/// Along a row of cells, a coordinate in a picture: coefficient * X + constant + origin, where X is
/// the middle of a column: x_min + (column + 0.5) * cell_size. All in doubles and in this order, so
/// that no error grows along the row.
struct CoordinateLine {
    double coefficient = 0;
    double constant = 0;
    double origin = 0;
};

/// A row of cells as places in a picture, pixel centres at whole numbers.
struct CellRow {
    double x_min = 0;
    double cell_size = 0;
    CoordinateLine x;
    CoordinateLine y;
};

/// Where the pixels of a picture stand: x * column + y * row + base bytes from some origin. All are
/// counted modulo 2^32.
struct PixelSteps {
    std::int32_t column = 0;
    std::int32_t row = 0;  ///< negative where the lower row stands first
    std::int32_t base = 0;
};

/// Arrays of what is found for each cell have room for this many more.
constexpr std::size_t kCellPadding = 16;

/// For count cells from first on, where the nearest pixel stands: the one at the place plus shift,
/// its fraction cut off. No coordinate may be outside the range of int.
void FindNearest(const CellRow& cells, const PixelSteps& steps, double shift, int first,
                 std::size_t count, std::int32_t* offsets);

/// The same to the upper-left one of the four pixels around each place, and how far the place is to
/// the right of that and below it, 0 to 1. No coordinate may be negative.
void FindSquares(const CellRow& cells, const PixelSteps& steps, int first, std::size_t count,
                 std::int32_t* offsets, float* right, float* down);

/// Past a square of 24-bit pixels this many bytes of each row are read.
constexpr std::size_t kSquarePadding = 2;

/// Squares of 24-bit pixels and the places in them.
struct PixelSquares {
    const std::uint8_t* origin;
    std::int32_t row_step;
    const std::int32_t* offsets;
    const float* right;
    const float* down;
};

/// The pixels at count places, interpolated first downward, then to the right, and rounded, halves
/// up.
void Interpolate(const PixelSquares& squares, std::size_t count, std::uint8_t* out);
/// The same by cubic convolution through the 4 x 4 pixels of which each square is the middle, first
/// to the right, then downward.
void InterpolateCubic(const PixelSquares& squares, std::size_t count, std::uint8_t* out);

}  // namespace rastrel::simd
