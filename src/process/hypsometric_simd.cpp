#include <array>
#include <cmath>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "process/hypsometric_simd.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h
#include <hwy/highway.h>

#include "process/hypsometric_kernels.h"
#if HWY_TARGET != HWY_SCALAR
#include "process/truncate-inl.h"
#endif

HWY_BEFORE_NAMESPACE();
namespace rastrel::simd::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

std::size_t ColorPixels(const std::uint8_t* /*indices*/, const std::uint8_t* /*shading*/,
                        std::size_t /*count*/, const HypsometricTable& /*table*/,
                        std::uint32_t* /*pixels*/) {
    return 0;
}

#else

/// The whole lanes of an estimate and another one's, the latter moved up by bits.
template <int kBits>
HWY_INLINE WordVector Above(WordVector words, const Estimate& estimate) {
    const WordTag tag;
    return hn::Or(words, hn::ShiftLeft<kBits>(hn::And(estimate.bytes, hn::Set(tag, 255))));
}

/// Colours a vector of pixels whose entries stand at singles, with their shading from 0 to 255.
class ColorKernel {
  public:
    explicit ColorKernel(const Blend& blend)
        : shading_weight_(static_cast<float>(blend.shading_weight / 255)),
          // Both parts of the value, their sum, the channel and the product: each is rounded by at
          // most 2^-24 of the sum of the weights' magnitudes.
          bound_(static_cast<float>(
              255 * (1 + std::abs(blend.weight) + std::abs(blend.shading_weight)) * 6 * 0x1p-24)) {}

    HWY_INLINE WordVector operator()(const HypsometricTable::Single* singles, FloatVector shading,
                                     FloatMask& is_certain) const {
        const FloatTag df;
        const WordTag words;
        FloatVector value, blue, green, red;
        hn::LoadInterleaved4(df, &singles->value, value, blue, green, red);
        value = hn::MulAdd(shading, hn::Set(df, shading_weight_), value);
        value = hn::Min(hn::Max(value, hn::Zero(df)), hn::Set(df, 1.0f));
        // Rounded to the nearest: what is truncated is a half more.
        const auto bound = hn::Set(df, bound_);
        const Estimate b = TruncateLessHalf(hn::Mul(blue, value), bound);
        const Estimate g = TruncateLessHalf(hn::Mul(green, value), bound);
        const Estimate r = TruncateLessHalf(hn::Mul(red, value), bound);
        is_certain = hn::And(hn::And(b.is_certain, g.is_certain), r.is_certain);
        return Above<16>(Above<8>(hn::And(b.bytes, hn::Set(words, 255)), g), r);
    }

  private:
    float shading_weight_;
    float bound_;
};

/// Colours exactly the lanes that an estimate leaves open.
HWY_NOINLINE void SettlePixels(FloatMask is_certain, const std::uint8_t* indices,
                               const std::uint8_t* shading, const HypsometricTable& table,
                               std::uint32_t* pixels) {
    std::array<std::uint8_t, 8> certain = {};
    hn::StoreMaskBits(FloatTag(), is_certain, certain.data());
    for (std::size_t i = 0; i < hn::Lanes(FloatTag()); ++i) {
        if ((certain[i / 8] >> (i % 8) & 1) != 0) continue;
        const BgrPixel pixel = HypsometricColor(table.entries[indices[i]], shading[i], table.blend);
        pixels[i] = pixel[0] | std::uint32_t{pixel[1]} << 8 | std::uint32_t{pixel[2]} << 16;
    }
}

std::size_t ColorPixels(const std::uint8_t* indices, const std::uint8_t* shading, std::size_t count,
                        const HypsometricTable& table, std::uint32_t* pixels) {
    const FloatTag df;
    const ByteTag bytes;
    const WordTag words;
    const hn::RebindToSigned<WordTag> whole;
    const std::size_t lanes = hn::Lanes(df);
    const ColorKernel kernel(table.blend);
    // Gathered by ordinary loads, which are no slower than vector gathers.
    std::array<HypsometricTable::Single, kHypsometricRun> singles;
    for (std::size_t i = 0; i < count; ++i)
        std::memcpy(&singles[i], &table.singles[indices[i]], sizeof singles[i]);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        FloatMask is_certain;
        const auto shade = hn::ConvertTo(df, hn::PromoteTo(whole, hn::LoadU(bytes, shading + i)));
        hn::StoreU(kernel(&singles[i], shade, is_certain), words, pixels + i);
        if (HWY_UNLIKELY(!hn::AllTrue(df, is_certain)))
            SettlePixels(is_certain, indices + i, shading + i, table, pixels + i);
    }
    return i;
}

#endif

}  // namespace rastrel::simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rastrel::simd {

HWY_EXPORT(ColorPixels);

std::size_t ColorHypsometrically(const std::uint8_t* indices, const std::uint8_t* shading,
                                 std::size_t count, const HypsometricTable& table,
                                 std::uint32_t* pixels) {
    return HWY_DYNAMIC_DISPATCH(ColorPixels)(indices, shading, count, table, pixels);
}

}  // namespace rastrel::simd
#endif  // HWY_ONCE
