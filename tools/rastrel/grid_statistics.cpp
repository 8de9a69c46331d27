#include "grid_statistics.h"

#include <algorithm>
#include <type_traits>
#include <variant>

namespace rastrel_cli {

namespace {

template <class Sample>
Statistics Measure(const Array<Sample>& samples, int rows, int columns, int step) {
    Statistics result;
    const auto thinned = [step](int count) {
        return (static_cast<std::size_t>(count) + static_cast<std::size_t>(step) - 1) /
               static_cast<std::size_t>(step);
    };
    result.count = thinned(rows) * thinned(columns);
    if (result.count == 0) return result;
    ArrayFunctions<Sample>::kStatistics(samples.data(), rows, columns, step, &result.minimum,
                                        &result.mean, &result.maximum, &result.deviation);
    return result;
}

/// The samples with data, as one row: the library knows no others.
template <class Sample>
Array<Sample> ValidSamples(const Grid& grid, const Array<Sample>& samples, int step) {
    const auto rows = static_cast<std::size_t>(grid.rows);
    const auto columns = static_cast<std::size_t>(grid.columns);
    const auto stride = static_cast<std::size_t>(step);
    const auto for_each = [&](const auto& take) {
        for (std::size_t r = 0; r < rows; r += stride) {
            for (std::size_t c = 0; c < columns; c += stride) {
                if (grid.valid[r * columns + c] != 0) take(samples[r * columns + c]);
            }
        }
    };
    int count = 0;
    for_each([&count](Sample) { ++count; });
    Array<Sample> result(1, count);
    Sample* to = result.data();
    for_each([&to](Sample value) { *to++ = value; });
    return result;
}

}  // namespace

Statistics StatisticsOf(const Grid& grid, int step) {
    return std::visit(
        [&grid, step](const auto& samples) {
            if (grid.valid.Empty()) return Measure(samples, grid.rows, grid.columns, step);
            const auto valid = ValidSamples(grid, samples, step);
            return Measure(valid, 1, static_cast<int>(valid.size()), 1);
        },
        grid.samples);
}

Stretched Stretch(const Grid& grid, double k) {
    return std::visit(
        [&grid, k](const auto& samples) {
            using Functions = typename std::remove_cvref_t<decltype(samples)>::Functions;
            Stretched result;
            result.bytes = Array<std::uint8_t>(grid.rows, grid.columns);
            if (grid.valid.Empty()) {
                Functions::kStretch(result.bytes.data(), samples.data(), grid.rows, grid.columns, k,
                                    &result.low, &result.high);
                return result;
            }
            const auto valid = ValidSamples(grid, samples, 1);
            Array<std::uint8_t> stretched(1, static_cast<int>(valid.size()));
            Functions::kStretch(stretched.data(), valid.data(), 1, static_cast<int>(valid.size()),
                                k, &result.low, &result.high);
            const std::uint8_t* from = stretched.data();
            std::transform(grid.valid.begin(), grid.valid.end(), result.bytes.begin(),
                           [&from](std::uint8_t is_valid) {
                               return is_valid != 0 ? *from++ : std::uint8_t{0};
                           });
            return result;
        },
        grid.samples);
}

}  // namespace rastrel_cli
