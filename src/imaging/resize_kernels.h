#pragma once

#include <cstddef>
#include <cstdint>

// Rows of samples made from others. All sums are of single precision in one order, so that every
// instruction set gives the same bytes.

namespace rastrel::simd {

/// Rows of which one is made.
template <class Sample>
struct WeighedRows {
    const Sample* const* rows;
    const float* weights;
    std::size_t row_count;
};

/// Past the end of a row of floats this many are read or written; their values do not matter.
constexpr std::size_t kFloatPadding = 4;

/// The weighed sum of at least one row. The rows between the first and the last, where there are
/// at least two and their weights are equal, are added up before they are weighed.
void WeighRows(const WeighedRows<std::uint8_t>& from, std::size_t samples, float* out);

/// out is added to the weighed sum of one to four rows.
void AddWeighedRows(const WeighedRows<float>& from, std::size_t samples, float* out);

/// The weighed sum of one to four rows, rounded; halves go up, and values outside 0..255 to the
/// nearer end.
void WeighRowsToBytes(const WeighedRows<float>& from, std::size_t samples, std::uint8_t* out);

/// Where the pixels of a new row come from.
struct WeighedColumns {
    const std::int32_t* first;  ///< the first old pixel of each new one
    const float* weights;       ///< tap_count for each new pixel
    std::size_t tap_count;
};

/// A row of count new pixels, whose channels stand side by side.
void WeighColumns(const float* row, std::size_t channels, const WeighedColumns& columns,
                  std::size_t count, float* out);

/// Past a row of 24-bit pixels this many bytes are read.
constexpr std::size_t kPixelPadding = 2;

/// The 24-bit pixels between two rows and two columns each, rounded: the same as WeighRows,
/// WeighColumns and WeighRowsToBytes after each other, without the columns that are left out.
/// next_rows: the two rows of the next call, which are touched meanwhile.
void WeighSquares(const WeighedRows<std::uint8_t>& two_rows, const std::uint8_t* const* next_rows,
                  const WeighedColumns& columns, std::size_t count, std::uint8_t* out);

}  // namespace rastrel::simd
