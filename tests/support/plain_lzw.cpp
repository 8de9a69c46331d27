#include "support/plain_lzw.h"

#include <algorithm>
#include <array>

namespace rastrel_test {

namespace {

constexpr unsigned kMostWidth = 12;
constexpr unsigned kMostCodes = 1 << kMostWidth;

/// The coder with its state as a GIF writer has it.
class PlainEncoder {
  public:
    explicit PlainEncoder(const std::vector<std::uint8_t>& pixels) {
        ClearTable();
        Emit(kClear);
        unsigned prefix = pixels.front();
        for (std::size_t at = 1; at < pixels.size(); ++at)
            prefix = Next(prefix, pixels[at]);
        Emit(prefix);
        Emit(kEnd);
    }
    [[nodiscard]] std::vector<std::uint8_t> Bytes() const { return packer_.Bytes(); }

  private:
    static constexpr unsigned kClear = 256;
    static constexpr unsigned kEnd = 257;
    static constexpr int kTableSize = 5003;

    unsigned Next(unsigned prefix, unsigned pixel) {
        const int key = static_cast<int>((pixel << kMostWidth) + prefix);
        int index = static_cast<int>(pixel << 4 ^ prefix);
        const int step = index == 0 ? 1 : kTableSize - index;
        while (keys_[static_cast<std::size_t>(index)] >= 0) {
            const auto at = static_cast<std::size_t>(index);
            if (keys_[at] == key) return codes_[at];
            index -= step;
            if (index < 0) index += kTableSize;
        }
        Emit(prefix);
        if (next_code_ < kMostCodes) {
            keys_[static_cast<std::size_t>(index)] = key;
            codes_[static_cast<std::size_t>(index)] = next_code_++;
        } else {
            ClearTable();
            cleared_ = true;
            Emit(kClear);
        }
        return pixel;
    }
    void ClearTable() {
        keys_.fill(-1);
        next_code_ = kClear + 2;
    }
    void Emit(unsigned code) {
        packer_.Put(code, width_);
        if (next_code_ <= most_code_ && !cleared_) return;
        width_ = cleared_ ? 9 : width_ + 1;
        cleared_ = false;
        most_code_ = width_ == kMostWidth ? kMostCodes : (1u << width_) - 1;
    }

    CodePacker packer_;
    std::array<int, kTableSize> keys_ = {};
    std::array<unsigned, kTableSize> codes_ = {};
    unsigned next_code_ = kClear + 2;
    unsigned width_ = 9;
    unsigned most_code_ = 511;
    bool cleared_ = false;
};

}  // namespace

void CodePacker::Put(unsigned code, unsigned width) {
    for (unsigned bit = 0; bit < width; ++bit)
        bits_.push_back((code >> bit & 1) != 0);
}

std::vector<std::uint8_t> CodePacker::Bytes() const {
    std::vector<std::uint8_t> bytes((bits_.size() + 7) / 8);
    for (std::size_t bit = 0; bit < bits_.size(); ++bit)
        bytes[bit / 8] =
            static_cast<std::uint8_t>(bytes[bit / 8] | (bits_[bit] ? 1u << bit % 8 : 0));
    return bytes;
}

std::vector<std::uint8_t> EncodePlainly(const std::vector<std::uint8_t>& pixels) {
    return PlainEncoder(pixels).Bytes();
}

std::vector<std::uint8_t> DecodePlainly(const std::vector<std::uint8_t>& bytes, unsigned code_size,
                                        std::size_t most_pixels) {
    const unsigned clear = 1u << code_size;
    std::array<unsigned, kMostCodes> prefixes = {};
    std::array<std::uint8_t, kMostCodes> suffixes = {};
    std::vector<std::uint8_t> pixels;
    unsigned width = code_size + 1;
    unsigned next = clear + 2;
    unsigned last = 0;
    std::uint8_t first = 0;
    bool has_last = false;
    for (std::size_t bit = 0; bit + width <= 8 * bytes.size() && pixels.size() < most_pixels;) {
        unsigned code = 0;
        for (unsigned i = 0; i < width; ++i, ++bit)
            code |= (bytes[bit / 8] >> bit % 8 & 1u) << i;
        if (code == clear + 1) break;
        if (code == clear) {
            width = code_size + 1;
            next = clear + 2;
            has_last = false;
            continue;
        }
        if (!has_last && code > clear) code = 0;
        std::vector<std::uint8_t> stack;
        unsigned rest = code;
        if (code >= next) {
            stack.push_back(first);
            rest = last;
        }
        for (; rest >= clear; rest = prefixes[rest])
            stack.push_back(suffixes[rest]);
        first = static_cast<std::uint8_t>(rest);
        stack.push_back(first);
        pixels.insert(pixels.end(), stack.rbegin(), stack.rend());
        if (has_last && next < kMostCodes) {
            prefixes[next] = last;
            suffixes[next++] = first;
            if (next == 1u << width && width < kMostWidth) ++width;
        }
        // A code that there was not yet is there now, if there was room for it.
        last = std::min(code, next - 1);
        has_last = true;
    }
    pixels.resize(std::min(pixels.size(), most_pixels));
    return pixels;
}

}  // namespace rastrel_test
