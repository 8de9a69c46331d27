#pragma once

#include "process/grid.h"

namespace rastrel {

/// Weights of 1 1 1 / 1 4 1 / 1 1 1 twelfths; the outermost cells are copied. Out has the grid's
/// size and must not overlap it. For all four sample types; nothing is allocated.
template <class Sample>
void Smooth(const Grid<Sample>& grid, Sample* out);

}  // namespace rastrel
