#include <algorithm>
#include <array>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "process/statistics_simd.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h
#include <hwy/highway.h>

#include "process/statistics_kernels.h"

HWY_BEFORE_NAMESPACE();
namespace rastrel::simd::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// ---- Whole samples ----

template <class Sample>
void AddOne(Sample sample, WholeSums& sums) {
    const std::int32_t value = sample;
    sums.sum += value;
    sums.squares += static_cast<std::uint64_t>(std::int64_t{value} * value);
    sums.minimum = std::min(sums.minimum, value);
    sums.maximum = std::max(sums.maximum, value);
}

/// Adds all samples of a run; start holds its first one in both extremes.
template <class Sample>
WholeSums AddEach(const Sample* samples, std::size_t count, WholeSums start) {
    for (std::size_t i = 0; i < count; ++i)
        AddOne(samples[i], start);
    return start;
}

template <class Sample>
WholeSums StartOf(const Sample* samples) {
    WholeSums sums;
    sums.minimum = samples[0];
    sums.maximum = samples[0];
    return sums;
}

#if HWY_TARGET == HWY_SCALAR

WholeSums SumsOfBytes(const std::uint8_t* samples, std::size_t count) {
    return AddEach(samples, count, StartOf(samples));
}

WholeSums SumsOfShorts(const std::int16_t* samples, std::size_t count) {
    return AddEach(samples, count, StartOf(samples));
}

#else

/// The sum of a vector's lanes as 64-bit numbers.
template <class Sum, class D, class V>
Sum SumLanes(D d, V vector) {
    std::array<hn::TFromD<D>, hn::MaxLanes(D())> lanes;
    hn::StoreU(vector, d, lanes.data());
    Sum sum = 0;
    for (std::size_t i = 0; i < hn::Lanes(d); ++i)
        sum += static_cast<Sum>(lanes[i]);
    return sum;
}

template <class D, class V>
void TakeExtremes(D d, V minimum, V maximum, WholeSums& sums) {
    std::array<hn::TFromD<D>, hn::MaxLanes(D())> lanes;
    hn::StoreU(minimum, d, lanes.data());
    sums.minimum = *std::min_element(lanes.begin(), lanes.end());
    hn::StoreU(maximum, d, lanes.data());
    sums.maximum = *std::max_element(lanes.begin(), lanes.end());
}

WholeSums SumsOfBytes(const std::uint8_t* samples, std::size_t count) {
    const hn::ScalableTag<std::uint8_t> d;
    const hn::Repartition<std::int16_t, decltype(d)> d16;
    const hn::Repartition<std::int32_t, decltype(d)> d32;
    const hn::Repartition<std::uint64_t, decltype(d)> d64;
    const std::size_t lanes = hn::Lanes(d);
    WholeSums start = StartOf(samples);
    if (count < lanes) return AddEach(samples, count, start);
    const auto zero = hn::Zero(d);
    auto minimum = hn::LoadU(d, samples);
    auto maximum = minimum;
    auto sum = hn::Zero(d64);
    auto squares_low = hn::Zero(d32);
    auto squares_high = hn::Zero(d32);
    auto unused = hn::Zero(d32);  // the instruction that serves here adds pairs at once
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const auto v = hn::LoadU(d, samples + i);
        minimum = hn::Min(minimum, v);
        maximum = hn::Max(maximum, v);
        sum = hn::Add(sum, hn::SumsOf8(v));
        const auto low = hn::BitCast(d16, hn::InterleaveLower(d, v, zero));
        const auto high = hn::BitCast(d16, hn::InterleaveUpper(d, v, zero));
        squares_low = hn::ReorderWidenMulAccumulate(d32, low, low, squares_low, unused);
        squares_high = hn::ReorderWidenMulAccumulate(d32, high, high, squares_high, unused);
    }
    start.sum = SumLanes<std::int64_t>(d64, sum);
    start.squares = SumLanes<std::uint64_t>(d32, squares_low) +
                    SumLanes<std::uint64_t>(d32, squares_high) +
                    SumLanes<std::uint64_t>(d32, unused);
    TakeExtremes(d, minimum, maximum, start);
    return AddEach(samples + i, count - i, start);
}

WholeSums SumsOfShorts(const std::int16_t* samples, std::size_t count) {
    const hn::ScalableTag<std::int16_t> d;
    const hn::Repartition<std::int32_t, decltype(d)> d32;
    const hn::Repartition<std::uint64_t, decltype(d)> d64;
    const std::size_t lanes = hn::Lanes(d);
    WholeSums start = StartOf(samples);
    if (count < lanes) return AddEach(samples, count, start);
    const auto one = hn::Set(d, std::int16_t{1});
    const auto low_words = hn::Set(d64, 0xffffffffu);
    auto minimum = hn::LoadU(d, samples);
    auto maximum = minimum;
    auto sum = hn::Zero(d32);
    auto squares_even = hn::Zero(d64);
    auto squares_odd = hn::Zero(d64);
    auto unused = hn::Zero(d32);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const auto v = hn::LoadU(d, samples + i);
        minimum = hn::Min(minimum, v);
        maximum = hn::Max(maximum, v);
        sum = hn::ReorderWidenMulAccumulate(d32, v, one, sum, unused);
        // Two squares of -32768 make 2^31: as unsigned words these are right.
        auto rest = hn::Zero(d32);
        const auto pairs =
            hn::BitCast(d64, hn::ReorderWidenMulAccumulate(d32, v, v, hn::Zero(d32), rest));
        squares_even = hn::Add(squares_even, hn::And(pairs, low_words));
        squares_odd = hn::Add(squares_odd, hn::ShiftRight<32>(pairs));
        static_assert(HWY_ARCH_X86, "elsewhere rest has to be added, too");
    }
    start.sum = SumLanes<std::int64_t>(d32, sum) + SumLanes<std::int64_t>(d32, unused);
    start.squares =
        SumLanes<std::uint64_t>(d64, squares_even) + SumLanes<std::uint64_t>(d64, squares_odd);
    TakeExtremes(d, minimum, maximum, start);
    return AddEach(samples + i, count - i, start);
}

#endif

// ---- Floating-point and wide samples ----

constexpr std::size_t kSums = 16;

/// Joins the interleaved sums, always in the same order.
double Join(std::array<double, kSums> sums) {
    for (std::size_t half = kSums / 2; half > 0; half /= 2) {
        for (std::size_t i = 0; i < half; ++i)
            sums[i] += sums[i + half];
    }
    return sums[0];
}

/// The sums and extremes so far, and what is left of the samples.
template <class Sample>
Spread Finish(const Sample* samples, std::size_t begin, std::size_t count, double center,
              std::array<double, kSums>& sums, std::array<double, kSums>& squares, Sample minimum,
              Sample maximum) {
    for (std::size_t i = begin; i < count; ++i) {
        const double difference = static_cast<double>(samples[i]) - center;
        sums[i % kSums] += difference;
        squares[i % kSums] += difference * difference;
        minimum = std::min(minimum, samples[i]);
        maximum = std::max(maximum, samples[i]);
    }
    return {Join(sums), Join(squares), static_cast<double>(minimum), static_cast<double>(maximum)};
}

#if HWY_TARGET == HWY_SCALAR

template <class Sample>
Spread SpreadAroundCenter(const Sample* samples, std::size_t count, double center) {
    std::array<double, kSums> sums = {};
    std::array<double, kSums> squares = {};
    return Finish(samples, 0, count, center, sums, squares, samples[0], samples[0]);
}

#else

template <class Sample>
Spread SpreadAroundCenter(const Sample* samples, std::size_t count, double center) {
    const hn::CappedTag<double, kSums> d;
    const hn::Rebind<Sample, decltype(d)> few;
    const hn::CappedTag<Sample, kSums> many;
    constexpr std::size_t kLanes = hn::MaxLanes(decltype(d)());
    constexpr std::size_t kManyLanes = hn::MaxLanes(decltype(many)());
    static_assert(kSums % kLanes == 0 && kSums % kManyLanes == 0);
    const auto middle = hn::Set(d, center);
    std::array<hn::Vec<decltype(d)>, kSums / kLanes> sum;
    sum.fill(hn::Zero(d));
    auto square = sum;
    auto minimum = hn::Set(many, samples[0]);
    auto maximum = minimum;
    std::size_t i = 0;
    for (; i + kSums <= count; i += kSums) {
        for (std::size_t k = 0; k < sum.size(); ++k) {
            const auto value = hn::PromoteTo(d, hn::LoadU(few, samples + i + k * kLanes));
            const auto difference = hn::Sub(value, middle);
            sum[k] = hn::Add(sum[k], difference);
            square[k] = hn::Add(square[k], hn::Mul(difference, difference));
        }
        for (std::size_t k = 0; k < kSums; k += kManyLanes) {
            const auto value = hn::LoadU(many, samples + i + k);
            minimum = hn::Min(minimum, value);
            maximum = hn::Max(maximum, value);
        }
    }
    std::array<double, kSums> sums;
    std::array<double, kSums> squares;
    for (std::size_t k = 0; k < sum.size(); ++k) {
        hn::StoreU(sum[k], d, sums.data() + k * kLanes);
        hn::StoreU(square[k], d, squares.data() + k * kLanes);
    }
    return Finish(samples, i, count, center, sums, squares,
                  hn::GetLane(hn::MinOfLanes(many, minimum)),
                  hn::GetLane(hn::MaxOfLanes(many, maximum)));
}

#endif

Spread SpreadOfInts(const std::int32_t* samples, std::size_t count, double center) {
    return SpreadAroundCenter(samples, count, center);
}

Spread SpreadOfFloats(const float* samples, std::size_t count, double center) {
    return SpreadAroundCenter(samples, count, center);
}

}  // namespace rastrel::simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rastrel::simd {

HWY_EXPORT(SumsOfBytes);
HWY_EXPORT(SumsOfShorts);
HWY_EXPORT(SpreadOfInts);
HWY_EXPORT(SpreadOfFloats);

WholeSums SumsOf(const std::uint8_t* samples, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(SumsOfBytes)(samples, count);
}

WholeSums SumsOf(const std::int16_t* samples, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(SumsOfShorts)(samples, count);
}

Spread SpreadAround(const std::int32_t* samples, std::size_t count, double center) {
    return HWY_DYNAMIC_DISPATCH(SpreadOfInts)(samples, count, center);
}

Spread SpreadAround(const float* samples, std::size_t count, double center) {
    return HWY_DYNAMIC_DISPATCH(SpreadOfFloats)(samples, count, center);
}

}  // namespace rastrel::simd
#endif  // HWY_ONCE
