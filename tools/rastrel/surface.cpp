#include "surface.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <type_traits>
#include <variant>

#include "commands.h"
#include "options.h"

namespace rastrel_cli {

namespace {

constexpr double kMostFactor = 1e12;
constexpr double kLeastScale = 1e-12;

/// Cells smaller than this, at coordinates that fit longitudes and latitudes, are taken for
/// degrees.
constexpr double kLargestCellInDegrees = 0.1;

void Remark(const std::string& name, const std::string& remark) {
    fmt::print(stderr, "rastrel: {}: {}\n", name, remark);
}

bool LooksLikeDegrees(const GridPlace& place) {
    return place.HasPosition() && place.cell_width < kLargestCellInDegrees &&
           std::abs(place.x) <= 360.0 && std::abs(place.y) <= 90.0;
}

/// The one side that the gradients are computed with.
double CellSize(const GridPlace& place, const std::string& name) {
    if (place.HasSquareCells()) return place.cell_width;
    const double mean = std::sqrt(place.cell_width) * std::sqrt(place.cell_height);
    Remark(name, fmt::format("its cells are not square ({} x {}); slopes are computed as if they "
                             "were, with sides of {:.6g}",
                             place.cell_width, place.cell_height, mean));
    return mean;
}

}  // namespace

void AddSurfaceOptions(CLI::App& command, SurfaceOptions& options) {
    command
        .add_option("input", options.input,
                    "elevation grid: bil, bip, bsq or flt with hdr, asc, grd")
        ->required();
    command.add_option("output", options.output.name, "image")->required();
    AddTypeOption(command, "--type", options.output.type,
                  "the output's format, not by its extension");
    AddNumberOption(command, "--z-factor", options.z_factor, -kMostFactor, kMostFactor,
                    "exaggerates the heights");
    AddNumberOption(command, "--scale", options.scale, kLeastScale, kMostFactor,
                    "vertical units in a horizontal one: 111120 for degrees and metres");
}

void AddLightOptions(CLI::App& command, Light& light) {
    AddNumberOption(command, "--azimuth", light.azimuth, -360.0, 360.0,
                    "where the light comes from, in degrees clockwise from north");
    AddNumberOption(command, "--altitude", light.altitude, 0.0, 90.0,
                    "its height above the horizon in degrees");
}

std::optional<Surface> ReadSurface(const SurfaceOptions& options) {
    if (ReplacesInput(options.input, options.output.name)) return std::nullopt;
    std::string why;
    std::optional<Grid> grid = ReadGrid(options.input, why);
    if (!grid) {
        ReportFailure(options.input, why);
        return std::nullopt;
    }
    if (options.scale == 1.0 && LooksLikeDegrees(grid->place))
        Remark(options.input,
               fmt::format("if its cells of {} are degrees, slopes need --scale, 111120 for "
                           "heights in metres",
                           grid->place.cell_width));
    Surface surface;
    surface.factor = options.z_factor / (CellSize(grid->place, options.input) * options.scale);
    if (!std::isfinite(surface.factor)) {
        ReportFailure(options.input, fmt::format("its cells of {} are too small to compute with",
                                                 grid->place.cell_width));
        return std::nullopt;
    }
    FillInvalidCells(*grid);
    surface.grid = std::move(*grid);
    return surface;
}

Array<std::uint8_t> Hillshade(const Surface& surface, const Light& light) {
    const Grid& grid = surface.grid;
    Array<std::uint8_t> shading(grid.rows, grid.columns);
    // The library counts its azimuth from south over east.
    const double azimuth = 180.0 - light.azimuth;
    std::visit(
        [&](const auto& samples) {
            using Functions = typename std::remove_cvref_t<decltype(samples)>::Functions;
            Functions::kHillshading(shading.data(), samples.data(), grid.rows, grid.columns,
                                    light.altitude, azimuth, surface.factor);
        },
        grid.samples);
    return shading;
}

}  // namespace rastrel_cli
