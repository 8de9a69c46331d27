#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/resize_simd.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h
#include <hwy/highway.h>

#include <algorithm>

#include "imaging/resize_kernels.h"

HWY_BEFORE_NAMESPACE();
namespace rastrel::simd::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

/// More rows of bytes than this might not fit 16 bits when they are added up.
constexpr std::size_t kMostAddedRows = 257;

template <class D>
HWY_INLINE hn::Vec<D> LoadAsFloats(D d, const float* from) {
    return hn::LoadU(d, from);
}

template <class D>
HWY_INLINE hn::Vec<D> LoadAsFloats(D d, const std::uint8_t* from) {
    const hn::Rebind<std::int32_t, D> d32;
    const hn::Rebind<std::uint8_t, D> d8;
    return hn::ConvertTo(d, hn::PromoteTo(d32, hn::LoadU(d8, from)));
}

/// Not fused, on any target.
template <class D>
HWY_INLINE hn::Vec<D> AddWeighed(D d, hn::Vec<D> sum, hn::Vec<D> values, float weight) {
    return hn::Add(sum, hn::Mul(values, hn::Set(d, weight)));
}

template <class D>
HWY_INLINE void StoreAsBytes(D d, hn::Vec<D> values, std::uint8_t* out) {
    const hn::Rebind<std::int32_t, D> d32;
    const hn::Rebind<std::uint8_t, D> d8;
    // Fractions are cut off; below 0 that is upward, where the bytes' range makes up for it.
    const auto rounded = hn::ConvertTo(d32, hn::Add(values, hn::Set(d, 0.5F)));
    hn::StoreU(hn::DemoteTo(d8, rounded), d8, out);
}

/// Calls part(d, i) for every vector's first sample, at the end for single samples.
template <class Part>
HWY_INLINE void ForVectors(std::size_t samples, Part part) {
    const hn::ScalableTag<float> d;
    const hn::CappedTag<float, 1> single;
    std::size_t i = 0;
    for (; i + hn::Lanes(d) <= samples; i += hn::Lanes(d))
        part(d, i);
    for (; i < samples; ++i)
        part(single, i);
}

/// The sum of the same sample of several rows.
template <class D>
HWY_INLINE hn::Vec<D> AddUp(D d, const std::uint8_t* const* rows, std::size_t row_count,
                            std::size_t i) {
    const hn::Rebind<std::uint16_t, D> d16;
    const hn::Rebind<std::int32_t, D> d32;
    const hn::Rebind<std::uint8_t, D> d8;
    auto sum = hn::Zero(d16);
    for (std::size_t k = 0; k < row_count; ++k)
        sum = hn::Add(sum, hn::PromoteTo(d16, hn::LoadU(d8, rows[k] + i)));
    return hn::ConvertTo(d, hn::PromoteTo(d32, sum));
}

bool InnerWeightsAreEqual(const WeighedRows<std::uint8_t>& from) {
    if (from.row_count < 4) return false;
    return std::all_of(from.weights + 1, from.weights + from.row_count - 1,
                       [&](float weight) { return weight == from.weights[1]; });
}

void WeighRows(const WeighedRows<std::uint8_t>& from, std::size_t samples, float* out) {
    const bool adds_up = InnerWeightsAreEqual(from);
    const std::size_t last = from.row_count - 1;
    ForVectors(samples, [&](auto d, std::size_t i) HWY_ATTR {
        auto sum = hn::Mul(LoadAsFloats(d, from.rows[0] + i), hn::Set(d, from.weights[0]));
        for (std::size_t k = 1; k <= last;) {
            const std::size_t added = adds_up ? std::min(last - k, kMostAddedRows) : 0;
            if (added > 1) {
                sum = AddWeighed(d, sum, AddUp(d, from.rows + k, added, i), from.weights[k]);
                k += added;
            } else {
                sum = AddWeighed(d, sum, LoadAsFloats(d, from.rows[k] + i), from.weights[k]);
                ++k;
            }
        }
        hn::StoreU(sum, d, out + i);
    });
}

void AddWeighedRows(const WeighedRows<float>& from, std::size_t samples, float* out) {
    ForVectors(samples, [&](auto d, std::size_t i) HWY_ATTR {
        auto sum = hn::LoadU(d, out + i);
        for (std::size_t k = 0; k < from.row_count; ++k)
            sum = AddWeighed(d, sum, LoadAsFloats(d, from.rows[k] + i), from.weights[k]);
        hn::StoreU(sum, d, out + i);
    });
}

void WeighRowsToBytes(const WeighedRows<float>& from, std::size_t samples, std::uint8_t* out) {
    const float* const first = from.rows[0];
    if (from.row_count == 2) {
        const float* const second = from.rows[1];
        ForVectors(samples, [=](auto d, std::size_t i) HWY_ATTR {
            const auto sum = hn::Mul(LoadAsFloats(d, first + i), hn::Set(d, from.weights[0]));
            StoreAsBytes(d, AddWeighed(d, sum, LoadAsFloats(d, second + i), from.weights[1]),
                         out + i);
        });
        return;
    }
    ForVectors(samples, [&](auto d, std::size_t i) HWY_ATTR {
        auto sum = hn::Mul(LoadAsFloats(d, first + i), hn::Set(d, from.weights[0]));
        for (std::size_t k = 1; k < from.row_count; ++k)
            sum = AddWeighed(d, sum, LoadAsFloats(d, from.rows[k] + i), from.weights[k]);
        StoreAsBytes(d, sum, out + i);
    });
}

/// One new pixel after the other, each channel by itself.
template <std::size_t kChannels>
void WeighColumnsPlainly(const float* row, const WeighedColumns& columns, std::size_t count,
                         float* out) {
    const float* weights = columns.weights;
    for (std::size_t i = 0; i < count; ++i, weights += columns.tap_count, out += kChannels) {
        const float* from = row + static_cast<std::size_t>(columns.first[i]) * kChannels;
        for (std::size_t c = 0; c < kChannels; ++c) {
            float sum = from[c] * weights[0];
            for (std::size_t k = 1; k < columns.tap_count; ++k)
                sum += from[k * kChannels + c] * weights[k];
            out[c] = sum;
        }
    }
}

#if HWY_TARGET == HWY_SCALAR

template <std::size_t kChannels>
void WeighPixels(const float* row, const WeighedColumns& columns, std::size_t count, float* out) {
    WeighColumnsPlainly<kChannels>(row, columns, count, out);
}

#else

/// One new pixel after the other, its channels in a vector: of three, the fourth lane belongs to
/// the next pixel and is overwritten by it.
template <std::size_t kChannels>
void WeighPixels(const float* row, const WeighedColumns& columns, std::size_t count, float* out) {
    const hn::FixedTag<float, 4> d;
    const std::size_t taps = columns.tap_count;
    const float* weights = columns.weights;
    for (std::size_t i = 0; i < count; ++i, weights += taps, out += kChannels) {
        const float* from = row + static_cast<std::size_t>(columns.first[i]) * kChannels;
        auto sum = hn::Mul(hn::LoadU(d, from), hn::Set(d, weights[0]));
        for (std::size_t k = 1; k < taps; ++k)
            sum = hn::Add(sum, hn::Mul(hn::LoadU(d, from + k * kChannels), hn::Set(d, weights[k])));
        hn::StoreU(sum, d, out);
    }
}

#endif

void WeighColumns(const float* row, std::size_t channels, const WeighedColumns& columns,
                  std::size_t count, float* out) {
    switch (channels) {
        case 1:
            WeighColumnsPlainly<1>(row, columns, count, out);
            break;
        case 3:
            WeighPixels<3>(row, columns, count, out);
            break;
        default:
            WeighPixels<4>(row, columns, count, out);
            break;
    }
}

#if HWY_TARGET == HWY_SCALAR

/// Two rows, between which pixels are found.
struct RowPair {
    const std::uint8_t* rows[2];
    float weights[2];

    explicit RowPair(const WeighedRows<std::uint8_t>& from)
        : rows{from.rows[0], from.rows[1]}, weights{from.weights[0], from.weights[1]} {}

    void WeighTwoSquares(std::size_t at, std::size_t at_second, const float* column_weights,
                         std::uint8_t* out) const {
        WeighSquare(at, column_weights, out);
        WeighSquare(at_second, column_weights + 2, out + 3);
    }
    void WeighSquare(std::size_t at, const float* column_weights, std::uint8_t* out) const {
        for (std::size_t c = at; c < at + 3; ++c, ++out) {
            const float left = BetweenRows(c) * column_weights[0];
            const float value = left + BetweenRows(c + 3) * column_weights[1] + 0.5F;
            *out = static_cast<std::uint8_t>(std::clamp(value, 0.0F, 255.0F));
        }
    }

  private:
    [[nodiscard]] float BetweenRows(std::size_t at) const {
        const float above = static_cast<float>(rows[0][at]) * weights[0];
        return above + static_cast<float>(rows[1][at]) * weights[1];
    }
};

#else

/// Two rows, between which pixels are found. As many lanes as two pixels take, if there are.
class RowPair {
  public:
    HWY_INLINE explicit RowPair(const WeighedRows<std::uint8_t>& from)
        : above_(from.rows[0]),
          below_(from.rows[1]),
          above_weight_(hn::Set(Tag(), from.weights[0])),
          below_weight_(hn::Set(Tag(), from.weights[1])) {}

    /// Writes four bytes, of which the last is the next pixel's.
    HWY_INLINE void WeighSquare(std::size_t at, const float* column_weights,
                                std::uint8_t* out) const {
        StoreAsBytes(PixelTag(), Weighed(at, column_weights), out);
    }

    /// Two pixels; writes eight bytes, of which the last two are the next pixel's.
    HWY_INLINE void WeighTwoSquares(std::size_t at, std::size_t at_second,
                                    const float* column_weights, std::uint8_t* out) const {
#if HWY_MAX_BYTES >= 32
        const hn::Rebind<std::int32_t, Tag> d32;
        const hn::Rebind<std::uint8_t, Tag> d8;
        const auto both =
            hn::Combine(Tag(), Weighed(at_second, column_weights + 2), Weighed(at, column_weights));
        const auto rounded = hn::ConvertTo(d32, hn::Add(both, hn::Set(Tag(), 0.5F)));
        alignas(8) constexpr std::uint8_t kThreeOfFour[8] = {0, 1, 2, 4, 5, 6, 7, 7};
        hn::StoreU(hn::TableLookupBytes(hn::DemoteTo(d8, rounded), hn::Load(d8, kThreeOfFour)), d8,
                   out);
#else
        WeighSquare(at, column_weights, out);
        WeighSquare(at_second, column_weights + 2, out + 3);
#endif
    }

  private:
    using Tag = hn::FixedTag<float, HWY_MAX_BYTES >= 32 ? 8 : 4>;
    using PixelTag = hn::FixedTag<float, 4>;

    HWY_INLINE hn::Vec<PixelTag> Weighed(std::size_t at, const float* column_weights) const {
        const PixelTag d;
#if HWY_MAX_BYTES >= 32
        const auto both = BetweenRows(at);
        const auto left = hn::LowerHalf(d, both);
        // The second pixel begins with lane 3.
        alignas(32) constexpr std::int32_t kSecondPixel[8] = {3, 4, 5, 6, 7, 7, 7, 7};
        const auto right =
            hn::LowerHalf(d, hn::TableLookupLanes(both, hn::SetTableIndices(Tag(), kSecondPixel)));
#else
        const auto left = BetweenRows(at);
        const auto right = BetweenRows(at + 3);
#endif
        return AddWeighed(d, hn::Mul(left, hn::Set(d, column_weights[0])), right,
                          column_weights[1]);
    }

    HWY_INLINE hn::Vec<Tag> BetweenRows(std::size_t at) const {
        return hn::Add(hn::Mul(LoadAsFloats(Tag(), above_ + at), above_weight_),
                       hn::Mul(LoadAsFloats(Tag(), below_ + at), below_weight_));
    }

    const std::uint8_t* above_;
    const std::uint8_t* below_;
    hn::Vec<Tag> above_weight_;
    hn::Vec<Tag> below_weight_;
};

#endif

void WeighSquares(const WeighedRows<std::uint8_t>& two_rows, const std::uint8_t* const* next_rows,
                  const WeighedColumns& columns, std::size_t count, std::uint8_t* out) {
    // Copies of what the bytes written might otherwise be taken to change.
    const RowPair pair(two_rows);
    const std::uint8_t* const next_above = next_rows[0];
    const std::uint8_t* const next_below = next_rows[1];
    const std::int32_t* first = columns.first;
    const float* weights = columns.weights;
    const auto place = [first](std::size_t i) HWY_ATTR {
        return std::size_t{3} * static_cast<std::uint32_t>(first[i]);
    };
    constexpr std::size_t kPixelsATouch = 8;
    std::size_t i = 0;
    for (; i + kPixelsATouch < count; i += kPixelsATouch) {
        __builtin_prefetch(next_above + place(i));
        __builtin_prefetch(next_below + place(i));
        for (std::size_t k = i; k < i + kPixelsATouch; k += 2)
            pair.WeighTwoSquares(place(k), place(k + 1), weights + 2 * k, out + 3 * k);
    }
    for (; i + 1 < count; ++i)
        pair.WeighSquare(place(i), weights + 2 * i, out + 3 * i);
    std::uint8_t last[4];
    pair.WeighSquare(static_cast<std::size_t>(first[count - 1]) * 3, weights + 2 * (count - 1),
                     last);
    std::copy_n(last, 3, out + 3 * (count - 1));
}

}  // namespace rastrel::simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rastrel::simd {

HWY_EXPORT(WeighRows);
HWY_EXPORT(AddWeighedRows);
HWY_EXPORT(WeighRowsToBytes);
HWY_EXPORT(WeighColumns);
HWY_EXPORT(WeighSquares);

void WeighRows(const WeighedRows<std::uint8_t>& from, std::size_t samples, float* out) {
    HWY_DYNAMIC_DISPATCH(WeighRows)(from, samples, out);
}

void AddWeighedRows(const WeighedRows<float>& from, std::size_t samples, float* out) {
    HWY_DYNAMIC_DISPATCH(AddWeighedRows)(from, samples, out);
}

void WeighRowsToBytes(const WeighedRows<float>& from, std::size_t samples, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(WeighRowsToBytes)(from, samples, out);
}

void WeighColumns(const float* row, std::size_t channels, const WeighedColumns& columns,
                  std::size_t count, float* out) {
    HWY_DYNAMIC_DISPATCH(WeighColumns)(row, channels, columns, count, out);
}

void WeighSquares(const WeighedRows<std::uint8_t>& two_rows, const std::uint8_t* const* next_rows,
                  const WeighedColumns& columns, std::size_t count, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(WeighSquares)(two_rows, next_rows, columns, count, out);
}

}  // namespace rastrel::simd
#endif  // HWY_ONCE
