#include "core/pixel_rows_simd.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/pixel_rows_simd.cpp"
// One target more than by default: its byte permutations look colours up.
#define HWY_WANT_AVX3_DL
#include <hwy/foreach_target.h>
// After foreach_target.h
#include <hwy/cache_control.h>
#include <hwy/highway.h>

#include "core/byte_table-inl.h"

HWY_BEFORE_NAMESPACE();
namespace rastrel::simd::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_AVX3_DL

/// Where the 64 bytes of one of three output registers come from when three registers of one
/// channel each are interleaved: blue and green by one permutation of two registers, red by another
/// under a mask.
struct Interleaving {
    alignas(64) std::array<std::uint8_t, 64> blue_green = {};
    alignas(64) std::array<std::uint8_t, 64> red = {};
    std::uint64_t red_mask = 0;
};

constexpr std::array<Interleaving, 3> MakeInterleavings() {
    std::array<Interleaving, 3> all = {};
    for (std::size_t byte = 0; byte < 192; ++byte) {
        Interleaving& one = all[byte / 64];
        const auto pixel = static_cast<std::uint8_t>(byte / 3);
        const std::size_t at = byte % 64;
        const std::size_t channel = byte % 3;
        if (channel == 2) {
            one.red[at] = pixel;
            one.red_mask |= std::uint64_t{1} << at;
        } else {
            one.blue_green[at] = static_cast<std::uint8_t>(pixel + 64 * channel);
        }
    }
    return all;
}

std::size_t ExpandTo24(const std::uint8_t* indices, const ValueColors& colors, std::size_t count,
                       std::uint8_t* out) {
    static constexpr std::array<Interleaving, 3> kInterleavings = MakeInterleavings();
    const ByteTable blue(colors.blue.data());
    const ByteTable green(colors.green.data());
    const ByteTable red(colors.red.data());
    std::size_t done = 0;
    for (; count - done >= 64; done += 64, out += 192) {
        const __m512i index = _mm512_loadu_si512(indices + done);
        const __mmask64 top_bits = _mm512_movepi8_mask(index);
        const __m512i b = blue.LookUp(index, top_bits);
        const __m512i g = green.LookUp(index, top_bits);
        const __m512i r = red.LookUp(index, top_bits);
        for (std::size_t i = 0; i < kInterleavings.size(); ++i) {
            const Interleaving& from = kInterleavings[i];
            const __m512i blue_green =
                _mm512_permutex2var_epi8(b, _mm512_load_si512(from.blue_green.data()), g);
            const __m512i all = _mm512_mask_permutexvar_epi8(blue_green, from.red_mask,
                                                             _mm512_load_si512(from.red.data()), r);
            _mm512_storeu_si512(out + 64 * i, all);
        }
    }
    return done;
}

#else

std::size_t ExpandTo24(const std::uint8_t* indices, const ValueColors& colors, std::size_t count,
                       std::uint8_t* out) {
    // A gather would be no faster than these loads. Eight pixels are three words; the fourth byte
    // of a colour is masked off.
    std::size_t done = 0;
    for (; count - done >= 8; done += 8, out += 24) {
        const auto color = [in = indices + done, &colors](int i) -> std::uint64_t {
            return colors.pixels[in[i]] & 0xffffffu;
        };
        const std::uint64_t third = color(2);
        const std::uint64_t sixth = color(5);
        const std::array<std::uint64_t, 3> words = {
            color(0) | color(1) << 24 | third << 48,
            third >> 16 | color(3) << 8 | color(4) << 32 | sixth << 56,
            sixth >> 8 | color(6) << 16 | color(7) << 40};
        std::memcpy(out, words.data(), sizeof words);
    }
    return done;
}

#endif

#if HWY_TARGET == HWY_SCALAR

std::size_t Bgr24From32(const std::uint8_t* /*pixels*/, std::size_t /*count*/,
                        std::uint8_t* /*out*/) {
    return 0;
}

std::size_t Bgr24FromRgba32(const std::uint8_t* /*pixels*/, std::size_t /*count*/,
                            std::uint8_t* /*out*/) {
    return 0;
}

std::size_t SwapRedBlue24(const std::uint8_t* /*pixels*/, std::size_t /*count*/,
                          std::uint8_t* /*out*/) {
    return 0;
}

std::size_t Bgra32From24(const std::uint8_t* /*pixels*/, std::size_t /*count*/,
                         std::uint8_t* /*out*/) {
    return 0;
}

#else

/// Where the twelve bytes of four three-byte pixels come from in four of four bytes.
using FourPixels = std::array<std::uint8_t, 16>;

std::size_t Take24From32(const std::uint8_t* pixels, const FourPixels& order, std::size_t count,
                         std::uint8_t* out) {
    const hn::Full128<std::uint8_t> d;
    const auto from = hn::LoadU(d, order.data());
    std::size_t done = 0;
    // Four pixels a store of 16 bytes, of which the next one overwrites the last four; the last
    // such store must stay inside.
    for (; count - done >= 6; done += 4) {
        const auto four = hn::LoadU(d, pixels + 4 * done);
        hn::StoreU(hn::TableLookupBytes(four, from), d, out + 3 * done);
    }
    return done;
}

std::size_t Bgr24From32(const std::uint8_t* pixels, std::size_t count, std::uint8_t* out) {
    static constexpr FourPixels kSameOrder = {0,  1,  2,  4,  5,    6,    8,    9,
                                              10, 12, 13, 14, 0x80, 0x80, 0x80, 0x80};
    return Take24From32(pixels, kSameOrder, count, out);
}

std::size_t Bgr24FromRgba32(const std::uint8_t* pixels, std::size_t count, std::uint8_t* out) {
    static constexpr FourPixels kSwapped = {2, 1,  0,  6,  5,    4,    10,   9,
                                            8, 14, 13, 12, 0x80, 0x80, 0x80, 0x80};
    return Take24From32(pixels, kSwapped, count, out);
}

std::size_t SwapRedBlue24(const std::uint8_t* pixels, std::size_t count, std::uint8_t* out) {
    const hn::Full128<std::uint8_t> d;
    alignas(16) static constexpr std::uint8_t kFrom[16] = {2, 1,  0,  5, 4,  3,  8,  7,
                                                           6, 11, 10, 9, 14, 13, 12, 15};
    const auto from = hn::Load(d, kFrom);
    std::size_t done = 0;
    // Five pixels a load and a store of 16 bytes; the next store puts the last byte right.
    for (; count - done >= 6; done += 5) {
        const auto five = hn::LoadU(d, pixels + 3 * done);
        hn::StoreU(hn::TableLookupBytes(five, from), d, out + 3 * done);
    }
    return done;
}

std::size_t Bgra32From24(const std::uint8_t* pixels, std::size_t count, std::uint8_t* out) {
    const hn::Full128<std::uint8_t> d;
    alignas(16) static constexpr std::uint8_t kFrom[16] = {0, 1, 2, 0x80, 3, 4,  5,  0x80,
                                                           6, 7, 8, 0x80, 9, 10, 11, 0x80};
    const auto from = hn::Load(d, kFrom);
    const auto alpha = hn::BitCast(d, hn::Set(hn::Full128<std::uint32_t>(), 0xff000000u));
    std::size_t done = 0;
    // A load of 16 bytes takes in four pixels and a third of two more.
    for (; count - done >= 6; done += 4) {
        const auto four = hn::LoadU(d, pixels + 3 * done);
        hn::StoreU(hn::Or(hn::TableLookupBytes(four, from), alpha), d, out + 4 * done);
    }
    return done;
}

#endif

std::size_t Bgr24FromPlanes(const std::uint8_t* red, const std::uint8_t* green,
                            const std::uint8_t* blue, std::size_t count, std::uint8_t* out) {
    const hn::ScalableTag<std::uint8_t> d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t done = 0;
    for (; count - done >= lanes; done += lanes) {
        hn::StoreInterleaved3(hn::LoadU(d, blue + done), hn::LoadU(d, green + done),
                              hn::LoadU(d, red + done), d, out + 3 * done);
    }
    return done;
}

/// (77 red + 150 green + 29 blue) / 256; the sum is at most 65,280.
template <class Load>
std::size_t Grey(std::size_t count, std::uint8_t* out, Load load) {
    const hn::ScalableTag<std::uint16_t> d16;
    const hn::Rebind<std::uint8_t, decltype(d16)> d8;
    const std::size_t lanes = hn::Lanes(d16);
    const auto red_weight = hn::Set(d16, 77);
    const auto green_weight = hn::Set(d16, 150);
    const auto blue_weight = hn::Set(d16, 29);
    std::size_t done = 0;
    for (; count - done >= lanes; done += lanes) {
        auto blue = hn::Zero(d8);
        auto green = hn::Zero(d8);
        auto red = hn::Zero(d8);
        load(d8, done, blue, green, red);
        const auto sum = hn::Add(hn::Mul(hn::PromoteTo(d16, blue), blue_weight),
                                 hn::Add(hn::Mul(hn::PromoteTo(d16, green), green_weight),
                                         hn::Mul(hn::PromoteTo(d16, red), red_weight)));
        const hn::RebindToSigned<decltype(d16)> signed16;
        hn::StoreU(hn::DemoteTo(d8, hn::BitCast(signed16, hn::ShiftRight<8>(sum))), d8, out + done);
    }
    return done;
}

std::size_t GreyFromBgr24(const std::uint8_t* pixels, std::size_t count, std::uint8_t* out) {
    return Grey(count, out, [pixels](auto d, std::size_t at, auto& blue, auto& green, auto& red) {
        hn::LoadInterleaved3(d, pixels + 3 * at, blue, green, red);
    });
}

std::size_t GreyFromBgra32(const std::uint8_t* pixels, std::size_t count, std::uint8_t* out) {
    return Grey(count, out, [pixels](auto d, std::size_t at, auto& blue, auto& green, auto& red) {
        auto alpha = hn::Zero(d);
        hn::LoadInterleaved4(d, pixels + 4 * at, blue, green, red, alpha);
    });
}

std::size_t TakeChannel(const std::uint8_t* pixels, std::size_t channel, std::size_t count,
                        std::uint8_t* out) {
    const hn::ScalableTag<std::uint8_t> d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t done = 0;
    for (; count - done >= lanes; done += lanes) {
        auto blue = hn::Zero(d);
        auto green = hn::Zero(d);
        auto red = hn::Zero(d);
        hn::LoadInterleaved3(d, pixels + 3 * done, blue, green, red);
        hn::StoreU(channel == 0 ? blue : channel == 1 ? green : red, d, out + done);
    }
    return done;
}

void StreamCopy(const std::uint8_t* from, std::size_t count, std::uint8_t* to) {
    const hn::ScalableTag<std::uint8_t> d;
    const std::size_t lanes = hn::Lanes(d);
    // Such stores need an aligned address.
    const std::size_t misaligned = reinterpret_cast<std::uintptr_t>(to) % lanes;
    const std::size_t head = std::min(count, misaligned == 0 ? 0 : lanes - misaligned);
    std::memcpy(to, from, head);
    std::size_t done = head;
    for (; count - done >= lanes; done += lanes)
        hn::Stream(hn::LoadU(d, from + done), d, to + done);
    std::memcpy(to + done, from + done, count - done);
    hwy::FlushStream();
}

}  // namespace rastrel::simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rastrel::simd {

HWY_EXPORT(ExpandTo24);
HWY_EXPORT(Bgr24From32);
HWY_EXPORT(Bgr24FromRgba32);
HWY_EXPORT(Bgr24FromPlanes);
HWY_EXPORT(SwapRedBlue24);
HWY_EXPORT(Bgra32From24);
HWY_EXPORT(GreyFromBgr24);
HWY_EXPORT(GreyFromBgra32);
HWY_EXPORT(TakeChannel);
HWY_EXPORT(StreamCopy);

std::size_t ExpandTo24(const std::uint8_t* indices, const ValueColors& colors, std::size_t count,
                       std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(ExpandTo24)(indices, colors, count, out);
}

std::size_t Bgr24From32(const std::uint8_t* pixels, std::size_t count, std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(Bgr24From32)(pixels, count, out);
}

std::size_t Bgr24FromRgba32(const std::uint8_t* pixels, std::size_t count, std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(Bgr24FromRgba32)(pixels, count, out);
}

std::size_t Bgr24FromPlanes(const std::uint8_t* red, const std::uint8_t* green,
                            const std::uint8_t* blue, std::size_t count, std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(Bgr24FromPlanes)(red, green, blue, count, out);
}

std::size_t SwapRedBlue24(const std::uint8_t* pixels, std::size_t count, std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(SwapRedBlue24)(pixels, count, out);
}

std::size_t Bgra32From24(const std::uint8_t* pixels, std::size_t count, std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(Bgra32From24)(pixels, count, out);
}

std::size_t GreyFromBgr24(const std::uint8_t* pixels, std::size_t count, std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(GreyFromBgr24)(pixels, count, out);
}

std::size_t GreyFromBgra32(const std::uint8_t* pixels, std::size_t count, std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(GreyFromBgra32)(pixels, count, out);
}

std::size_t TakeChannel(const std::uint8_t* pixels, std::size_t channel, std::size_t count,
                        std::uint8_t* out) {
    return HWY_DYNAMIC_DISPATCH(TakeChannel)(pixels, channel, count, out);
}

void StreamCopy(const std::uint8_t* from, std::size_t count, std::uint8_t* to) {
    HWY_DYNAMIC_DISPATCH(StreamCopy)(from, count, to);
}

}  // namespace rastrel::simd
#endif  // HWY_ONCE
