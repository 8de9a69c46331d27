#include "process/smoothing.h"

#include <algorithm>
#include <cstdint>

#include "process/smoothing_kernels.h"

namespace rastrel {

namespace {

template <class Sample>
void CopyBorder(const Grid<Sample>& grid, Sample* out) {
    if (grid.Count() == 0) return;
    const std::size_t last_row = (grid.rows - 1) * grid.columns;
    std::copy_n(grid.samples, grid.columns, out);
    std::copy_n(grid.samples + last_row, grid.columns, out + last_row);
    for (std::size_t row = 0; row < grid.rows; ++row) {
        const std::size_t first = row * grid.columns;
        const std::size_t last = first + grid.columns - 1;
        out[first] = grid.samples[first];
        out[last] = grid.samples[last];
    }
}

}  // namespace

template <class Sample>
void Smooth(const Grid<Sample>& grid, Sample* out) {
    CopyBorder(grid, out);
    ForEachInnerRow(grid, [&](std::size_t row, const ThreeRows<Sample>& rows) {
        simd::SmoothRow(rows, grid.columns - 2, out + row * grid.columns + 1);
    });
}

template void Smooth(const Grid<std::uint8_t>&, std::uint8_t*);
template void Smooth(const Grid<std::int16_t>&, std::int16_t*);
template void Smooth(const Grid<std::int32_t>&, std::int32_t*);
template void Smooth(const Grid<float>&, float*);

}  // namespace rastrel
