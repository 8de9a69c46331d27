#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "array.h"

namespace rastrel_cli {

/// Where a grid's cells lie on the ground, in map units.
struct GridPlace {
    /// The centre of the upper left cell: what ULXMAP, ULYMAP and the last two lines of world
    /// files state. Not a number where the file does not tell.
    double x = std::numeric_limits<double>::quiet_NaN();
    double y = std::numeric_limits<double>::quiet_NaN();
    double cell_width = 1.0;
    double cell_height = 1.0;

    [[nodiscard]] bool HasPosition() const { return !std::isnan(x) && !std::isnan(y); }
    [[nodiscard]] bool HasSquareCells() const;
};

/// Row after row, the northernmost first.
using Samples =
    std::variant<Array<std::uint8_t>, Array<std::int16_t>, Array<std::int32_t>, Array<float>>;

/// One band of values over a rectangle of the ground, mostly elevations.
struct Grid {
    int rows = 0;
    int columns = 0;
    Samples samples;
    std::optional<double> no_data;  ///< what the file says instead of a value
    /// For each cell 255 where it holds a value and 0 where it does not; empty: all hold one.
    Array<std::uint8_t> valid;
    GridPlace place;

    [[nodiscard]] std::size_t Cells() const {
        return static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns);
    }
};

/// Whether the name's extension is one of raw samples with a .hdr beside: bil, bip, bsq or flt.
[[nodiscard]] bool IsRawGridName(const std::string& name);
/// Whether it is one of any grid: those, or asc and grd (ESRI ASCII grid).
[[nodiscard]] bool IsGridName(const std::string& name);

/// The header beside a file of raw samples: its name with the extension .hdr, or .HDR if only that
/// exists.
[[nodiscard]] std::string HeaderName(const std::string& name);

/// Reads a grid of one band; otherwise nothing, and why not. Cells that hold the file's no-data
/// value or are not a number count as cells without data; infinite ones are refused.
[[nodiscard]] std::optional<Grid> ReadGrid(const std::string& name, std::string& why);

/// Finds the cells without data and records them in grid.valid.
[[nodiscard]] bool FindValidCells(Grid& grid, std::string& why);

/// Gives the cells without data numbers, so that they can be computed with: next to cells with data
/// their mean, so that no cliff arises there, elsewhere any.
void FillInvalidCells(Grid& grid);

/// Like grid.valid, but 0 also where a neighbour (of eight) holds no data.
[[nodiscard]] Array<std::uint8_t> ValidNeighborhoods(const Grid& grid);

}  // namespace rastrel_cli
