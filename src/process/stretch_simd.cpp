#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "process/stretch_simd.cpp"
// One target more than by default: its byte permutations look bytes up.
#define HWY_WANT_AVX3_DL
#include <hwy/foreach_target.h>
// After foreach_target.h
#include <hwy/highway.h>

#include "process/stretch_kernels.h"
#if HWY_TARGET != HWY_SCALAR
#include "process/truncate-inl.h"
#endif

HWY_BEFORE_NAMESPACE();
namespace rastrel::simd::HWY_NAMESPACE {

/// Maps what is left from begin on.
void MapRest(const ByteTable& table, const std::uint8_t* samples, std::size_t begin,
             std::size_t count, std::uint8_t* out) {
    for (std::size_t i = begin; i < count; ++i)
        out[i] = table[samples[i]];
}

#if HWY_TARGET == HWY_SCALAR

void StretchBytesHere(const std::uint8_t* samples, std::size_t count,
                      const StretchBounds& /*bounds*/, const ByteTable& table, std::uint8_t* out) {
    MapRest(table, samples, 0, count, out);
}

template <class Sample>
bool StretchHere(const Sample* /*samples*/, std::size_t /*count*/, const StretchBounds& /*bounds*/,
                 std::uint8_t* /*out*/) {
    return false;
}

#else

#if HWY_TARGET == HWY_AVX3_DL

void StretchBytesHere(const std::uint8_t* samples, std::size_t count,
                      const StretchBounds& /*bounds*/, const ByteTable& table, std::uint8_t* out) {
    const __m512i part0 = _mm512_loadu_si512(table.data());
    const __m512i part1 = _mm512_loadu_si512(table.data() + 64);
    const __m512i part2 = _mm512_loadu_si512(table.data() + 128);
    const __m512i part3 = _mm512_loadu_si512(table.data() + 192);
    std::size_t i = 0;
    for (; i + 64 <= count; i += 64) {
        const __m512i index = _mm512_loadu_si512(samples + i);
        // Two look-ups in 128 entries each, by an index's low seven bits; its top bit chooses.
        const __m512i low = _mm512_permutex2var_epi8(part0, index, part1);
        const __m512i high = _mm512_permutex2var_epi8(part2, index, part3);
        _mm512_storeu_si512(out + i, _mm512_mask_blend_epi8(_mm512_movepi8_mask(index), low, high));
    }
    MapRest(table, samples, i, count, out);
}

#else

/// A stretch as clamp((factor * byte + offset) >> shift, 0, 255).
struct Line {
    std::int32_t factor = 0;
    std::int32_t offset = 0;
    int shift = 0;

    [[nodiscard]] std::uint8_t At(std::size_t byte) const {
        const std::int32_t value = factor * static_cast<std::int32_t>(byte) + offset;
        return static_cast<std::uint8_t>(std::clamp(value >> shift, 0, 255));
    }
};

/// With as many fraction bits as fit, a line meets the plain form for almost all bounds. None where
/// it does not.
std::optional<Line> LineThrough(const StretchBounds& bounds, const ByteTable& table) {
    // Whole values may come out a little too low on either way: they are the ones to lift.
    constexpr double kLift = 1e-4;
    const double slope = 255 / (bounds.high - bounds.low);
    const double start = kLift - bounds.low * slope;
    const double most = std::abs(start) + 255 * std::abs(slope);
    if (!(most < 1e5)) return std::nullopt;
    Line line;
    line.shift = 30 - std::ilogb(std::max(most, 1.0));
    line.factor = static_cast<std::int32_t>(std::nearbyint(std::ldexp(slope, line.shift)));
    line.offset = static_cast<std::int32_t>(std::nearbyint(std::ldexp(start, line.shift)));
    for (std::size_t byte = 0; byte < table.size(); ++byte) {
        if (line.At(byte) != table[byte]) return std::nullopt;
    }
    return line;
}

void StretchBytesHere(const std::uint8_t* samples, std::size_t count, const StretchBounds& bounds,
                      const ByteTable& table, std::uint8_t* out) {
    const hn::ScalableTag<std::uint8_t> d;
    const hn::Repartition<std::int32_t, decltype(d)> words;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    if (const std::optional<Line> line = LineThrough(bounds, table)) {
        const auto factor = hn::Set(words, line->factor);
        const auto offset = hn::Set(words, line->offset);
        const auto zero = hn::Zero(words);
        const auto most = hn::Set(words, 255);
        const auto stretch = [&](auto bytes) HWY_ATTR {
            const auto value =
                hn::ShiftRightSame(hn::Add(hn::Mul(bytes, factor), offset), line->shift);
            return hn::Min(hn::Max(value, zero), most);
        };
        for (; i + lanes <= count; i += lanes) {
            const auto v = hn::BitCast(words, hn::LoadU(d, samples + i));
            const auto byte0 = stretch(hn::And(v, most));
            const auto byte1 = stretch(hn::And(hn::ShiftRight<8>(v), most));
            const auto byte2 = stretch(hn::And(hn::ShiftRight<16>(v), most));
            const auto byte3 = stretch(hn::And(hn::ShiftRight<24>(v), most));
            const auto all = hn::Or(hn::Or(byte0, hn::ShiftLeft<8>(byte1)),
                                    hn::Or(hn::ShiftLeft<16>(byte2), hn::ShiftLeft<24>(byte3)));
            hn::StoreU(hn::BitCast(d, all), d, out + i);
        }
    }
    MapRest(table, samples, i, count, out);
}

#endif

/// Bytes of (difference * slope + start): difference is the sample less near_low, rounded once, of
/// a sample that settle(i) knows how to do exactly.
///
/// The error: difference, slope, product and sum are each rounded by at most 2^-24 of themselves,
/// and in the range that matters they are at most 256 + 2 |start|.
class StretchKernel {
  public:
    StretchKernel(const StretchBounds& bounds, double near_low)
        : slope_(255 / (bounds.high - bounds.low)),
          start_((near_low - bounds.low) * slope_),
          bound_((256 + 2 * std::abs(start_)) * 6 * 0x1p-24) {}

    [[nodiscard]] bool IsUsable() const {
        return std::abs(slope_) > 1e-30 && std::abs(slope_) < 1e30 && bound_ < 0.1;
    }

    HWY_INLINE Estimate operator()(FloatVector difference) const {
        const FloatTag df;
        const auto less_half = hn::MulAdd(difference, hn::Set(df, static_cast<float>(slope_)),
                                          hn::Set(df, static_cast<float>(start_ - 0.5)));
        const auto most = hn::Set(df, 255.0f);
        const auto cut = hn::IfThenElse(hn::Gt(less_half, most), most, less_half);
        return TruncateLessHalf(cut, hn::Set(df, static_cast<float>(bound_)));
    }

  private:
    double slope_;
    double start_;
    double bound_;
};

/// Shorts and floats as floats, less the lower bound as a float.
template <class Sample>
class FloatDifference {
  public:
    explicit FloatDifference(const StretchBounds& bounds)
        : near_low_(static_cast<float>(bounds.low)) {}

    [[nodiscard]] bool IsUsable() const { return std::isfinite(near_low_); }
    [[nodiscard]] double NearLow() const { return static_cast<double>(near_low_); }

    HWY_INLINE FloatVector operator()(const Sample* samples) const {
        const FloatTag df;
        const hn::Rebind<Sample, FloatTag> d;
        const hn::Rebind<std::int32_t, FloatTag> d32;
        const auto loaded = hn::LoadU(d, samples);
        if constexpr (std::is_same_v<Sample, float>)
            return hn::Sub(loaded, hn::Set(df, near_low_));
        else
            return hn::Sub(hn::ConvertTo(df, hn::PromoteTo(d32, loaded)), hn::Set(df, near_low_));
    }

  private:
    float near_low_;
};

/// Ints, cut off just beyond the bounds, less the lower bound as an int: exact up to the conversion
/// to float.
class IntDifference {
  public:
    explicit IntDifference(const StretchBounds& bounds)
        : low_(std::floor(bounds.low) - 1), high_(std::ceil(bounds.high) + 1) {}

    [[nodiscard]] bool IsUsable() const {
        constexpr double kMost = std::numeric_limits<std::int32_t>::max();
        return low_ >= -kMost && high_ <= kMost && high_ - low_ <= kMost;
    }
    [[nodiscard]] double NearLow() const { return low_; }

    HWY_INLINE FloatVector operator()(const std::int32_t* samples) const {
        const FloatTag df;
        const hn::Rebind<std::int32_t, FloatTag> d;
        const auto low = hn::Set(d, static_cast<std::int32_t>(low_));
        const auto high = hn::Set(d, static_cast<std::int32_t>(high_));
        const auto cut = hn::Min(hn::Max(hn::LoadU(d, samples), low), high);
        return hn::ConvertTo(df, hn::Sub(cut, low));
    }

  private:
    double low_;
    double high_;
};

template <class Sample, class Difference>
bool StretchBy(const Difference& difference, const Sample* samples, std::size_t count,
               const StretchBounds& bounds, std::uint8_t* out) {
    const std::size_t lanes = hn::Lanes(FloatTag());
    if (!difference.IsUsable() || !(bounds.low < bounds.high) || count < lanes) return false;
    const StretchKernel kernel(bounds, difference.NearLow());
    if (!kernel.IsUsable()) return false;
    VisitVectors(count, lanes, [&](std::size_t i) HWY_ATTR {
        const Estimate estimate = kernel(difference(samples + i));
        if (HWY_LIKELY(hn::AllTrue(FloatTag(), estimate.is_certain)))
            StoreBytes(estimate.bytes, out + i);
        else
            StoreSettled(estimate, out + i, [&](std::size_t lane, std::uint8_t /*kept*/) {
                return plain::Stretch(static_cast<double>(samples[i + lane]), bounds);
            });
    });
    return true;
}

bool StretchHere(const std::int32_t* samples, std::size_t count, const StretchBounds& bounds,
                 std::uint8_t* out) {
    return StretchBy(IntDifference(bounds), samples, count, bounds, out);
}

template <class Sample>
bool StretchHere(const Sample* samples, std::size_t count, const StretchBounds& bounds,
                 std::uint8_t* out) {
    return StretchBy(FloatDifference<Sample>(bounds), samples, count, bounds, out);
}

#endif

bool StretchShorts(const std::int16_t* samples, std::size_t count, const StretchBounds& bounds,
                   std::uint8_t* out) {
    return StretchHere(samples, count, bounds, out);
}

bool StretchInts(const std::int32_t* samples, std::size_t count, const StretchBounds& bounds,
                 std::uint8_t* out) {
    return StretchHere(samples, count, bounds, out);
}

bool StretchFloats(const float* samples, std::size_t count, const StretchBounds& bounds,
                   std::uint8_t* out) {
    return StretchHere(samples, count, bounds, out);
}

}  // namespace rastrel::simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rastrel::simd {

HWY_EXPORT(StretchBytesHere);
HWY_EXPORT(StretchShorts);
HWY_EXPORT(StretchInts);
HWY_EXPORT(StretchFloats);

void StretchBytes(const std::uint8_t* samples, std::size_t count, const StretchBounds& bounds,
                  const ByteTable& table, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(StretchBytesHere)(samples, count, bounds, table, out);
}

bool Stretch(const std::int16_t* samples, std::size_t count, const StretchBounds& bounds,
             std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(StretchShorts)(samples, count, bounds, out);
}

bool Stretch(const std::int32_t* samples, std::size_t count, const StretchBounds& bounds,
             std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(StretchInts)(samples, count, bounds, out);
}

bool Stretch(const float* samples, std::size_t count, const StretchBounds& bounds,
             std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(StretchFloats)(samples, count, bounds, out);
}

}  // namespace rastrel::simd
#endif  // HWY_ONCE
