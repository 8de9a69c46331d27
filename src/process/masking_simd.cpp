#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "process/masking_simd.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h
#include <hwy/highway.h>

#include "process/masking_kernels.h"

HWY_BEFORE_NAMESPACE();
namespace rastrel::simd::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

std::size_t Mask(const std::uint8_t* input, const std::uint8_t* mask, std::size_t count,
                 std::uint8_t* out) {
    const hn::ScalableTag<std::uint8_t> d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const auto is_out = hn::Eq(hn::LoadU(d, mask + i), hn::Zero(d));
        hn::StoreU(hn::IfThenZeroElse(is_out, hn::LoadU(d, input + i)), d, out + i);
    }
    return i;
}

#if HWY_TARGET == HWY_SCALAR

std::size_t Mask24(const std::uint8_t* /*input*/, const std::uint8_t* /*mask*/,
                   std::size_t /*count*/, const std::array<std::uint8_t, 3>& /*color*/,
                   bool /*invert*/, std::uint8_t* /*out*/) {
    return 0;
}

#else

/// Sixteen pixels at once: their mask's bytes, each three times over, choose among 48 bytes.
std::size_t Mask24(const std::uint8_t* input, const std::uint8_t* mask, std::size_t count,
                   const std::array<std::uint8_t, 3>& color, bool invert, std::uint8_t* out) {
    const hn::Full128<std::uint8_t> d;
    constexpr std::size_t kPixels = 16;
    alignas(16) std::array<std::uint8_t, 3 * kPixels> thrice;
    alignas(16) std::array<std::uint8_t, 3 * kPixels> colors;
    for (std::size_t i = 0; i < thrice.size(); ++i) {
        thrice[i] = static_cast<std::uint8_t>(i / 3);
        colors[i] = color[i % 3];
    }
    const auto flip = hn::Set(d, static_cast<std::uint8_t>(invert ? 255 : 0));
    std::size_t i = 0;
    for (; i + kPixels <= count; i += kPixels) {
        const auto is_zero = hn::VecFromMask(d, hn::Eq(hn::LoadU(d, mask + i), hn::Zero(d)));
        const auto is_colored = hn::Xor(is_zero, flip);
        for (std::size_t part = 0; part < thrice.size(); part += kPixels) {
            const auto chosen = hn::MaskFromVec(
                hn::TableLookupBytes(is_colored, hn::Load(d, thrice.data() + part)));
            const auto pixels = hn::LoadU(d, input + 3 * i + part);
            hn::StoreU(hn::IfThenElse(chosen, hn::Load(d, colors.data() + part), pixels), d,
                       out + 3 * i + part);
        }
    }
    return i;
}

#endif

}  // namespace rastrel::simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rastrel::simd {

HWY_EXPORT(Mask);
HWY_EXPORT(Mask24);

std::size_t Mask(const std::uint8_t* input, const std::uint8_t* mask, std::size_t count,
                 std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(Mask)(input, mask, count, out);
}

std::size_t Mask24(const std::uint8_t* input, const std::uint8_t* mask, std::size_t count,
                   const std::array<std::uint8_t, 3>& color, bool invert, std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(Mask24)(input, mask, count, color, invert, out);
}

}  // namespace rastrel::simd
#endif  // HWY_ONCE
