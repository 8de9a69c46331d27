#pragma once

#include "process/grid.h"
#include "process/statistics_plain.h"

namespace rastrel {

/// Of every step-th row and column; steps below 1 are 1. For all four sample types, without
/// allocation. Extremes are exact, and so are the sums behind the mean and deviation of bytes and
/// shorts; those of ints and floats are within 1e-12 of the true values, and the same on every
/// machine.
template <class Sample>
[[nodiscard]] Statistics StatisticsOf(const Grid<Sample>& grid, int step);

}  // namespace rastrel
