#pragma once

#include <cmath>
#include <cstddef>
#include <limits>

#include "process/grid.h"

namespace rastrel {

/// What a set of samples is like. The extremes of no samples, or of samples that are no numbers,
/// are 1e300 and -1e300.
struct Statistics {
    double minimum = 1e300;
    double mean = std::numeric_limits<double>::quiet_NaN();
    double maximum = -1e300;
    double deviation = std::numeric_limits<double>::quiet_NaN();  ///< of a sample: divisor n - 1
};

namespace plain {

/// Of every step-th row and column, in two passes.
template <class Sample>
[[nodiscard]] Statistics StatisticsOf(const Grid<Sample>& grid, std::size_t step) {
    Statistics result;
    double count = 0;
    double sum = 0;
    for (std::size_t row = 0; row < grid.rows; row += step) {
        for (std::size_t column = 0; column < grid.columns; column += step) {
            const double value = grid.Row(row)[column];
            count += 1;
            sum += value;
            if (value < result.minimum) result.minimum = value;
            if (value > result.maximum) result.maximum = value;
        }
    }
    result.mean = sum / count;
    double squares = 0;
    for (std::size_t row = 0; row < grid.rows; row += step) {
        for (std::size_t column = 0; column < grid.columns; column += step) {
            const double difference = grid.Row(row)[column] - result.mean;
            squares += difference * difference;
        }
    }
    result.deviation = std::sqrt(squares / (count - 1));
    return result;
}

}  // namespace plain
}  // namespace rastrel
