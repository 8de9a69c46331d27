#include <array>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "process/hypsometric_simd.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h
#include <hwy/highway.h>

#include "process/hypsometric_kernels.h"

HWY_BEFORE_NAMESPACE();
namespace rastrel::simd::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

std::size_t ColorPixels(const std::uint8_t* /*indices*/, const std::uint8_t* /*shading*/,
                        std::size_t /*count*/, const HypsometricTable& /*table*/,
                        std::uint32_t* /*pixels*/) {
    return 0;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using DoubleTag = hn::ScalableTag<double>;
using DoubleVector = hn::Vec<DoubleTag>;
using WordTag = hn::Rebind<std::uint32_t, DoubleTag>;

/// The bytes of a channel, by the formula's own operations.
HWY_INLINE hn::Vec<WordTag> Bytes(DoubleVector channel, DoubleVector value) {
    const DoubleTag d;
    const hn::RebindToSigned<WordTag> whole;
    const auto byte = hn::Add(hn::Mul(hn::Mul(channel, value), hn::Set(d, 255.0)), hn::Set(d, 0.5));
    return hn::BitCast(WordTag(), hn::DemoteTo(whole, byte));
}

/// Copies the pixels' entries. By ordinary loads, which are no slower than vector gathers.
HWY_INLINE void GatherEntries(const std::uint8_t* indices, std::size_t count,
                              const HypsometricTable& table, double* entries) {
    const hn::CappedTag<double, 4> d;
    for (std::size_t i = 0; i < count; ++i) {
        const double* from = &table.entries[indices[i]].value;
        for (std::size_t part = 0; part < 4; part += hn::Lanes(d))
            hn::Store(hn::Load(d, from + part), d, entries + 4 * i + part);
    }
}

std::size_t ColorPixels(const std::uint8_t* indices, const std::uint8_t* shading, std::size_t count,
                        const HypsometricTable& table, std::uint32_t* pixels) {
    const DoubleTag d;
    const WordTag words;
    const hn::RebindToSigned<WordTag> whole;
    const hn::Rebind<std::uint8_t, DoubleTag> bytes;
    const std::size_t lanes = hn::Lanes(d);
    const auto shading_weight = hn::Set(d, table.blend.shading_weight);
    alignas(64) std::array<double, 4 * kHypsometricRun> entries;
    GatherEntries(indices, count, table, entries.data());
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        auto value = hn::Zero(d);
        auto blue = value;
        auto green = value;
        auto red = value;
        hn::LoadInterleaved4(d, entries.data() + 4 * i, value, blue, green, red);
        const auto shade = hn::PromoteTo(d, hn::PromoteTo(whole, hn::LoadU(bytes, shading + i)));
        value = hn::Add(value, hn::Mul(hn::Mul(shade, shading_weight), hn::Set(d, kOver255)));
        value = hn::Min(hn::Max(value, hn::Zero(d)), hn::Set(d, 1.0));
        const auto pixel = hn::Or(Bytes(blue, value), hn::Or(hn::ShiftLeft<8>(Bytes(green, value)),
                                                             hn::ShiftLeft<16>(Bytes(red, value))));
        hn::StoreU(pixel, words, pixels + i);
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
