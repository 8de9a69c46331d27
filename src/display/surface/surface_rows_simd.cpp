#include "display/surface/surface_rows_simd.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "display/surface/surface_rows_simd.cpp"
// One target more than by default: its byte permutations look colours up and choose pixels.
#define HWY_WANT_AVX3_DL
#include <hwy/foreach_target.h>
// After foreach_target.h
#include <hwy/highway.h>

#include "core/byte_table-inl.h"

HWY_BEFORE_NAMESPACE();
namespace rastrel::simd::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_AVX3_DL

/// The bytes of a group, which mostly lie within the first half of its window.
__m512i Choose(const std::uint8_t* row, const ChosenBytes::Group& group) {
    const std::uint8_t* window = row + group.window;
    const __m512i places = _mm512_load_si512(group.places.data());
    if (group.upper != 0) return ByteTable(window).LookUp(places, group.upper);
    return _mm512_permutex2var_epi8(_mm512_loadu_si512(window), places,
                                    _mm512_loadu_si512(window + 64));
}

/// The four bytes of 256 colours.
struct ColorTables {
    explicit ColorTables(const SurfaceColors& colors)
        : blue(colors.channels[0].data()),
          green(colors.channels[1].data()),
          red(colors.channels[2].data()),
          unused(colors.channels[3].data()) {}

    /// Makes 64 pixels of indices of which each quarter holds four of every sixteen.
    template <bool kUsesAllBytes>
    void Store(__m512i indices, std::uint8_t* out) const {
        const __mmask64 top_bits = _mm512_movepi8_mask(indices);
        const __m512i b = blue.LookUp(indices, top_bits);
        const __m512i g = green.LookUp(indices, top_bits);
        const __m512i r = red.LookUp(indices, top_bits);
        __m512i x = _mm512_setzero_si512();
        if constexpr (kUsesAllBytes) x = unused.LookUp(indices, top_bits);
        const __m512i low_bg = _mm512_unpacklo_epi8(b, g);
        const __m512i high_bg = _mm512_unpackhi_epi8(b, g);
        const __m512i low_rx = _mm512_unpacklo_epi8(r, x);
        const __m512i high_rx = _mm512_unpackhi_epi8(r, x);
        _mm512_storeu_si512(out, _mm512_unpacklo_epi16(low_bg, low_rx));
        _mm512_storeu_si512(out + 64, _mm512_unpackhi_epi16(low_bg, low_rx));
        _mm512_storeu_si512(out + 128, _mm512_unpacklo_epi16(high_bg, high_rx));
        _mm512_storeu_si512(out + 192, _mm512_unpackhi_epi16(high_bg, high_rx));
    }

    ByteTable blue;
    ByteTable green;
    ByteTable red;
    ByteTable unused;
};

template <bool kUsesAllBytes>
std::size_t StoreColors(const std::uint8_t* indices, const SurfaceColors& colors, std::size_t count,
                        std::uint8_t* out) {
    const ColorTables tables(colors);
    const __m512i quarters =
        _mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
    std::size_t done = 0;
    for (; count - done >= 64; done += 64) {
        const __m512i in_order = _mm512_loadu_si512(indices + done);
        tables.Store<kUsesAllBytes>(_mm512_permutexvar_epi32(quarters, in_order), out + 4 * done);
    }
    return done;
}

template <bool kUsesAllBytes>
void StoreChosenColors(const std::uint8_t* row, const ChosenBytes& chosen,
                       const SurfaceColors& colors, std::uint8_t* out) {
    const ColorTables tables(colors);
    for (const ChosenBytes::Group& group : chosen.groups) {
        tables.Store<kUsesAllBytes>(Choose(row, group), out + std::size_t{4} * group.pixel);
    }
}

std::size_t BgrxFromIndices(const std::uint8_t* indices, const SurfaceColors& colors,
                            std::size_t count, std::uint8_t* out) {
    return colors.uses_all_bytes ? StoreColors<true>(indices, colors, count, out)
                                 : StoreColors<false>(indices, colors, count, out);
}

std::size_t ChooseFromIndices(const std::uint8_t* row, const ChosenBytes& chosen,
                              const SurfaceColors& colors, std::size_t count, std::uint8_t* out) {
    if (chosen.groups.empty()) return 0;
    if (colors.uses_all_bytes)
        StoreChosenColors<true>(row, chosen, colors, out);
    else
        StoreChosenColors<false>(row, chosen, colors, out);
    return count;
}

std::size_t ChooseFrom24(const std::uint8_t* row, const ChosenBytes& chosen, std::size_t count,
                         std::uint8_t* out) {
    if (chosen.groups.empty()) return 0;
    constexpr __mmask64 kWithoutUnused = 0x7777777777777777;
    for (const ChosenBytes::Group& group : chosen.groups) {
        _mm512_storeu_si512(out + std::size_t{4} * group.pixel,
                            _mm512_maskz_mov_epi8(kWithoutUnused, Choose(row, group)));
    }
    return count;
}

#else

std::size_t BgrxFromIndices(const std::uint8_t* /*indices*/, const SurfaceColors& /*colors*/,
                            std::size_t /*count*/, std::uint8_t* /*out*/) {
    return 0;
}

std::size_t ChooseFromIndices(const std::uint8_t* /*row*/, const ChosenBytes& /*chosen*/,
                              const SurfaceColors& /*colors*/, std::size_t /*count*/,
                              std::uint8_t* /*out*/) {
    return 0;
}

std::size_t ChooseFrom24(const std::uint8_t* /*row*/, const ChosenBytes& /*chosen*/,
                         std::size_t /*count*/, std::uint8_t* /*out*/) {
    return 0;
}

#endif

#if HWY_TARGET == HWY_SCALAR

std::size_t BgrxFrom24(const std::uint8_t* /*pixels*/, std::size_t /*count*/,
                       std::uint8_t* /*out*/) {
    return 0;
}

#else

std::size_t BgrxFrom24(const std::uint8_t* pixels, std::size_t count, std::uint8_t* out) {
    const hn::Full128<std::uint8_t> d;
    alignas(16) static constexpr std::uint8_t kFrom[16] = {0, 1, 2, 0x80, 3, 4,  5,  0x80,
                                                           6, 7, 8, 0x80, 9, 10, 11, 0x80};
    const auto from = hn::Load(d, kFrom);
    std::size_t done = 0;
    // A load of 16 bytes takes in four pixels and a third of two more.
    for (; count - done >= 6; done += 4) {
        const auto four = hn::LoadU(d, pixels + 3 * done);
        hn::StoreU(hn::TableLookupBytesOr0(four, from), d, out + 4 * done);
    }
    return done;
}

#endif

std::size_t AndBytes(const std::uint8_t* bytes, std::size_t count, std::uint8_t* out) {
    const hn::ScalableTag<std::uint8_t> d;
    std::size_t done = 0;
    for (; count - done >= hn::Lanes(d); done += hn::Lanes(d))
        hn::StoreU(hn::And(hn::LoadU(d, bytes + done), hn::LoadU(d, out + done)), d, out + done);
    return done;
}

std::size_t OrBytes(const std::uint8_t* bytes, std::size_t count, std::uint8_t* out) {
    const hn::ScalableTag<std::uint8_t> d;
    std::size_t done = 0;
    for (; count - done >= hn::Lanes(d); done += hn::Lanes(d))
        hn::StoreU(hn::Or(hn::LoadU(d, bytes + done), hn::LoadU(d, out + done)), d, out + done);
    return done;
}

}  // namespace rastrel::simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rastrel::simd {

HWY_EXPORT(BgrxFromIndices);
HWY_EXPORT(BgrxFrom24);
HWY_EXPORT(ChooseFromIndices);
HWY_EXPORT(ChooseFrom24);
HWY_EXPORT(AndBytes);
HWY_EXPORT(OrBytes);

std::size_t BgrxFromIndices(const std::uint8_t* indices, const SurfaceColors& colors,
                            std::size_t count, std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(BgrxFromIndices)(indices, colors, count, out);
}

std::size_t BgrxFrom24(const std::uint8_t* pixels, std::size_t count, std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(BgrxFrom24)(pixels, count, out);
}

std::size_t ChooseFromIndices(const std::uint8_t* row, const ChosenBytes& chosen,
                              const SurfaceColors& colors, std::size_t count, std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(ChooseFromIndices)(row, chosen, colors, count, out);
}

std::size_t ChooseFrom24(const std::uint8_t* row, const ChosenBytes& chosen, std::size_t count,
                         std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(ChooseFrom24)(row, chosen, count, out);
}

std::size_t AndBytes(const std::uint8_t* bytes, std::size_t count, std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(AndBytes)(bytes, count, out);
}

std::size_t OrBytes(const std::uint8_t* bytes, std::size_t count, std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(OrBytes)(bytes, count, out);
}

}  // namespace rastrel::simd
#endif  // HWY_ONCE
