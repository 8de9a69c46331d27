#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/rectify_simd.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h
#include <hwy/highway.h>

#include <algorithm>

#include "imaging/rectify_kernels.h"
#include "imaging/resampling.h"

HWY_BEFORE_NAMESPACE();
namespace rastrel::simd::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using DoubleTag = hn::ScalableTag<double>;
using Doubles = hn::Vec<DoubleTag>;
using IntTag = hn::Rebind<std::int32_t, DoubleTag>;

/// The places of cells, a vector of them at a time.
class CellPlaces {
  public:
    HWY_INLINE explicit CellPlaces(const CellRow& cells)
        : cells_(cells), lane_(hn::Iota(DoubleTag(), 0.0)) {}

    /// The middles of columns from a column on.
    HWY_INLINE Doubles MapX(int column) const {
        const DoubleTag d;
        const auto columns = hn::Add(hn::Set(d, static_cast<double>(column)), lane_);
        const auto middles = hn::Add(columns, hn::Set(d, 0.5));
        return hn::Add(hn::Set(d, cells_.x_min), hn::Mul(middles, hn::Set(d, cells_.cell_size)));
    }
    HWY_INLINE Doubles X(Doubles map_x) const { return Along(cells_.x, map_x); }
    HWY_INLINE Doubles Y(Doubles map_x) const { return Along(cells_.y, map_x); }

  private:
    /// Not fused, on any target.
    static HWY_INLINE Doubles Along(const CoordinateLine& line, Doubles map_x) {
        const DoubleTag d;
        const auto product = hn::Mul(hn::Set(d, line.coefficient), map_x);
        return hn::Add(hn::Add(product, hn::Set(d, line.constant)), hn::Set(d, line.origin));
    }

    CellRow cells_;  ///< a copy: nothing that is written changes it
    Doubles lane_;
};

HWY_INLINE void StoreOffsets(hn::Vec<IntTag> x, hn::Vec<IntTag> y, const PixelSteps& steps,
                             std::int32_t* out) {
    const IntTag d;
    const auto columns = hn::Mul(x, hn::Set(d, steps.column));
    const auto rows = hn::Mul(y, hn::Set(d, steps.row));
    hn::StoreU(hn::Add(hn::Add(columns, rows), hn::Set(d, steps.base)), d, out);
}

void FindNearest(const CellRow& cells, const PixelSteps& steps, double shift, int first,
                 std::size_t count, std::int32_t* offsets) {
    const DoubleTag d;
    const IntTag d32;
    const CellPlaces places(cells);
    const PixelSteps own_steps = steps;
    const auto shifts = hn::Set(d, shift);
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const auto map_x = places.MapX(first + static_cast<int>(i));
        const auto x = hn::DemoteTo(d32, hn::Add(places.X(map_x), shifts));
        const auto y = hn::DemoteTo(d32, hn::Add(places.Y(map_x), shifts));
        StoreOffsets(x, y, own_steps, offsets + i);
    }
}

void FindSquares(const CellRow& cells, const PixelSteps& steps, int first, std::size_t count,
                 std::int32_t* offsets, float* right, float* down) {
    const DoubleTag d;
    const IntTag d32;
    const hn::Rebind<float, DoubleTag> df;
    const CellPlaces places(cells);
    const PixelSteps own_steps = steps;
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const auto map_x = places.MapX(first + static_cast<int>(i));
        const auto x = places.X(map_x);
        const auto y = places.Y(map_x);
        const auto column = hn::DemoteTo(d32, x);
        const auto row = hn::DemoteTo(d32, y);
        hn::StoreU(hn::DemoteTo(df, hn::Sub(x, hn::PromoteTo(d, column))), df, right + i);
        hn::StoreU(hn::DemoteTo(df, hn::Sub(y, hn::PromoteTo(d, row))), df, down + i);
        StoreOffsets(column, row, own_steps, offsets + i);
    }
}

#if HWY_TARGET == HWY_SCALAR

void InterpolatePixel(const std::uint8_t* above, const std::uint8_t* below, float right, float down,
                      std::uint8_t* out) {
    const auto between = [=](std::size_t at) {
        const auto upper = static_cast<float>(above[at]);
        return upper + (static_cast<float>(below[at]) - upper) * down;
    };
    for (std::size_t c = 0; c < 3; ++c) {
        const float left = between(c);
        out[c] = static_cast<std::uint8_t>(left + (between(c + 3) - left) * right + 0.5F);
    }
}

void InterpolateCubicPixel(const std::uint8_t* first, std::ptrdiff_t row_step, float right,
                           float down, std::uint8_t* out) {
    const auto columns = CubicConvolution::WeightsAt(right);
    const auto rows = CubicConvolution::WeightsAt(down);
    for (std::size_t c = 0; c < 3; ++c) {
        float sum = 0;
        const std::uint8_t* row = first + c;
        for (std::size_t j = 0; j < 4; ++j, row += row_step) {
            float row_sum = 0;
            for (std::size_t i = 0; i < 4; ++i)
                row_sum += static_cast<float>(row[3 * i]) * columns[i];
            sum += row_sum * rows[j];
        }
        out[c] = static_cast<std::uint8_t>(std::clamp(sum + 0.5F, 0.0F, 255.0F));
    }
}

#else

template <class D>
HWY_INLINE hn::Vec<D> LoadBytes(D d, const std::uint8_t* from) {
    const hn::Rebind<std::int32_t, D> d32;
    const hn::Rebind<std::uint8_t, D> d8;
    return hn::ConvertTo(d, hn::PromoteTo(d32, hn::LoadU(d8, from)));
}

template <class D>
HWY_INLINE hn::Vec<D> Between(D d, hn::Vec<D> from, hn::Vec<D> to, float part) {
    return hn::Add(from, hn::Mul(hn::Sub(to, from), hn::Set(d, part)));
}

using PixelTag = hn::FixedTag<float, 4>;
using PixelFloats = hn::Vec<PixelTag>;

/// Stores four bytes.
HWY_INLINE void StoreRounded(PixelFloats values, std::uint8_t* out) {
    const PixelTag d;
    const hn::Rebind<std::int32_t, PixelTag> d32;
    const hn::Rebind<std::uint8_t, PixelTag> d8;
    const auto rounded = hn::ConvertTo(d32, hn::Add(values, hn::Set(d, 0.5F)));
    hn::StoreU(hn::DemoteTo(d8, rounded), d8, out);
}

/// Writes four bytes, of which the last is the next pixel's.
HWY_INLINE void InterpolatePixel(const std::uint8_t* above, const std::uint8_t* below, float right,
                                 float down, std::uint8_t* out) {
    const PixelTag d;
#if HWY_MAX_BYTES >= 32
    const hn::FixedTag<float, 8> both;
    const auto pixels = Between(both, LoadBytes(both, above), LoadBytes(both, below), down);
    const auto left = hn::LowerHalf(d, pixels);
    // The second pixel begins with lane 3.
    alignas(32) constexpr std::int32_t kSecondPixel[8] = {3, 4, 5, 6, 7, 7, 7, 7};
    const auto next =
        hn::LowerHalf(d, hn::TableLookupLanes(pixels, hn::SetTableIndices(both, kSecondPixel)));
#else
    const auto left = Between(d, LoadBytes(d, above), LoadBytes(d, below), down);
    const auto next = Between(d, LoadBytes(d, above + 3), LoadBytes(d, below + 3), down);
#endif
    StoreRounded(Between(d, left, next, right), out);
}

HWY_INLINE PixelFloats CubicWeights(float fraction) {
    const PixelTag d;
    const auto t = hn::Set(d, fraction);
    auto weights = hn::Mul(hn::LoadU(d, CubicConvolution::kCubic), t);
    weights = hn::Mul(hn::Add(weights, hn::LoadU(d, CubicConvolution::kSquare)), t);
    weights = hn::Mul(hn::Add(weights, hn::LoadU(d, CubicConvolution::kLinear)), t);
    return hn::Add(weights, hn::LoadU(d, CubicConvolution::kConstant));
}

/// Four pixels of a row, weighed.
HWY_INLINE PixelFloats WeighRow(const std::uint8_t* row, PixelFloats weights) {
    const PixelTag d;
    auto sum = hn::Mul(LoadBytes(d, row), hn::Broadcast<0>(weights));
    sum = hn::Add(sum, hn::Mul(LoadBytes(d, row + 3), hn::Broadcast<1>(weights)));
    sum = hn::Add(sum, hn::Mul(LoadBytes(d, row + 6), hn::Broadcast<2>(weights)));
    return hn::Add(sum, hn::Mul(LoadBytes(d, row + 9), hn::Broadcast<3>(weights)));
}

/// Writes four bytes, of which the last is the next pixel's.
HWY_INLINE void InterpolateCubicPixel(const std::uint8_t* first, std::ptrdiff_t row_step,
                                      float right, float down, std::uint8_t* out) {
    const auto columns = CubicWeights(right);
    const auto rows = CubicWeights(down);
    auto sum = hn::Mul(WeighRow(first, columns), hn::Broadcast<0>(rows));
    sum = hn::Add(sum, hn::Mul(WeighRow(first + row_step, columns), hn::Broadcast<1>(rows)));
    sum = hn::Add(sum, hn::Mul(WeighRow(first + 2 * row_step, columns), hn::Broadcast<2>(rows)));
    sum = hn::Add(sum, hn::Mul(WeighRow(first + 3 * row_step, columns), hn::Broadcast<3>(rows)));
    StoreRounded(sum, out);
}

#endif

/// Calls pixel(i, to) for each of count pixels of three bytes, where it may write four.
template <class Pixel>
HWY_INLINE void ForPixels(std::size_t count, std::uint8_t* out, Pixel pixel) {
    for (std::size_t i = 0; i + 1 < count; ++i, out += 3)
        pixel(i, out);
    std::uint8_t last[4];
    pixel(count - 1, last);
    std::copy_n(last, 3, out);
}

void Interpolate(const PixelSquares& squares, std::size_t count, std::uint8_t* out) {
    const PixelSquares from = squares;
    ForPixels(count, out, [&from](std::size_t i, std::uint8_t* to) HWY_ATTR {
        const std::uint8_t* above = from.origin + from.offsets[i];
        InterpolatePixel(above, above + from.row_step, from.right[i], from.down[i], to);
    });
}

void InterpolateCubic(const PixelSquares& squares, std::size_t count, std::uint8_t* out) {
    const PixelSquares from = squares;
    ForPixels(count, out, [&from](std::size_t i, std::uint8_t* to) HWY_ATTR {
        const std::uint8_t* first = from.origin + from.offsets[i] - from.row_step - 3;
        InterpolateCubicPixel(first, from.row_step, from.right[i], from.down[i], to);
    });
}

}  // namespace rastrel::simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rastrel::simd {

HWY_EXPORT(FindNearest);
HWY_EXPORT(FindSquares);
HWY_EXPORT(Interpolate);
HWY_EXPORT(InterpolateCubic);

void FindNearest(const CellRow& cells, const PixelSteps& steps, double shift, int first,
                 std::size_t count, std::int32_t* offsets) {
    HWY_DYNAMIC_DISPATCH(FindNearest)(cells, steps, shift, first, count, offsets);
}

void FindSquares(const CellRow& cells, const PixelSteps& steps, int first, std::size_t count,
                 std::int32_t* offsets, float* right, float* down) {
    HWY_DYNAMIC_DISPATCH(FindSquares)(cells, steps, first, count, offsets, right, down);
}

void Interpolate(const PixelSquares& squares, std::size_t count, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(Interpolate)(squares, count, out);
}

void InterpolateCubic(const PixelSquares& squares, std::size_t count, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(InterpolateCubic)(squares, count, out);
}

}  // namespace rastrel::simd
#endif  // HWY_ONCE
