#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "grid.h"

namespace rastrel_cli {

// The formats of grid files, from bytes in memory. What is wrong is told with its line where there
// are lines. Grids come without `valid`: see FindValidCells.

/// An ESRI ASCII grid: the lines ncols, nrows, xllcorner or xllcenter, yllcorner or yllcenter,
/// cellsize (or dx and dy) and NODATA_value in any order, then the values, the top row first.
[[nodiscard]] std::optional<Grid> ParseAsciiGrid(std::string_view text, std::string& why);

/// How the samples of a raw grid lie in their file.
struct RawGridHeader {
    enum class Kind { kUnsigned, kSigned, kFloat };

    int rows = 0;
    int columns = 0;
    int bands = 1;
    int bits = 8;
    Kind kind = Kind::kUnsigned;
    bool big_endian = false;
    std::uint64_t skip_bytes = 0;  ///< before the first row
    std::uint64_t row_bytes = 0;   ///< from the start of a row to the next
    std::optional<double> no_data;
    GridPlace place;

    [[nodiscard]] std::uint64_t SampleRowBytes() const {
        return static_cast<std::uint64_t>(columns) * static_cast<std::uint64_t>(bits) / 8;
    }
};

/// A .hdr file: a keyword and its value on each line, in any case; unknown keywords are passed
/// over. float_file: the header of a .flt file, whose samples are 32-bit floats unless it says
/// otherwise.
[[nodiscard]] std::optional<RawGridHeader> ParseRawGridHeader(std::string_view text,
                                                              bool float_file, std::string& why);

/// The samples that go with a header. 8-bit samples become bytes or, if signed, 16-bit ones;
/// unsigned 16- and 32-bit ones 32-bit signed ones.
[[nodiscard]] std::optional<Grid> DecodeRawGrid(const RawGridHeader& header,
                                                std::span<const std::uint8_t> bytes,
                                                std::string& why);

/// The header that states how a grid's samples lie in memory: one that ParseRawGridHeader reads.
[[nodiscard]] std::string RawGridHeaderText(const Grid& grid);

}  // namespace rastrel_cli
