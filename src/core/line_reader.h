#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "core/byte_source.h"

namespace rastrel {

/// No line of a header or world file counts beyond this, its end included.
constexpr std::size_t kMostLineCharacters = 199;

/// A line with its end or, of a line longer than the reader's limit, a piece of it.
struct LinePiece {
    std::string_view text;  ///< until the reader's next call
    bool starts_line = true;
};

/// Lines of a text file, one after the other, in memory of a fixed size whatever the file holds.
class LineReader {
  public:
    /// Reads from the source's position on; most_characters count the line's end.
    LineReader(ByteSource& source, std::size_t most_characters)
        : source_(source), piece_(most_characters) {}

    /// None at the end of the file.
    [[nodiscard]] std::optional<LinePiece> NextPiece();
    /// The next line as far as the limit; the rest of it is passed over.
    [[nodiscard]] std::optional<std::string_view> NextLine();

  private:
    /// Reads on when all that was read is used up; false at the end of the file.
    [[nodiscard]] bool Refill();

    ByteSource& source_;
    std::vector<char> piece_;
    std::array<std::uint8_t, 4096> buffer_ = {};
    std::size_t at_ = 0;
    std::size_t end_ = 0;
    bool in_line_ = false;
};

}  // namespace rastrel
