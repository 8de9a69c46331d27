// The command-line host's readers of grids, their headers, colour ramps and control
// points: the first byte chooses.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <variant>

#include "color_ramp.h"
#include "control_points.h"
#include "grid.h"
#include "grid_files.h"

namespace {

using namespace rastrel_cli;

/// A property that must hold whatever the input; the fuzzer keeps inputs that end the process.
void Require(bool holds) {
    if (!holds) std::abort();
}

void UseGrid(Grid& grid) {
    Require(grid.rows > 0 && grid.columns > 0);
    Require(grid.place.cell_width > 0.0 && grid.place.cell_height > 0.0);
    std::visit([&grid](const auto& samples) { Require(samples.size() == grid.Cells()); },
               grid.samples);
    std::string why;
    if (!FindValidCells(grid, why)) return Require(!why.empty());
    FillInvalidCells(grid);
    Require(ValidNeighborhoods(grid).size() == grid.valid.size());
    if (const auto* floats = std::get_if<Array<float>>(&grid.samples)) {
        for (const float value : *floats)
            Require(std::isfinite(value));
    }
    // The header of a grid reads as that grid.
    const auto header = ParseRawGridHeader(RawGridHeaderText(grid), false, why);
    Require(header && header->rows == grid.rows && header->columns == grid.columns);
    Require(header->place.HasPosition() == grid.place.HasPosition());
    Require(header->no_data == grid.no_data);
}

void ReadRamp(std::string_view text) {
    std::string why;
    const auto ramp = ParseColorRamp(text, why);
    Require(ramp ? !ramp->stops.empty() : !why.empty());
    if (!ramp) return;
    for (const double maximum : {10.0, 11.0, 3e38}) {
        const ElevationPalette palette = MakeElevationPalette(*ramp, 10.0, maximum);
        for (std::size_t i = 1; i < palette.limits.size(); ++i)
            Require(palette.limits[i - 1] <= palette.limits[i]);
    }
}

void ReadControlPoints(std::string_view text) {
    std::string why;
    const auto points = ParseControlPoints(text, why);
    if (!points) return Require(!why.empty());
    for (const auto& [column, row, x, y] : *points)
        Require(std::isfinite(column) && std::isfinite(row) && std::isfinite(x) &&
                std::isfinite(y));
}

/// A header and, after a zero byte, the samples.
void ReadRawGrid(std::string_view input, bool float_file) {
    const std::size_t header_size = std::min(input.find('\0'), input.size());
    const std::string_view samples = input.substr(std::min(header_size + 1, input.size()));
    std::string why;
    const auto header = ParseRawGridHeader(input.substr(0, header_size), float_file, why);
    if (!header) return Require(!why.empty());
    auto grid = DecodeRawGrid(
        *header, {reinterpret_cast<const std::uint8_t*>(samples.data()), samples.size()}, why);
    if (!grid) return Require(!why.empty());
    UseGrid(*grid);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0]) {
        case 'a': {
            std::string why;
            auto grid = ParseAsciiGrid(rest, why);
            Require(grid || !why.empty());
            if (grid) UseGrid(*grid);
            break;
        }
        case 'b':
            ReadRawGrid(rest, false);
            break;
        case 'f':
            ReadRawGrid(rest, true);
            break;
        case 'p':
            ReadControlPoints(rest);
            break;
        default:
            ReadRamp(rest);
            break;
    }
    return 0;
}
