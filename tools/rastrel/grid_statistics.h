#pragma once

#include <cstddef>
#include <cstdint>

#include "grid.h"

namespace rastrel_cli {

struct Statistics {
    std::size_t count = 0;
    double minimum = 0.0;
    double mean = 0.0;
    double maximum = 0.0;
    double deviation = 0.0;  ///< of a sample, that is with the divisor count - 1
};

/// Of the cells with data in every step-th row and column.
[[nodiscard]] Statistics StatisticsOf(const Grid& grid, int step = 1);

/// A grid as bytes by the library's linear stretch.
struct Stretched {
    Array<std::uint8_t> bytes;  ///< 0 where there is no data
    double low = 0.0;
    double high = 0.0;
};

/// Cells without data do not count for the bounds.
[[nodiscard]] Stretched Stretch(const Grid& grid, double k);

}  // namespace rastrel_cli
