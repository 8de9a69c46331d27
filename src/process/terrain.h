#pragma once

#include <cstdint>

#include "process/grid.h"

namespace rastrel {

// Derivatives of an elevation grid by its 3 x 3 gradients times scale. Every cell of out, which has
// the grid's size, is written, but for aspects that have no class. Instantiated for the four sample
// types; nothing is allocated.

/// Border 255. Altitude and azimuth of the light in degrees.
template <class Sample>
void Hillshade(const Grid<Sample>& grid, double altitude, double azimuth, double scale,
               std::uint8_t* out);

/// In whole degrees; border 0.
template <class Sample>
void Slope(const Grid<Sample>& grid, double scale, std::uint8_t* out);

/// In eight classes clockwise from north, 8 on level ground; border 8.
template <class Sample>
void Aspect(const Grid<Sample>& grid, double scale, std::uint8_t* out);

}  // namespace rastrel
