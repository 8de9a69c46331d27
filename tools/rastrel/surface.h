#pragma once

#include <CLI/ConfigFwd.hpp>
#include <cstdint>
#include <optional>
#include <string>

#include "grid.h"
#include "picture.h"

namespace rastrel_cli {

// What the commands on elevation grids share.

struct SurfaceOptions {
    std::string input;
    OutputOptions output;
    double z_factor = 1.0;
    double scale = 1.0;
};

struct Light {
    double azimuth = 315.0;  ///< degrees clockwise from north
    double altitude = 45.0;  ///< degrees above the horizon
};

/// Input, output and, with factors, --z-factor and --scale.
void AddSurfaceOptions(CLI::App& command, SurfaceOptions& options);
void AddLightOptions(CLI::App& command, Light& light);

/// An elevation grid ready for computing: cells without data hold numbers.
struct Surface {
    Grid grid;
    double factor = 1.0;  ///< what turns differences of neighbouring cells into slopes
};

/// Reads the input and says what is wrong or uncertain with it.
[[nodiscard]] std::optional<Surface> ReadSurface(const SurfaceOptions& options);

/// Shading from 0 to 255, the outermost cells 255, whatever the cells hold.
[[nodiscard]] Array<std::uint8_t> Hillshade(const Surface& surface, const Light& light);

}  // namespace rastrel_cli
