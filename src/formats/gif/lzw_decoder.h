#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace rastrel {

/// LZW of variable code width as GIF has it (T. Welch, "A Technique for High-Performance Data
/// Compression", 1984): codes from the lowest bit on, of at most 12 bits.
///
/// Every string of the dictionary stands in the pixels decoded so far: it is a string decoded
/// earlier and the pixel behind it. So an entry is a position and a length, and decoding a code is
/// a copy. Once the dictionary is full nothing that is decoded becomes part of it, so that only the
/// pixels up to then have to stay: a few million at most, whatever the image.
class LzwDecoder {
  public:
    static constexpr int kLeastCodeSize = 2;
    static constexpr int kMostCodeSize = 9;

    /// code_size: the bits of a pixel, from kLeastCodeSize to kMostCodeSize; the ninth is lost.
    explicit LzwDecoder(int code_size);

    /// Decodes from the data, which go on where those of the call before ended, and takes away
    /// what it has used. The pixels stay until the next call. There are none when there was no
    /// whole code in the data, and from the end code on.
    [[nodiscard]] std::span<const std::uint8_t> Decode(std::span<const std::uint8_t>& data);
    [[nodiscard]] bool Ended() const { return ended_; }

  private:
    struct Entry {
        std::uint32_t position;
        std::uint32_t length;
    };

    /// Empties the dictionary of all but the single pixels.
    void Clear();
    /// Moves the end of the pixels back to the last that has to stay, and makes room behind it.
    void MakeRoom();
    void DecodeCodes(std::span<const std::uint8_t>& data, std::size_t limit);

    static constexpr unsigned kMostWidth = 12;
    static constexpr unsigned kMostCodes = 1u << kMostWidth;

    unsigned first_width_;
    unsigned clear_code_;
    std::vector<std::uint8_t> pixels_;
    std::size_t end_ = 0;       ///< of the pixels that were decoded
    std::size_t kept_end_ = 0;  ///< of those that an empty or a full dictionary needs
    std::uint64_t bits_ = 0;
    unsigned bit_count_ = 0;
    unsigned width_ = 0;
    unsigned next_code_ = 0;
    unsigned grow_at_ = 0;  ///< the next code at which codes get wider; 0 in a full dictionary
    Entry last_ = {};       ///< the string decoded last; of length 0 behind a clear code
    bool ended_ = false;
    /// With one entry more, which a full dictionary can take without harm.
    std::array<Entry, kMostCodes + 1> entries_;
};

}  // namespace rastrel
