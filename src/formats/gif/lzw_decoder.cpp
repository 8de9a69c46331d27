#include "formats/gif/lzw_decoder.h"

#include <array>
#include <bit>
#include <cstring>

namespace rastrel {

namespace {

/// The single pixels stand here, one after the other, so that they are strings like all others.
constexpr std::size_t kSinglePixels = std::size_t{1} << LzwDecoder::kMostCodeSize;

/// Strings are copied in pieces of this size, the last of which may reach beyond the string.
constexpr std::size_t kPiece = 16;

/// No string is longer than the dictionary has entries.
constexpr std::size_t kMostString = 4096;
constexpr std::size_t kPixelsAtOnce = 32768;

std::uint64_t LoadLittle64(const std::uint8_t* bytes) {
    std::uint64_t value = 0;
    std::memcpy(&value, bytes, sizeof value);
    if constexpr (std::endian::native == std::endian::big) value = __builtin_bswap64(value);
    return value;
}

/// The next codes' bits, the first one lowest; above count there may be bits of bytes that have not
/// been taken yet.
struct BitReader {
    std::span<const std::uint8_t> data;
    std::uint64_t bits;
    unsigned count;

    /// False when the data end before there are width bits.
    [[nodiscard]] bool Need(unsigned width) {
        if (count >= width) return true;
        if (data.size() >= sizeof bits) {
            bits |= LoadLittle64(data.data()) << count;
            const std::size_t taken = (63 - count) / 8;
            data = data.subspan(taken);
            count += static_cast<unsigned>(8 * taken);
            return true;
        }
        for (; count < width && !data.empty(); count += 8) {
            bits |= std::uint64_t{data.front()} << count;
            data = data.subspan(1);
        }
        return count >= width;
    }
    [[nodiscard]] unsigned Take(unsigned width) {
        const auto code = static_cast<unsigned>(bits & ((1u << width) - 1));
        bits >>= width;
        count -= width;
        return code;
    }
};

/// Where the two overlap, the pieces of from that are copied are those that are there by then.
void CopyString(std::uint8_t* to, const std::uint8_t* from, std::size_t length) {
    std::size_t done = 0;
    do {
        std::array<std::uint8_t, kPiece> piece;
        std::memcpy(piece.data(), from + done, kPiece);
        std::memcpy(to + done, piece.data(), kPiece);
        done += kPiece;
    } while (done < length);
}

}  // namespace

LzwDecoder::LzwDecoder(int code_size)
    : first_width_(static_cast<unsigned>(code_size) + 1),
      clear_code_(1u << static_cast<unsigned>(code_size)),
      pixels_(kSinglePixels + 2 * kPixelsAtOnce) {
    for (std::uint32_t value = 0; value < clear_code_; ++value) {
        pixels_[value] = static_cast<std::uint8_t>(value);
        entries_[value] = {value, 1};
    }
    Clear();
}

void LzwDecoder::Clear() {
    width_ = first_width_;
    next_code_ = clear_code_ + 2;
    grow_at_ = 1u << width_;
    last_ = {};
    kept_end_ = kSinglePixels;
}

std::span<const std::uint8_t> LzwDecoder::Decode(std::span<const std::uint8_t>& data) {
    if (ended_) return {};
    MakeRoom();
    const std::size_t begin = end_;
    DecodeCodes(data, begin + kPixelsAtOnce);
    return std::span(pixels_).subspan(begin, end_ - begin);
}

void LzwDecoder::MakeRoom() {
    // What is in the making needs everything that came before it.
    const bool grows = last_.length > 0 && next_code_ < kMostCodes;
    if (!grows) end_ = kept_end_;
    const std::size_t needed = end_ + kPixelsAtOnce + kMostString + kPiece;
    if (pixels_.size() < needed) pixels_.resize(2 * needed);
}

void LzwDecoder::DecodeCodes(std::span<const std::uint8_t>& data, std::size_t limit) {
    BitReader in = {data, bits_, bit_count_};
    std::uint8_t* const pixels = pixels_.data();
    const std::size_t begin = end_;
    std::size_t end = end_;
    while (end < limit && in.Need(width_)) {
        unsigned code = in.Take(width_);
        if (code - clear_code_ <= 1) {
            ended_ = code != clear_code_;
            if (!ended_) Clear();
            if (ended_ || end > begin) break;
            continue;
        }
        if (last_.length == 0) {
            // Only a single pixel can come first; what is none counts as the first of them.
            if (code > clear_code_) code = 0;
            pixels[end] = pixels[code];
            last_ = {static_cast<std::uint32_t>(end++), 1};
            continue;
        }
        entries_[next_code_] = {last_.position, last_.length + 1};
        // The entry just made is the last string and its own first pixel again. Codes beyond it are
        // damaged; they are taken for it.
        const bool is_new = code >= next_code_;
        if (is_new) code = next_code_;
        const Entry entry = entries_[code];
        CopyString(pixels + end, pixels + entry.position, entry.length);
        if (is_new) pixels[end + entry.length - 1] = pixels[entry.position];
        last_ = {static_cast<std::uint32_t>(end), entry.length};
        end += entry.length;
        if (next_code_ < kMostCodes) ++next_code_;
        if (next_code_ != grow_at_) continue;
        if (width_ < kMostWidth) {
            grow_at_ = 1u << ++width_;
        } else {
            grow_at_ = 0;
            kept_end_ = end;
        }
    }
    end_ = end;
    data = in.data;
    bits_ = in.bits;
    bit_count_ = in.count;
}

}  // namespace rastrel
