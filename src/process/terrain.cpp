#include "process/terrain.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <type_traits>

#include "process/terrain_kernels.h"
#include "process/terrain_plain.h"

namespace rastrel {

namespace {

/// Writes value into the outermost cells.
template <class Sample>
void FillBorder(const Grid<Sample>& grid, std::uint8_t value, std::uint8_t* out) {
    if (grid.Count() == 0) return;
    std::memset(out, value, grid.columns);
    std::memset(out + (grid.rows - 1) * grid.columns, value, grid.columns);
    for (std::size_t row = 0; row < grid.rows; ++row) {
        out[row * grid.columns] = value;
        out[(row + 1) * grid.columns - 1] = value;
    }
}

/// The largest magnitudes of the three rows in work, each row looked at once. Of narrow samples
/// nothing depends on it.
template <class Sample>
class RowMagnitudes {
  public:
    explicit RowMagnitudes(const Grid<Sample>& grid) : columns_(grid.columns) {
        if (grid.rows < 2) return;
        Next(grid.Row(0));
        Next(grid.Row(1));
    }

    /// Of the last two rows and a next one.
    double Next(const Sample* row) {
        if constexpr (sizeof(Sample) == 4)
            magnitudes_ = {magnitudes_[1], magnitudes_[2], simd::LargestMagnitude(row, columns_)};
        return std::max({magnitudes_[0], magnitudes_[1], magnitudes_[2]});
    }

  private:
    std::size_t columns_;
    std::array<double, 3> magnitudes_ = {};
};

/// Runs row(rows, count, magnitude, out) on the inner cells of every row that has them and, for
/// rows that it refuses, cell(rows, kept) on every one of these.
template <class Sample, class VisitRow, class VisitCell>
void VisitInnerCells(const Grid<Sample>& grid, std::uint8_t* out, VisitRow visit_row,
                     VisitCell visit_cell) {
    RowMagnitudes<Sample> magnitudes(grid);
    ForEachInnerRow(grid, [&](std::size_t row, const ThreeRows<Sample>& rows) {
        std::uint8_t* to = out + row * grid.columns + 1;
        const std::size_t count = grid.columns - 2;
        if (visit_row(rows, count, magnitudes.Next(rows.below), to)) return;
        for (std::size_t i = 0; i < count; ++i)
            to[i] = visit_cell(rows.At(i + 1), to[i]);
    });
}

}  // namespace

template <class Sample>
void Hillshade(const Grid<Sample>& grid, double altitude, double azimuth, double scale,
               std::uint8_t* out) {
    FillBorder(grid, 255, out);
    const exact::Hillshading parameters(altitude, azimuth, scale);
    const auto best = simd::BestTerrainRows<Sample>();
    VisitInnerCells(
        grid, out,
        [&](const auto& rows, std::size_t count, double magnitude, std::uint8_t* to) {
            return best.hillshade(rows, count, magnitude, parameters, to);
        },
        [&](const auto& at, std::uint8_t /*kept*/) {
            return plain::Hillshade(plain::GradientAt(at, scale), parameters.light);
        });
}

template <class Sample>
void Slope(const Grid<Sample>& grid, double scale, std::uint8_t* out) {
    FillBorder(grid, 0, out);
    const auto best = simd::BestTerrainRows<Sample>();
    VisitInnerCells(
        grid, out,
        [&](const auto& rows, std::size_t count, double magnitude, std::uint8_t* to) {
            return best.slope(rows, count, magnitude, scale, to);
        },
        [&](const auto& at, std::uint8_t /*kept*/) {
            return plain::Slope(plain::GradientAt(at, scale));
        });
}

template <class Sample>
void Aspect(const Grid<Sample>& grid, double scale, std::uint8_t* out) {
    FillBorder(grid, 8, out);
    const auto best = simd::BestTerrainRows<Sample>();
    VisitInnerCells(
        grid, out,
        [&](const auto& rows, std::size_t count, double magnitude, std::uint8_t* to) {
            return best.aspect(rows, count, magnitude, scale, to);
        },
        [&](const auto& at, std::uint8_t kept) {
            return plain::Aspect(plain::GradientAt(at, scale)).value_or(kept);
        });
}

#define RASTREL_INSTANTIATE(Sample)                                                      \
    template void Hillshade(const Grid<Sample>&, double, double, double, std::uint8_t*); \
    template void Slope(const Grid<Sample>&, double, std::uint8_t*);                     \
    template void Aspect(const Grid<Sample>&, double, std::uint8_t*)
RASTREL_INSTANTIATE(std::uint8_t);
RASTREL_INSTANTIATE(std::int16_t);
RASTREL_INSTANTIATE(std::int32_t);
RASTREL_INSTANTIATE(float);
#undef RASTREL_INSTANTIATE

}  // namespace rastrel
