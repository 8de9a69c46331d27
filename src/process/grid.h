#pragma once

#include <algorithm>
#include <cstddef>

namespace rastrel {

/// A typed array as the host hands it over: rows of columns samples, the top row first, without
/// padding. Negative counts are taken as none.
template <class Sample>
struct Grid {
    const Sample* samples;
    std::size_t rows;
    std::size_t columns;

    Grid(const Sample* samples_in, int rows_in, int columns_in)
        : samples(samples_in),
          rows(static_cast<std::size_t>(std::max(rows_in, 0))),
          columns(static_cast<std::size_t>(std::max(columns_in, 0))) {}

    [[nodiscard]] std::size_t Count() const { return rows * columns; }
    [[nodiscard]] const Sample* Row(std::size_t row) const { return samples + row * columns; }
};

/// The row of a cell's neighbourhood and the rows above and below it, at the first column.
template <class Sample>
struct ThreeRows {
    const Sample* above;
    const Sample* middle;
    const Sample* below;

    /// The same, a number of columns to the right.
    [[nodiscard]] ThreeRows At(std::size_t column) const {
        return {above + column, middle + column, below + column};
    }
};

/// Visits the rows that have neighbours on both sides.
template <class Sample, class Visit>
void ForEachInnerRow(const Grid<Sample>& grid, Visit visit) {
    if (grid.columns < 3) return;
    for (std::size_t row = 1; row + 1 < grid.rows; ++row)
        visit(row, ThreeRows<Sample>{grid.Row(row - 1), grid.Row(row), grid.Row(row + 1)});
}

}  // namespace rastrel
