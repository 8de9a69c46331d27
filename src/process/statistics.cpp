#include "process/statistics.h"

#include <algorithm>
#include <cstdint>

namespace rastrel {

template <class Sample>
Statistics StatisticsOf(const Grid<Sample>& grid, int step) {
    return plain::StatisticsOf(grid, static_cast<std::size_t>(std::max(step, 1)));
}

template Statistics StatisticsOf(const Grid<std::uint8_t>&, int);
template Statistics StatisticsOf(const Grid<std::int16_t>&, int);
template Statistics StatisticsOf(const Grid<std::int32_t>&, int);
template Statistics StatisticsOf(const Grid<float>&, int);

}  // namespace rastrel
