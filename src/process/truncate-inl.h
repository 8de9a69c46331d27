// Truncation of estimates to bytes, included once for each set of instructions.

#if defined(RASTREL_PROCESS_TRUNCATE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef RASTREL_PROCESS_TRUNCATE_INL_H_
#undef RASTREL_PROCESS_TRUNCATE_INL_H_
#else
#define RASTREL_PROCESS_TRUNCATE_INL_H_
#endif

#include <hwy/highway.h>

#include <array>
#include <cstddef>
#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace rastrel::simd::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using FloatTag = hn::ScalableTag<float>;
using FloatVector = hn::Vec<FloatTag>;
using FloatMask = hn::Mask<FloatTag>;
using WordTag = hn::Rebind<std::uint32_t, FloatTag>;
using WordVector = hn::Vec<WordTag>;
using ByteTag = hn::Rebind<std::uint8_t, FloatTag>;

/// A byte for each float lane, in the lowest byte of the words, and where it is certain.
struct Estimate {
    WordVector bytes;
    FloatMask is_certain;
};

/// Truncated bytes of values below 256, given less one half: rounding to the nearest whole number
/// then truncates, and what lies within bound of a whole number above 0 is uncertain. Negative
/// values become 0; what is not a number is uncertain.
HWY_INLINE Estimate TruncateLessHalf(FloatVector less_half, FloatVector bound) {
    const FloatTag df;
    const WordTag words;
    // Added to a value, it leaves the nearest whole number in the lowest bits.
    const auto magic = hn::Set(df, 0x1p23f);
    const auto value = hn::IfThenZeroElse(hn::Lt(less_half, hn::Zero(df)), less_half);
    const auto shifted = hn::Add(value, magic);
    const auto from_whole = hn::Abs(hn::Sub(value, hn::Sub(shifted, magic)));
    return {hn::BitCast(words, shifted), hn::Lt(from_whole, hn::Sub(hn::Set(df, 0.5f), bound))};
}

HWY_INLINE void StoreBytes(WordVector lanes, std::uint8_t* out) {
#if HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX3_DL
    // One instruction does it; for the latter target Highway 1.0.3's TruncateTo takes wrong bytes.
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm512_cvtepi32_epi8(lanes.raw));
#else
    const ByteTag bytes;
    hn::StoreU(hn::TruncateTo(bytes, lanes), bytes, out);
#endif
}

/// Stores the certain bytes; for each other one settle(lane, what stood there) says what comes.
template <class SettleLane>
HWY_INLINE void StoreSettled(Estimate estimate, std::uint8_t* out, SettleLane settle) {
    const FloatTag df;
    std::array<std::uint8_t, HWY_MAX_BYTES / sizeof(float)> bytes = {};
    std::array<std::uint8_t, 8> certain = {};
    StoreBytes(estimate.bytes, bytes.data());
    hn::StoreMaskBits(df, estimate.is_certain, certain.data());
    for (std::size_t i = 0; i < hn::Lanes(df); ++i) {
        const bool is_certain = (certain[i / 8] >> (i % 8) & 1) != 0;
        out[i] = is_certain ? bytes[i] : settle(i, out[i]);
    }
}

/// Calls visit(i) for vectors of lanes beginning at i, so that all of count lanes, at least one
/// vector, are visited; the last vector takes in some lanes once more.
template <class Visit>
HWY_INLINE void VisitVectors(std::size_t count, std::size_t lanes, Visit visit) {
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes)
        visit(i);
    if (i < count) visit(count - lanes);
}

}  // namespace rastrel::simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
