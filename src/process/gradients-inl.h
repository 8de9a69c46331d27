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

/// Of the eight neighbours: p = z9 - z1 and q = z3 - z7 serve both gradients.
template <class D>
struct Differences {
    hn::Vec<D> p;
    hn::Vec<D> q;
    hn::Vec<D> across;
    hn::Vec<D> down;

    [[nodiscard]] HWY_INLINE hn::Vec<D> X() const {
        return hn::Add(hn::Add(p, q), hn::Add(across, across));
    }
    [[nodiscard]] HWY_INLINE hn::Vec<D> Y() const {
        return hn::Add(hn::Sub(p, q), hn::Add(down, down));
    }
};

/// Loads the neighbours of a vector of cells with load(address).
template <class D, class Sample, class Load>
HWY_INLINE Differences<D> LoadDifferences(const ThreeRows<Sample>& at, Load load) {
    return {hn::Sub(load(at.below + 1), load(at.above - 1)),
            hn::Sub(load(at.above + 1), load(at.below - 1)),
            hn::Sub(load(at.middle + 1), load(at.middle - 1)),
            hn::Sub(load(at.below), load(at.above))};
}

/// Bytes: gradients are at most 1,020 and exact in 16-bit lanes.
struct ByteGradients {
    HWY_INLINE VectorGradient operator()(const ThreeRows<std::uint8_t>& at) const {
        const FloatTag df;
        const hn::Rebind<std::int32_t, FloatTag> d32;
        using D16 = hn::Rebind<std::int16_t, FloatTag>;
        const hn::Rebind<std::uint8_t, FloatTag> d8;
        const auto z = LoadDifferences<D16>(at, [d8](const std::uint8_t* from) HWY_ATTR {
            return hn::PromoteTo(D16(), hn::LoadU(d8, from));
        });
        return {hn::ConvertTo(df, hn::PromoteTo(d32, z.X())),
                hn::ConvertTo(df, hn::PromoteTo(d32, z.Y())), hn::Zero(df)};
    }
};

/// Whole samples below 2^27: gradients are exact in 32-bit lanes.
template <class Sample>
struct WholeGradients {
    HWY_INLINE VectorGradient operator()(const ThreeRows<Sample>& at) const {
        const FloatTag df;
        using D32 = hn::Rebind<std::int32_t, FloatTag>;
        const hn::Rebind<Sample, FloatTag> samples;
        const auto z = LoadDifferences<D32>(at, [samples](const Sample* from) HWY_ATTR {
            const auto loaded = hn::LoadU(samples, from);
            if constexpr (std::is_same_v<Sample, std::int32_t>)
                return loaded;
            else
                return hn::PromoteTo(D32(), loaded);
        });
        return {hn::ConvertTo(df, z.X()), hn::ConvertTo(df, z.Y()), hn::Zero(df)};
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
        const auto z = LoadDifferences<FloatTag>(
            at, [df](const float* from) HWY_ATTR { return hn::LoadU(df, from); });
        const auto straight = hn::Add(hn::Abs(z.across), hn::Abs(z.down));
        const auto oblique = hn::Add(hn::Abs(z.p), hn::Abs(z.q));
        const auto size = hn::Add(oblique, hn::Add(straight, straight));
        const auto error = hn::MulAdd(size, hn::Set(df, 0x1p-22f), hn::Set(df, formula_error));
        return {z.X(), z.Y(), error};
    }
    float formula_error;
};

/// Any samples: the formula's own operations in doubles, so that nothing is in error but the last
/// rounding to single.
template <class Sample>
struct DoubleGradients {
    HWY_INLINE VectorGradient operator()(const ThreeRows<Sample>& at) const {
        const FloatTag df;
        const Half half;
        const auto low = SumsOf(at);
        const auto high = SumsOf(at.At(hn::Lanes(half)));
        return {hn::Combine(df, high.x, low.x), hn::Combine(df, high.y, low.y), hn::Zero(df)};
    }

  private:
    using Half = hn::Half<FloatTag>;
    struct Sums {
        hn::Vec<Half> x;
        hn::Vec<Half> y;
    };

    HWY_INLINE static Sums SumsOf(const ThreeRows<Sample>& at) {
        const hn::Rebind<double, Half> d;
        const hn::Rebind<Sample, Half> samples;
        const auto load = [&](const Sample* from)
                              HWY_ATTR { return hn::PromoteTo(d, hn::LoadU(samples, from)); };
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
        return {hn::DemoteTo(Half(), hn::Sub(right, left)),
                hn::DemoteTo(Half(), hn::Sub(lower, upper))};
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
