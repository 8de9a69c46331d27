#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/color_operations_simd.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h
#include <hwy/highway.h>

#include "imaging/color_operations_kernels.h"

HWY_BEFORE_NAMESPACE();
namespace rastrel::simd::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using ByteTag = hn::ScalableTag<std::uint8_t>;
using Bytes = hn::Vec<ByteTag>;

std::size_t ShiftBytes(const std::uint8_t* bytes, std::size_t count, int offset,
                       std::uint8_t* out) {
    const ByteTag d;
    const std::size_t lanes = hn::Lanes(d);
    const auto up = hn::Set(d, static_cast<std::uint8_t>(offset > 0 ? offset : 0));
    const auto down = hn::Set(d, static_cast<std::uint8_t>(offset < 0 ? -offset : 0));
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const auto raised = hn::SaturatedAdd(hn::LoadU(d, bytes + i), up);
        hn::StoreU(hn::SaturatedSub(raised, down), d, out + i);
    }
    return i;
}

using DoubleTag = hn::ScalableTag<double>;
using Doubles = hn::Vec<DoubleTag>;

/// 255 minus the values.
HWY_INLINE Doubles Inverted(Doubles values) {
    return hn::Sub(hn::Set(DoubleTag(), 255.0), values);
}

/// The quotient is rounded like that of the formula, so there is no factor in its place.
HWY_INLINE Doubles Product(Doubles a, Doubles b) {
    return hn::Div(hn::Mul(a, b), hn::Set(DoubleTag(), 255.0));
}

HWY_INLINE Doubles Overlaid(Doubles a, Doubles b) {
    const auto is_dark = hn::Lt(a, hn::Set(DoubleTag(), 128.0));
    const auto other = hn::IfThenElse(is_dark, b, Inverted(b));
    const auto own = hn::IfThenElse(is_dark, a, Inverted(a));
    const auto product = Product(hn::Add(own, own), other);
    return hn::IfThenElse(is_dark, product, Inverted(product));
}

/// What one byte of a vector is blended with.
template <BlendMode kMode>
HWY_INLINE Doubles Applied(Doubles a, Doubles b) {
    switch (kMode) {
        case BlendMode::kMultiply:
            return Product(a, b);
        case BlendMode::kScreen:
            return Inverted(Product(Inverted(a), Inverted(b)));
        case BlendMode::kOverlay:
            return Overlaid(a, b);
        case BlendMode::kDarken:
            return hn::Min(a, b);
        case BlendMode::kLighten:
            return hn::Max(a, b);
        case BlendMode::kDifference:
            return hn::Abs(hn::Sub(a, b));
        case BlendMode::kAdd:
            return hn::Min(hn::Add(a, b), hn::Set(DoubleTag(), 255.0));
        default:
            return b;
    }
}

template <BlendMode kMode>
std::size_t BlendBytesBy(const std::uint8_t* a, const std::uint8_t* b, std::size_t count,
                         double weight, std::uint8_t* out) {
    const DoubleTag d;
    const hn::Rebind<std::int32_t, DoubleTag> d32;
    const hn::Rebind<std::uint8_t, DoubleTag> d8;
    const std::size_t lanes = hn::Lanes(d);
    const auto a_weight = hn::Set(d, 1 - weight);
    const auto b_weight = hn::Set(d, weight);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const auto a_values = hn::PromoteTo(d, hn::PromoteTo(d32, hn::LoadU(d8, a + i)));
        const auto b_values = hn::PromoteTo(d, hn::PromoteTo(d32, hn::LoadU(d8, b + i)));
        const auto applied = Applied<kMode>(a_values, b_values);
        // Not fused: the rounding of both products is part of the result.
        const auto sum = hn::Add(hn::Mul(a_values, a_weight), hn::Mul(applied, b_weight));
        hn::StoreU(hn::DemoteTo(d8, hn::DemoteTo(d32, sum)), d8, out + i);
    }
    return i;
}

std::size_t BlendBytes(const std::uint8_t* a, const std::uint8_t* b, std::size_t count,
                       double weight, BlendMode mode, std::uint8_t* out) {
    switch (mode) {
        case BlendMode::kMultiply:
            return BlendBytesBy<BlendMode::kMultiply>(a, b, count, weight, out);
        case BlendMode::kScreen:
            return BlendBytesBy<BlendMode::kScreen>(a, b, count, weight, out);
        case BlendMode::kOverlay:
            return BlendBytesBy<BlendMode::kOverlay>(a, b, count, weight, out);
        case BlendMode::kDarken:
            return BlendBytesBy<BlendMode::kDarken>(a, b, count, weight, out);
        case BlendMode::kLighten:
            return BlendBytesBy<BlendMode::kLighten>(a, b, count, weight, out);
        case BlendMode::kDifference:
            return BlendBytesBy<BlendMode::kDifference>(a, b, count, weight, out);
        case BlendMode::kAdd:
            return BlendBytesBy<BlendMode::kAdd>(a, b, count, weight, out);
        default:
            return BlendBytesBy<BlendMode::kNormal>(a, b, count, weight, out);
    }
}

#if HWY_TARGET == HWY_SCALAR

std::size_t PaintMasked(const std::uint8_t* /*target*/, const std::uint8_t* /*mask*/,
                        std::size_t /*count*/, bool /*invert*/, const Bgr& /*color*/,
                        std::uint8_t* /*out*/) {
    return 0;
}

std::size_t KeepWhereKey(const std::uint8_t* /*other*/, std::size_t /*count*/, const Bgr& /*key*/,
                         const std::uint8_t* /*kept*/, std::uint8_t* /*out*/) {
    return 0;
}

std::size_t ReplaceNear(const std::uint8_t* /*pixels*/, std::size_t /*count*/, const Bgr& /*color*/,
                        std::uint8_t /*tolerance*/, const Bgr& /*new_color*/,
                        std::uint8_t* /*out*/) {
    return 0;
}

#else

/// The channels of as many pixels as a vector has bytes.
struct Pixels {
    Bytes blue;
    Bytes green;
    Bytes red;
};

HWY_INLINE Pixels LoadPixels(const std::uint8_t* from) {
    const ByteTag d;
    Pixels pixels;
    hn::LoadInterleaved3(d, from, pixels.blue, pixels.green, pixels.red);
    return pixels;
}

HWY_INLINE void StorePixels(const Pixels& pixels, std::uint8_t* to) {
    const ByteTag d;
    hn::StoreInterleaved3(pixels.blue, pixels.green, pixels.red, d, to);
}

HWY_INLINE Pixels SetPixels(const Bgr& color) {
    const ByteTag d;
    return {hn::Set(d, color[0]), hn::Set(d, color[1]), hn::Set(d, color[2])};
}

template <class Mask>
HWY_INLINE Pixels Choose(Mask chooses_a, const Pixels& a, const Pixels& b) {
    return {hn::IfThenElse(chooses_a, a.blue, b.blue), hn::IfThenElse(chooses_a, a.green, b.green),
            hn::IfThenElse(chooses_a, a.red, b.red)};
}

std::size_t PaintMasked(const std::uint8_t* target, const std::uint8_t* mask, std::size_t count,
                        bool invert, const Bgr& color, std::uint8_t* out) {
    const ByteTag d;
    const std::size_t lanes = hn::Lanes(d);
    const Pixels paint = SetPixels(color);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const Pixels m = LoadPixels(mask + 3 * i);
        // Some channel is 0 when their minimum is, some is not when their maximum is not.
        const auto least = hn::Min(hn::Min(m.blue, m.green), m.red);
        const auto most = hn::Max(hn::Max(m.blue, m.green), m.red);
        const auto paints = invert ? hn::Ne(most, hn::Zero(d)) : hn::Eq(least, hn::Zero(d));
        StorePixels(Choose(paints, paint, LoadPixels(target + 3 * i)), out + 3 * i);
    }
    return i;
}

std::size_t KeepWhereKey(const std::uint8_t* other, std::size_t count, const Bgr& key,
                         const std::uint8_t* kept, std::uint8_t* out) {
    const std::size_t lanes = hn::Lanes(ByteTag());
    const Pixels keys = SetPixels(key);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const Pixels p = LoadPixels(other + 3 * i);
        const auto is_key = hn::And(hn::And(hn::Eq(p.blue, keys.blue), hn::Eq(p.green, keys.green)),
                                    hn::Eq(p.red, keys.red));
        if (hn::AllFalse(ByteTag(), is_key)) continue;
        StorePixels(Choose(is_key, LoadPixels(kept + 3 * i), LoadPixels(out + 3 * i)), out + 3 * i);
    }
    return i;
}

std::size_t ReplaceNear(const std::uint8_t* pixels, std::size_t count, const Bgr& color,
                        std::uint8_t tolerance, const Bgr& new_color, std::uint8_t* out) {
    const ByteTag d;
    const std::size_t lanes = hn::Lanes(d);
    const Pixels center = SetPixels(color);
    const Pixels replacement = SetPixels(new_color);
    const auto limit = hn::Set(d, tolerance);
    const auto distance = [](Bytes a, Bytes b) HWY_ATTR {
        return hn::Or(hn::SaturatedSub(a, b), hn::SaturatedSub(b, a));
    };
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const Pixels p = LoadPixels(pixels + 3 * i);
        const auto farthest =
            hn::Max(hn::Max(distance(p.blue, center.blue), distance(p.green, center.green)),
                    distance(p.red, center.red));
        const auto is_near = hn::Eq(hn::Min(farthest, limit), farthest);
        StorePixels(Choose(is_near, replacement, p), out + 3 * i);
    }
    return i;
}

#endif

}  // namespace rastrel::simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rastrel::simd {

HWY_EXPORT(PaintMasked);
HWY_EXPORT(ShiftBytes);
HWY_EXPORT(BlendBytes);
HWY_EXPORT(KeepWhereKey);
HWY_EXPORT(ReplaceNear);

std::size_t PaintMasked(const std::uint8_t* target, const std::uint8_t* mask, std::size_t count,
                        bool invert, const Bgr& color, std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(PaintMasked)(target, mask, count, invert, color, out);
}

std::size_t ShiftBytes(const std::uint8_t* bytes, std::size_t count, int offset,
                       std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(ShiftBytes)(bytes, count, offset, out);
}

std::size_t BlendBytes(const std::uint8_t* a, const std::uint8_t* b, std::size_t count,
                       double weight, BlendMode mode, std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(BlendBytes)(a, b, count, weight, mode, out);
}

std::size_t KeepWhereKey(const std::uint8_t* other, std::size_t count, const Bgr& key,
                         const std::uint8_t* kept, std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(KeepWhereKey)(other, count, key, kept, out);
}

std::size_t ReplaceNear(const std::uint8_t* pixels, std::size_t count, const Bgr& color,
                        std::uint8_t tolerance, const Bgr& new_color, std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(ReplaceNear)(pixels, count, color, tolerance, new_color, out);
}

}  // namespace rastrel::simd
#endif  // HWY_ONCE
