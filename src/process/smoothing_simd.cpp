#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "process/smoothing_simd.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h
#include <hwy/highway.h>

#include "process/smoothing_kernels.h"
#include "process/smoothing_plain.h"

HWY_BEFORE_NAMESPACE();
namespace rastrel::simd::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

template <class Sample>
void SmoothRest(const ThreeRows<Sample>& first, std::size_t begin, std::size_t count, Sample* out) {
    for (std::size_t i = begin; i < count; ++i)
        out[i] = plain::Smooth(first.At(i));
}

#if HWY_TARGET == HWY_SCALAR

template <class Sample>
void SmoothRowHere(const ThreeRows<Sample>& rows, std::size_t count, Sample* out) {
    SmoothRest(rows.At(1), 0, count, out);
}

#else

/// The weighted sum in the plain form's order.
template <class Sample, class Load>
HWY_INLINE auto WeightedSum(const ThreeRows<Sample>& at, Load load) {
    const auto middle = load(at.middle);
    const auto doubled = hn::Add(middle, middle);
    auto sum = hn::Add(load(at.above - 1), load(at.above));
    sum = hn::Add(sum, load(at.above + 1));
    sum = hn::Add(sum, load(at.middle - 1));
    sum = hn::Add(sum, load(at.middle + 1));
    sum = hn::Add(sum, load(at.below - 1));
    sum = hn::Add(sum, load(at.below));
    sum = hn::Add(sum, load(at.below + 1));
    return hn::Add(sum, hn::Add(doubled, doubled));
}

/// Whether the formula gives the whole part of a twelfth for sums from 0 to most, as 43691 / 2^19
/// does for sums up to 43691.
constexpr bool IsWholeTwelfth(std::int32_t most) {
    for (std::int32_t sum = 0; sum <= most; ++sum) {
        if (static_cast<std::int32_t>(sum * kSmoothingFactor) != sum / 12) return false;
        if ((std::int64_t{sum} * 43691) >> 19 != sum / 12) return false;
    }
    return true;
}

struct ByteSmoothing {
    using Tag = hn::ScalableTag<std::uint16_t>;
    static_assert(IsWholeTwelfth(12 * 255));

    HWY_INLINE void operator()(const ThreeRows<std::uint8_t>& at, std::uint8_t* out) const {
        const Tag d;
        const hn::RebindToSigned<Tag> signed16;
        const hn::Rebind<std::uint8_t, Tag> bytes;
        const auto sum = WeightedSum(at, [&](const std::uint8_t* from) HWY_ATTR {
            return hn::PromoteTo(d, hn::LoadU(bytes, from));
        });
        const auto value = hn::ShiftRight<3>(hn::MulHigh(sum, hn::Set(d, 43691)));
        hn::StoreU(hn::DemoteTo(bytes, hn::BitCast(signed16, value)), bytes, out);
    }
};

/// Sums of shorts have at most 19 bits: exact as floats. Times a little more than a twelfth, by
/// 2^-21 of it, multiples of 12 come out just above their quotient in spite of the rounding, and
/// the others, a twelfth or more below the next whole value, stay below it. The formula, whose
/// factor is 2^-54 of itself below a twelfth, gives the whole part, too: it rounds multiples of 12
/// back.
struct ShortSmoothing {
    using Tag = hn::ScalableTag<std::int32_t>;

    HWY_INLINE void operator()(const ThreeRows<std::int16_t>& at, std::int16_t* out) const {
        constexpr auto kTwelfth = static_cast<float>((1 + 0x1p-21) / 12);
        const Tag d;
        const hn::RebindToFloat<Tag> df;
        const hn::Rebind<std::int16_t, Tag> shorts;
        const auto sum = WeightedSum(at, [&](const std::int16_t* from) HWY_ATTR {
            return hn::PromoteTo(d, hn::LoadU(shorts, from));
        });
        const auto value = hn::Mul(hn::ConvertTo(df, sum), hn::Set(df, kTwelfth));
        hn::StoreU(hn::DemoteTo(shorts, hn::ConvertTo(d, value)), shorts, out);
    }
};

/// 32-bit sums wrap as the plain form's do. The whole part of a twelfth, which is what the formula
/// gives, is sum * ceil(2^33 / 12) / 2^33, and one more for negative sums.
struct IntSmoothing {
    using Tag = hn::ScalableTag<std::int32_t>;

    HWY_INLINE void operator()(const ThreeRows<std::int32_t>& at, std::int32_t* out) const {
        const Tag d;
        const auto sum =
            WeightedSum(at, [&](const std::int32_t* from) HWY_ATTR { return hn::LoadU(d, from); });
        const auto factor = hn::Set(d, 0x2aaaaaab);
        const auto even = hn::BitCast(d, hn::MulEven(sum, factor));
        const auto odd = hn::BitCast(d, hn::MulEven(hn::DupOdd(sum), factor));
        const auto quotient = hn::ShiftRight<1>(hn::OddEven(odd, hn::DupOdd(even)));
        hn::StoreU(hn::Sub(quotient, hn::ShiftRight<31>(sum)), d, out);
    }
};

/// The formula in doubles.
struct FloatSmoothing {
    using Tag = hn::ScalableTag<double>;

    HWY_INLINE void operator()(const ThreeRows<float>& at, float* out) const {
        const Tag d;
        const hn::Rebind<float, Tag> floats;
        const auto sum = WeightedSum(at, [&](const float* from) HWY_ATTR {
            return hn::PromoteTo(d, hn::LoadU(floats, from));
        });
        hn::StoreU(hn::DemoteTo(floats, hn::Mul(sum, hn::Set(d, kSmoothingFactor))), floats, out);
    }
};

template <class Smoothing, class Sample>
HWY_INLINE void SmoothBy(const Smoothing& smoothing, const ThreeRows<Sample>& rows,
                         std::size_t count, Sample* out) {
    const std::size_t lanes = hn::Lanes(typename Smoothing::Tag());
    const ThreeRows<Sample> first = rows.At(1);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes)
        smoothing(first.At(i), out + i);
    if (i < count && count >= lanes) {
        // Some cells before the last ones once more: the same samples again.
        smoothing(first.At(count - lanes), out + count - lanes);
        i = count;
    }
    SmoothRest(first, i, count, out);
}

void SmoothRowHere(const ThreeRows<std::uint8_t>& rows, std::size_t count, std::uint8_t* out) {
    SmoothBy(ByteSmoothing(), rows, count, out);
}

void SmoothRowHere(const ThreeRows<std::int16_t>& rows, std::size_t count, std::int16_t* out) {
    SmoothBy(ShortSmoothing(), rows, count, out);
}

void SmoothRowHere(const ThreeRows<std::int32_t>& rows, std::size_t count, std::int32_t* out) {
    SmoothBy(IntSmoothing(), rows, count, out);
}

void SmoothRowHere(const ThreeRows<float>& rows, std::size_t count, float* out) {
    SmoothBy(FloatSmoothing(), rows, count, out);
}

#endif

void SmoothBytes(const ThreeRows<std::uint8_t>& rows, std::size_t count, std::uint8_t* out) {
    SmoothRowHere(rows, count, out);
}

void SmoothShorts(const ThreeRows<std::int16_t>& rows, std::size_t count, std::int16_t* out) {
    SmoothRowHere(rows, count, out);
}

void SmoothInts(const ThreeRows<std::int32_t>& rows, std::size_t count, std::int32_t* out) {
    SmoothRowHere(rows, count, out);
}

void SmoothFloats(const ThreeRows<float>& rows, std::size_t count, float* out) {
    SmoothRowHere(rows, count, out);
}

}  // namespace rastrel::simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rastrel::simd {

HWY_EXPORT(SmoothBytes);
HWY_EXPORT(SmoothShorts);
HWY_EXPORT(SmoothInts);
HWY_EXPORT(SmoothFloats);

void SmoothRow(const ThreeRows<std::uint8_t>& rows, std::size_t count, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(SmoothBytes)(rows, count, out);
}

void SmoothRow(const ThreeRows<std::int16_t>& rows, std::size_t count, std::int16_t* out) {
    HWY_DYNAMIC_DISPATCH(SmoothShorts)(rows, count, out);
}

void SmoothRow(const ThreeRows<std::int32_t>& rows, std::size_t count, std::int32_t* out) {
    HWY_DYNAMIC_DISPATCH(SmoothInts)(rows, count, out);
}

void SmoothRow(const ThreeRows<float>& rows, std::size_t count, float* out) {
    HWY_DYNAMIC_DISPATCH(SmoothFloats)(rows, count, out);
}

}  // namespace rastrel::simd
#endif  // HWY_ONCE
