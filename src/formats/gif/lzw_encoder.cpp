#include "formats/gif/lzw_encoder.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace rastrel {

namespace {

void StoreLittle64(std::uint64_t value, std::uint8_t* bytes) {
    if constexpr (std::endian::native == std::endian::big) value = __builtin_bswap64(value);
    std::memcpy(bytes, &value, sizeof value);
}

/// How many pixels from the first on are alike.
std::size_t RunLength(const std::uint8_t* pixels, const std::uint8_t* end) {
    const std::uint8_t pixel = *pixels;
    const std::uint64_t alike = 0x0101010101010101u * pixel;
    const std::uint8_t* at = pixels + 1;
    while (end - at >= 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, at, sizeof word);
        if (word != alike) break;
        at += 8;
    }
    while (at < end && *at == pixel)
        ++at;
    return static_cast<std::size_t>(at - pixels);
}

/// An entry is searched from here on: the upper bits of a product depend on all of the key.
constexpr std::size_t FirstSlot(std::uint32_t key) {
    constexpr std::uint32_t kGoldenRatio = 0x9e3779b1;  // times 2^32
    return key * kGoldenRatio >> (32 - 13);
}

}  // namespace

struct LzwEncoder::Progress {
    std::uint8_t* out;
    std::uint64_t bits;
    unsigned bit_count;
    unsigned prefix;
};

LzwEncoder::LzwEncoder() {
    Clear();
}

void LzwEncoder::Clear() {
    slots_.fill(0);
    // Those of the entries are set as the entries are made.
    std::fill_n(longer_.begin(), kFirstCode, std::uint16_t{kNoCode});
    std::fill_n(much_longer_.begin(), kFirstCode, std::uint16_t{kNoCode});
    std::fill_n(repeats_.begin(), kFirstCode, std::uint16_t{0});
    next_code_ = kFirstCode;
}

void LzwEncoder::Put(unsigned code, Progress& progress) {
    progress.bits |= std::uint64_t{code} << progress.bit_count;
    progress.bit_count += width_;
    // Eight bytes are stored, of which the whole ones count.
    StoreLittle64(progress.bits, progress.out);
    progress.out += progress.bit_count / 8;
    progress.bits >>= progress.bit_count & ~7u;
    progress.bit_count &= 7u;
    if (next_code_ >= (1u << width_) && width_ < kMostWidth) ++width_;
}

void LzwEncoder::RememberRun(unsigned prefix, unsigned code) {
    longer_[prefix] = static_cast<std::uint16_t>(code);
    repeats_[code] = static_cast<std::uint16_t>(repeats_[prefix] + 1);
    if (repeats_[code] < kRunStep) return;
    unsigned shorter = prefix;
    for (unsigned i = 1; i < kRunStep; ++i)
        shorter = prefixes_[shorter];
    much_longer_[shorter] = static_cast<std::uint16_t>(code);
}

void LzwEncoder::EndString(std::uint8_t pixel, std::size_t free_slot, Progress& progress) {
    Put(progress.prefix, progress);
    if (next_code_ < kMostCodes) {
        const unsigned code = next_code_++;
        prefixes_[code] = static_cast<std::uint16_t>(progress.prefix);
        longer_[code] = kNoCode;
        much_longer_[code] = kNoCode;
        repeats_[code] = 0;
        if (free_slot == kSlots)
            RememberRun(progress.prefix, code);
        else
            slots_[free_slot] = (progress.prefix << 8 | pixel) << kMostWidth | code;
    } else {
        Put(kClearCode, progress);
        width_ = kFirstWidth;
        Clear();
    }
    progress.prefix = pixel;
}

void LzwEncoder::EncodeRun(std::uint8_t pixel, std::size_t count, Progress& progress) {
    for (;;) {
        for (; count >= kRunStep && much_longer_[progress.prefix] != kNoCode; count -= kRunStep)
            progress.prefix = much_longer_[progress.prefix];
        for (; count > 0 && longer_[progress.prefix] != kNoCode; --count)
            progress.prefix = longer_[progress.prefix];
        if (count == 0) return;
        EndString(pixel, kSlots, progress);
        --count;
    }
}

void LzwEncoder::Encode(std::span<const std::uint8_t> pixels, std::vector<std::uint8_t>& out) {
    if (pixels.empty()) return;
    // No pixel gives more than its own code and a clear code, and eight bytes are stored at once.
    const std::size_t before = out.size();
    out.resize(before + 3 * pixels.size() + 3 + sizeof bits_);
    Progress progress = {out.data() + before, bits_, bit_count_, prefix_};
    const std::uint8_t* at = pixels.data();
    const std::uint8_t* const end = at + pixels.size();
    if (progress.prefix == kNoPrefix) {
        Put(kClearCode, progress);
        last_pixel_ = *at++;
        progress.prefix = last_pixel_;
    }
    while (at < end) {
        const std::uint8_t pixel = *at;
        if (pixel == last_pixel_) {
            const std::size_t count = RunLength(at, end);
            EncodeRun(pixel, count, progress);
            at += count;
            continue;
        }
        const std::uint32_t key = progress.prefix << 8 | pixel;
        std::size_t slot = FirstSlot(key);
        // An entry with this key differs from it in the lower bits alone.
        while ((slots_[slot] ^ key << kMostWidth) >= kMostCodes && slots_[slot] != 0)
            slot = (slot + 1) % kSlots;
        if (slots_[slot] != 0)
            progress.prefix = slots_[slot] & (kMostCodes - 1);
        else
            EndString(pixel, slot, progress);
        last_pixel_ = pixel;
        ++at;
    }
    prefix_ = progress.prefix;
    bits_ = progress.bits;
    bit_count_ = progress.bit_count;
    out.resize(static_cast<std::size_t>(progress.out - out.data()));
}

void LzwEncoder::Finish(std::vector<std::uint8_t>& out) {
    const std::size_t before = out.size();
    out.resize(before + 3 * sizeof bits_);
    Progress progress = {out.data() + before, bits_, bit_count_, prefix_};
    if (progress.prefix != kNoPrefix) Put(progress.prefix, progress);
    Put(kEndCode, progress);
    // The last byte as far as there are bits for it; the others are stored already.
    if (progress.bit_count > 0) ++progress.out;
    out.resize(static_cast<std::size_t>(progress.out - out.data()));
}

}  // namespace rastrel
