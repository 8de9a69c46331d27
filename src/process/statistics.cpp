#include "process/statistics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "process/double_double.h"
#include "process/statistics_kernels.h"

namespace rastrel {

namespace {

/// Exact sums of bytes and shorts.
template <class Sample>
class WholeStatistics {
  public:
    static constexpr std::size_t kRun = simd::kMostWholeSamples;

    void Add(const Sample* samples, std::size_t count) {
        const simd::WholeSums sums = simd::SumsOf(samples, count);
        count_ += count;
        sum_ += sums.sum;
        squares_ += sums.squares;
        minimum_ = std::min<double>(minimum_, sums.minimum);
        maximum_ = std::max<double>(maximum_, sums.maximum);
    }

    [[nodiscard]] bool IsFinite() const { return true; }

    [[nodiscard]] Statistics Done() const {
        const auto count = static_cast<double>(count_);
        const double mean = static_cast<double>(sum_) / count;
        // Around the whole number r nearest to the mean, with d = sum (v - r) and
        // q = sum (v - r)^2, both whole, the squared differences from the mean are q - d^2 / n.
        // Since |v - r| <= (v - r)^2, they are at least d^2 / n: the difference keeps all its
        // digits but one. Modulo 2^64 the way to q may overflow, q itself does not.
        const auto r = static_cast<std::int64_t>(std::nearbyint(mean));
        const auto d = static_cast<double>(sum_ - static_cast<std::int64_t>(count_) * r);
        const auto r_bits = static_cast<std::uint64_t>(r);
        const std::uint64_t q =
            squares_ - 2 * r_bits * static_cast<std::uint64_t>(sum_) + r_bits * r_bits * count_;
        const double squares = static_cast<double>(q) - d * d / count;
        return {minimum_, mean, maximum_, std::sqrt(squares / (count - 1))};
    }

  private:
    std::uint64_t count_ = 0;
    std::int64_t sum_ = 0;
    std::uint64_t squares_ = 0;
    double minimum_ = Statistics().minimum;
    double maximum_ = Statistics().maximum;
};

/// Sums of ints and floats in one pass: each run's differences from the mean of the run before, of
/// which the run's own mean and squared differences follow, and runs joined by the formula of T. F.
/// Chan, G. H. Golub and R. J. LeVeque ("Updating formulae and a pairwise algorithm for computing
/// sample variances", 1979).
///
/// What a center off the run's mean costs in digits is in proportion to n (mean - center)^2. Summed
/// over the runs that is at most four times the squared differences between runs, which are part of
/// the result: the relative error stays a few units in the last place.
template <class Sample>
class SpreadStatistics {
  public:
    static constexpr std::size_t kRun = 4096;

    void Add(const Sample* samples, std::size_t count) {
        if (count_ == 0) {
            center_ = static_cast<double>(samples[0]);
            center_ = CenterNear(samples[0], simd::SpreadAround(samples, count, center_), count);
        }
        const simd::Spread run = simd::SpreadAround(samples, count, center_);
        const auto run_count = static_cast<double>(count);
        const double run_mean = center_ + run.sum / run_count;
        // Rounding could leave a little less than nothing.
        const double run_squares = std::max(run.squares - run.sum * run.sum / run_count, 0.0);
        if (count_ > 0) {
            const double difference = run_mean - Mean();
            Accumulate(squares_,
                       difference * difference * (count_ * run_count / (count_ + run_count)));
        }
        Accumulate(squares_, run_squares);
        // The first product is exact: a center has at most 31 bits, a count 13.
        Accumulate(sum_, center_ * run_count);
        Accumulate(sum_, run.sum);
        count_ += run_count;
        minimum_ = std::min(minimum_, run.minimum);
        maximum_ = std::max(maximum_, run.maximum);
        center_ = CenterNear(static_cast<Sample>(center_), run, count);
    }

    [[nodiscard]] bool IsFinite() const {
        return std::isfinite(squares_.high) && std::isfinite(sum_.high);
    }

    [[nodiscard]] Statistics Done() const {
        const double squares = squares_.high + squares_.low;
        return {minimum_, Mean(), maximum_, std::sqrt(squares / (count_ - 1))};
    }

  private:
    static void Accumulate(DoubleDouble& sum, double term) {
        const DoubleDouble next = TwoSum(sum.high, term);
        sum = {next.high, sum.low + next.low};
    }

    /// The run's mean, as a sample is rounded.
    static double CenterNear(Sample center, const simd::Spread& run, std::size_t count) {
        const double mean = static_cast<double>(center) + run.sum / static_cast<double>(count);
        if constexpr (std::is_same_v<Sample, float>)
            return static_cast<double>(static_cast<float>(mean));
        else
            return std::nearbyint(mean);
    }

    [[nodiscard]] double Mean() const { return (sum_.high + sum_.low) / count_; }

    double count_ = 0;
    double center_ = 0;
    DoubleDouble sum_;
    DoubleDouble squares_;
    double minimum_ = Statistics().minimum;
    double maximum_ = Statistics().maximum;
};

template <class Sample>
using FastStatistics =
    std::conditional_t<sizeof(Sample) == 4, SpreadStatistics<Sample>, WholeStatistics<Sample>>;

/// All samples, which stand in one row.
template <class Sample>
FastStatistics<Sample> OfAll(const Grid<Sample>& grid) {
    FastStatistics<Sample> statistics;
    const std::size_t count = grid.Count();
    for (std::size_t done = 0; done < count; done += statistics.kRun)
        statistics.Add(grid.samples + done, std::min(statistics.kRun, count - done));
    return statistics;
}

/// Every step-th sample of every step-th row, gathered into runs.
template <class Sample>
FastStatistics<Sample> OfThinned(const Grid<Sample>& grid, std::size_t step) {
    FastStatistics<Sample> statistics;
    std::array<Sample, 4096> run;
    std::size_t filled = 0;
    const auto add_run = [&] {
        if (filled > 0) statistics.Add(run.data(), filled);
        filled = 0;
    };
    for (std::size_t row = 0; row < grid.rows; row += step) {
        const Sample* samples = grid.Row(row);
        for (std::size_t column = 0; column < grid.columns; column += step) {
            run[filled++] = samples[column];
            if (filled == run.size()) add_run();
        }
    }
    add_run();
    return statistics;
}

}  // namespace

template <class Sample>
Statistics StatisticsOf(const Grid<Sample>& grid, int step) {
    const auto distance = static_cast<std::size_t>(std::max(step, 1));
    if (grid.Count() == 0) return plain::StatisticsOf(grid, distance);
    const auto statistics = distance == 1 ? OfAll(grid) : OfThinned(grid, distance);
    // Where infinities or no numbers are among the samples, the formula's own way says what comes.
    return statistics.IsFinite() ? statistics.Done() : plain::StatisticsOf(grid, distance);
}

template Statistics StatisticsOf(const Grid<std::uint8_t>&, int);
template Statistics StatisticsOf(const Grid<std::int16_t>&, int);
template Statistics StatisticsOf(const Grid<std::int32_t>&, int);
template Statistics StatisticsOf(const Grid<float>&, int);

}  // namespace rastrel
