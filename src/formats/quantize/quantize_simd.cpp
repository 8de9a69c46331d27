#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "formats/quantize/quantize_simd.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h
#include <hwy/highway.h>

#include "formats/quantize/quantize_simd.h"

HWY_BEFORE_NAMESPACE();
namespace rastrel::simd::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR

std::size_t ShortKeys(const std::uint8_t* /*pixels*/, std::size_t /*count*/, int /*bits*/,
                      std::uint16_t* /*keys*/) {
    return 0;
}

#else

std::size_t ShortKeys(const std::uint8_t* pixels, std::size_t count, int bits,
                      std::uint16_t* keys) {
    const hn::ScalableTag<std::uint16_t> d;
    const hn::Rebind<std::uint8_t, decltype(d)> d8;
    const std::size_t lanes = hn::Lanes(d);
    const int shift = 8 - bits;
    const auto less = hn::Set(d, static_cast<std::uint16_t>((1 << shift) - 1));
    const auto scaled = [&](auto part) HWY_ATTR {
        return hn::ShiftRightSame(hn::SaturatedSub(hn::PromoteTo(d, part), less), shift);
    };
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        auto first = hn::Undefined(d8);
        auto second = hn::Undefined(d8);
        auto third = hn::Undefined(d8);
        hn::LoadInterleaved3(d8, pixels + 3 * i, first, second, third);
        const auto upper = hn::Or(hn::ShiftLeftSame(scaled(first), 2 * bits),
                                  hn::ShiftLeftSame(scaled(second), bits));
        hn::StoreU(hn::Or(upper, scaled(third)), d, keys + i);
    }
    return i;
}

#endif

template <class Distance>
std::uint32_t Nearest(const ComparedColors& colors, const ColorParts& color, Distance distance) {
    const hn::CappedTag<std::int32_t, ComparedColors::kLongest> d;
    const auto first = hn::Set(d, color[0]);
    const auto second = hn::Set(d, color[1]);
    const auto third = hn::Set(d, color[2]);
    auto least = hn::Set(d, 0x7fffffff);
    auto indices = hn::Iota(d, 0);
    const auto step = hn::Set(d, static_cast<std::int32_t>(hn::Lanes(d)));
    for (std::size_t i = 0; i < colors.count; i += hn::Lanes(d)) {
        const auto sum =
            hn::Add(hn::Add(distance(hn::Sub(hn::Load(d, &colors.parts[0][i]), first)),
                            distance(hn::Sub(hn::Load(d, &colors.parts[1][i]), second))),
                    distance(hn::Sub(hn::Load(d, &colors.parts[2][i]), third)));
        least = hn::Min(least, hn::Or(hn::ShiftLeft<8>(sum), indices));
        indices = hn::Add(indices, step);
    }
    return static_cast<std::uint32_t>(hn::GetLane(hn::MinOfLanes(d, least)));
}

std::uint32_t NearestByCityBlock(const ComparedColors& colors, const ColorParts& color) {
    return Nearest(colors, color, [](auto difference) HWY_ATTR { return hn::Abs(difference); });
}

std::uint32_t NearestBySquares(const ComparedColors& colors, const ColorParts& color) {
    return Nearest(colors, color,
                   [](auto difference) HWY_ATTR { return hn::Mul(difference, difference); });
}

}  // namespace rastrel::simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rastrel::simd {

HWY_EXPORT(ShortKeys);
HWY_EXPORT(NearestByCityBlock);
HWY_EXPORT(NearestBySquares);

std::size_t ShortKeys(const std::uint8_t* pixels, std::size_t count, int bits,
                      std::uint16_t* keys) {
    return HWY_DYNAMIC_DISPATCH(ShortKeys)(pixels, count, bits, keys);
}

std::uint32_t NearestByCityBlock(const ComparedColors& colors, const ColorParts& color) {
    return HWY_DYNAMIC_DISPATCH(NearestByCityBlock)(colors, color);
}

std::uint32_t NearestBySquares(const ComparedColors& colors, const ColorParts& color) {
    return HWY_DYNAMIC_DISPATCH(NearestBySquares)(colors, color);
}

}  // namespace rastrel::simd
#endif  // HWY_ONCE
