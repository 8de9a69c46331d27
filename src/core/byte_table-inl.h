// Look-up of bytes by byte permutations. Included once for every set of instructions: hence the
// guard that turns over.

#include <hwy/highway.h>

#include <cstdint>

#if defined(RASTREL_BYTE_TABLE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef RASTREL_BYTE_TABLE_INL_H
#undef RASTREL_BYTE_TABLE_INL_H
#else
#define RASTREL_BYTE_TABLE_INL_H
#endif

#if HWY_TARGET == HWY_AVX3_DL

HWY_BEFORE_NAMESPACE();
namespace rastrel::simd::HWY_NAMESPACE {

/// 256 bytes in four registers.
struct ByteTable {
    explicit ByteTable(const std::uint8_t* bytes)
        : part{_mm512_loadu_si512(bytes), _mm512_loadu_si512(bytes + 64),
               _mm512_loadu_si512(bytes + 128), _mm512_loadu_si512(bytes + 192)} {}
    /// Two look-ups in 128 entries each, by a place's low seven bits; its top bit chooses.
    [[nodiscard]] __m512i LookUp(__m512i places, __mmask64 top_bits) const {
        const __m512i low = _mm512_permutex2var_epi8(part[0], places, part[1]);
        const __m512i high = _mm512_permutex2var_epi8(part[2], places, part[3]);
        return _mm512_mask_blend_epi8(top_bits, low, high);
    }
    __m512i part[4];
};

}  // namespace rastrel::simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // guard
