#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace rastrel {

/// LZW of variable code width as GIF has it, for pixels of 8 bits. It gives the codes that the
/// classic coder gives: always the longest string that the dictionary holds, and a clear code as
/// soon as a new string no longer fits into it.
class LzwEncoder {
  public:
    LzwEncoder();

    /// Appends the codes of more pixels, as far as they make whole bytes. Not after Finish.
    void Encode(std::span<const std::uint8_t> pixels, std::vector<std::uint8_t>& out);
    /// Appends what is left, and the end code.
    void Finish(std::vector<std::uint8_t>& out);

  private:
    static constexpr unsigned kClearCode = 256;
    static constexpr unsigned kEndCode = kClearCode + 1;
    static constexpr unsigned kFirstCode = kClearCode + 2;
    static constexpr unsigned kFirstWidth = 9;
    static constexpr unsigned kMostWidth = 12;
    static constexpr unsigned kMostCodes = 1u << kMostWidth;
    /// Entries that add another pixel than the last stand in slots: prefix and pixel in the upper
    /// 20 bits, the code in the lower 12. No entry has code 0, so that 0 stands for none.
    static constexpr std::size_t kSlots = 8192;
    static constexpr unsigned kNoCode = 0;
    static constexpr unsigned kRunStep = 8;

    /// The string at hand while pixels are encoded, and where codes go to.
    struct Progress;

    void Clear();
    void Put(unsigned code, Progress& progress);
    /// Ends the string at hand, which does not go on with this pixel in the dictionary, and begins
    /// another with it. The slot is where the two together were not found; kSlots for a pixel like
    /// the last.
    void EndString(std::uint8_t pixel, std::size_t free_slot, Progress& progress);
    /// Encodes pixels that are all like the last one of the string at hand.
    void EncodeRun(std::uint8_t pixel, std::size_t count, Progress& progress);
    /// Enters the string at hand with its last pixel once more.
    void RememberRun(unsigned prefix, unsigned code);

    std::array<std::uint32_t, kSlots> slots_;
    /// Entries that add the last pixel once more are found by prefix: for each code that of its
    /// string with the last pixel once more, and kRunStep times more.
    std::array<std::uint16_t, kMostCodes> longer_;
    std::array<std::uint16_t, kMostCodes> much_longer_;
    /// For each entry its prefix, and how many entries in a row have repeated the last pixel.
    std::array<std::uint16_t, kMostCodes> prefixes_;
    std::array<std::uint16_t, kMostCodes> repeats_;

    unsigned prefix_ = kNoPrefix;  ///< the code of the string at hand
    std::uint8_t last_pixel_ = 0;  ///< of that string
    unsigned next_code_ = kFirstCode;
    unsigned width_ = kFirstWidth;
    std::uint64_t bits_ = 0;
    unsigned bit_count_ = 0;

    static constexpr unsigned kNoPrefix = kMostCodes;
};

}  // namespace rastrel
