#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace rastrel_test {

// GIF's LZW as it is told: the truth that the library's forms are held to.

/// Codes of given widths, from the lowest bit on.
class CodePacker {
  public:
    void Put(unsigned code, unsigned width);
    /// With the last byte, as far as there are bits for it.
    [[nodiscard]] std::vector<std::uint8_t> Bytes() const;

  private:
    std::vector<bool> bits_;
};

/// The bytes of 8-bit pixels' codes: a hash table of 5,003 keys, cleared when it is full.
[[nodiscard]] std::vector<std::uint8_t> EncodePlainly(const std::vector<std::uint8_t>& pixels);

/// At most most_pixels pixels from codes, by a stack and a list of prefixes. A code that there is
/// not yet stands for the last string and its first pixel again; behind a clear code, for pixel 0.
[[nodiscard]] std::vector<std::uint8_t> DecodePlainly(const std::vector<std::uint8_t>& bytes,
                                                      unsigned code_size, std::size_t most_pixels);

}  // namespace rastrel_test
