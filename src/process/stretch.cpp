#include "process/stretch.h"

#include <array>
#include <numeric>

#include "process/statistics.h"
#include "process/stretch_kernels.h"

namespace rastrel {

namespace {

StretchBounds Around(const Statistics& statistics, double k) {
    return {statistics.mean - k * statistics.deviation, statistics.mean + k * statistics.deviation};
}

}  // namespace

template <class Sample>
StretchBounds BoundsAroundMean(const Grid<Sample>& grid, double k) {
    return Around(StatisticsOf(grid, 1), k);
}

template <class Sample>
StretchBounds BoundsAroundMeanOrExtremes(const Grid<Sample>& grid, double k) {
    const Statistics statistics = StatisticsOf(grid, 1);
    if (k > 0) return Around(statistics, k);
    return {statistics.minimum, statistics.maximum};
}

template <class Sample>
void Stretch(const Sample* samples, std::size_t count, const StretchBounds& bounds,
             std::uint8_t* out) {
    if constexpr (sizeof(Sample) == 1) {
        std::array<Sample, 256> bytes;
        std::iota(bytes.begin(), bytes.end(), Sample{0});
        simd::ByteTable table;
        plain::Stretch(bytes.data(), bytes.size(), bounds, table.data());
        simd::StretchBytes(samples, count, bounds, table, out);
    } else {
        if (!simd::Stretch(samples, count, bounds, out))
            plain::Stretch(samples, count, bounds, out);
    }
}

#define RASTREL_INSTANTIATE(Sample)                                                 \
    template StretchBounds BoundsAroundMean(const Grid<Sample>&, double);           \
    template StretchBounds BoundsAroundMeanOrExtremes(const Grid<Sample>&, double); \
    template void Stretch(const Sample*, std::size_t, const StretchBounds&, std::uint8_t*)
RASTREL_INSTANTIATE(std::uint8_t);
RASTREL_INSTANTIATE(std::int16_t);
RASTREL_INSTANTIATE(std::int32_t);
RASTREL_INSTANTIATE(float);
#undef RASTREL_INSTANTIATE

}  // namespace rastrel
