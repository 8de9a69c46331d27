// Gradients of a vector of cells, included once for each set of instructions.

#if defined(RASTREL_PROCESS_GRADIENTS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef RASTREL_PROCESS_GRADIENTS_INL_H_
#undef RASTREL_PROCESS_GRADIENTS_INL_H_
#else
#define RASTREL_PROCESS_GRADIENTS_INL_H_
#endif

#include <hwy/highway.h>

#include <cstdint>
#include <type_traits>

#include "process/grid.h"
#include "process/truncate-inl.h"

HWY_BEFORE_NAMESPACE();
namespace rastrel::simd::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

/// (z3 + 2 z6 + z9) - (z1 + 2 z4 + z7) to the right and (z7 + 2 z8 + z9) - (z1 + 2 z2 + z3)
/// downward, without any scale. Each is within error of the true sums, besides a relative error of
/// 2^-24 for being single.
struct VectorGradient {
    FloatVector x;
    FloatVector y;
    FloatVector error;
};

/// From the eight neighbours by their differences: p = z9 - z1 and q = z3 - z7 serve both.
template <class D, class V = hn::Vec<D>>
HWY_INLINE void SumDifferences(V p, V q, V across, V down, V& x, V& y) {
    x = hn::Add(hn::Add(p, q), hn::Add(across, across));
    y = hn::Add(hn::Sub(p, q), hn::Add(down, down));
}

/// Loads the eight neighbours of a vector of cells with load(address).
template <class D, class Sample, class Load>
HWY_INLINE void LoadDifferences(const ThreeRows<Sample>& at, Load load, hn::Vec<D>& p,
                                hn::Vec<D>& q, hn::Vec<D>& across, hn::Vec<D>& down) {
    p = hn::Sub(load(at.below + 1), load(at.above - 1));
    q = hn::Sub(load(at.above + 1), load(at.below - 1));
    across = hn::Sub(load(at.middle + 1), load(at.middle - 1));
    down = hn::Sub(load(at.below), load(at.above));
}

/// Bytes: gradients are at most 1,020 and exact in 16-bit lanes.
struct ByteGradients {
    HWY_INLINE VectorGradient operator()(const ThreeRows<std::uint8_t>& at) const {
        const FloatTag df;
        const hn::Rebind<std::int32_t, FloatTag> d32;
        using D16 = hn::Rebind<std::int16_t, FloatTag>;
        const hn::Rebind<std::uint8_t, FloatTag> d8;
        hn::Vec<D16> p, q, across, down, x, y;
        LoadDifferences<D16>(
            at,
            [d8](const std::uint8_t* from) { return hn::PromoteTo(D16(), hn::LoadU(d8, from)); }, p,
            q, across, down);
        SumDifferences<D16>(p, q, across, down, x, y);
        return {hn::ConvertTo(df, hn::PromoteTo(d32, x)), hn::ConvertTo(df, hn::PromoteTo(d32, y)),
                hn::Zero(df)};
    }
};

/// Whole samples below 2^27: gradients are exact in 32-bit lanes.
template <class Sample>
struct WholeGradients {
    HWY_INLINE VectorGradient operator()(const ThreeRows<Sample>& at) const {
        const FloatTag df;
        using D32 = hn::Rebind<std::int32_t, FloatTag>;
        const hn::Rebind<Sample, FloatTag> samples;
        hn::Vec<D32> p, q, across, down, x, y;
        LoadDifferences<D32>(
            at,
            [samples](const Sample* from) {
                const auto loaded = hn::LoadU(samples, from);
                if constexpr (std::is_same_v<Sample, std::int32_t>)
                    return loaded;
                else
                    return hn::PromoteTo(D32(), loaded);
            },
            p, q, across, down);
        SumDifferences<D32>(p, q, across, down, x, y);
        return {hn::ConvertTo(df, x), hn::ConvertTo(df, y), hn::Zero(df)};
    }
};

/// Floats in single precision. Each difference is rounded once and each sum of them once more: with
/// D = |p| + |q| + 2 |across| + 2 |down| the error is below 3 * 2^-24 D. The formula's own
/// rounding, in doubles, is below 2^-49 of the largest sample.
struct FloatGradients {
    explicit FloatGradients(double magnitude)
        : formula_error(static_cast<float>(magnitude * 0x1p-48)) {}

    HWY_INLINE VectorGradient operator()(const ThreeRows<float>& at) const {
        const FloatTag df;
        FloatVector p, q, across, down, x, y;
        LoadDifferences<FloatTag>(
            at, [df](const float* from) { return hn::LoadU(df, from); }, p, q, across, down);
        SumDifferences<FloatTag>(p, q, across, down, x, y);
        const auto straight = hn::Add(hn::Abs(across), hn::Abs(down));
        const auto oblique = hn::Add(hn::Abs(p), hn::Abs(q));
        const auto size = hn::Add(oblique, hn::Add(straight, straight));
        return {x, y, hn::MulAdd(size, hn::Set(df, 0x1p-22f), hn::Set(df, formula_error))};
    }
    float formula_error;
};

/// Any samples: the formula's own operations in doubles, so that nothing is in error but the last
/// rounding to single.
template <class Sample>
struct DoubleGradients {
    HWY_INLINE VectorGradient operator()(const ThreeRows<Sample>& at) const {
        const FloatTag df;
        const hn::Half<FloatTag> half;
        FloatVector x, y;
        hn::Vec<decltype(half)> x_low, y_low, x_high, y_high;
        Sums(at, x_low, y_low);
        Sums(at.At(hn::Lanes(half)), x_high, y_high);
        return {hn::Combine(df, x_high, x_low), hn::Combine(df, y_high, y_low), hn::Zero(df)};
    }

  private:
    template <class V>
    HWY_INLINE static void Sums(const ThreeRows<Sample>& at, V& x, V& y) {
        const hn::Half<FloatTag> half;
        const hn::Rebind<double, decltype(half)> d;
        const hn::Rebind<Sample, decltype(half)> samples;
        const auto load = [&](const Sample* from) {
            return hn::PromoteTo(d, hn::LoadU(samples, from));
        };
        const auto weighted = [&](auto first, auto middle, auto last) HWY_ATTR {
            return hn::Add(hn::Add(first, hn::Add(middle, middle)), last);
        };
        const auto z1 = load(at.above - 1);
        const auto z3 = load(at.above + 1);
        const auto z7 = load(at.below - 1);
        const auto z9 = load(at.below + 1);
        const auto right = weighted(z3, load(at.middle + 1), z9);
        const auto left = weighted(z1, load(at.middle - 1), z7);
        const auto lower = weighted(z7, load(at.below), z9);
        const auto upper = weighted(z1, load(at.above), z3);
        x = hn::DemoteTo(half, hn::Sub(right, left));
        y = hn::DemoteTo(half, hn::Sub(lower, upper));
    }
};

/// Where all eight neighbours are equal: the formula gives exactly 0 for both gradients there. (In
/// floats, differences of 0 in pairs are not enough: the formula's sums may round differently.)
template <class Sample>
HWY_INLINE FloatMask LevelGround(const ThreeRows<Sample>& at) {
    const hn::Rebind<Sample, FloatTag> samples;
    const hn::Rebind<std::int32_t, FloatTag> d32;
    const FloatTag df;
    const auto load = [&](const Sample* from) HWY_ATTR {
        const auto loaded = hn::LoadU(samples, from);
        if constexpr (std::is_same_v<Sample, float>)
            return loaded;
        else if constexpr (std::is_same_v<Sample, std::int32_t>)
            return hn::BitCast(df, loaded);
        else
            return hn::BitCast(df, hn::PromoteTo(d32, loaded));
    };
    const auto same = [&](auto a, auto b) HWY_ATTR {
        if constexpr (std::is_same_v<Sample, float>)
            return hn::Eq(a, b);
        else
            return hn::RebindMask(df, hn::Eq(hn::BitCast(d32, a), hn::BitCast(d32, b)));
    };
    const auto first = load(at.above - 1);
    auto level = hn::And(same(first, load(at.above)), same(first, load(at.above + 1)));
    level =
        hn::And(level, hn::And(same(first, load(at.middle - 1)), same(first, load(at.middle + 1))));
    return hn::And(level,
                   hn::And(same(first, load(at.below - 1)),
                           hn::And(same(first, load(at.below)), same(first, load(at.below + 1)))));
}

}  // namespace rastrel::simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
