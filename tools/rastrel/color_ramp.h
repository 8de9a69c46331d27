#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "image.h"

namespace rastrel_cli {

/// Colours for elevations, blending into each other between the elevations they stand at.
struct ColorRamp {
    struct Stop {
        double position = 0.0;  ///< an elevation, or a share of the grid's range from 0 to 1
        bool is_share = false;
        PaletteEntry color;
    };
    std::vector<Stop> stops;              ///< at least one
    PaletteEntry no_data{255, 255, 255};  ///< of cells without data: white unless the file tells
};

/// Parses a colour ramp as GIS programs write them: on each line an elevation (or a percentage of
/// the grid's range, or nv for cells without data) and a colour, as red, green, blue and possibly
/// alpha from 0 to 255, or as one of a few names. Blanks, commas and colons divide; # starts a
/// comment. What follows the colour is a label; alpha and label are not used.
[[nodiscard]] std::optional<ColorRamp> ParseColorRamp(std::string_view text, std::string& why);

/// The text of a ramp that comes with the program; nothing for other names.
[[nodiscard]] std::optional<std::string_view> BuiltInRamp(std::string_view name);
/// The names of these, divided by commas.
[[nodiscard]] std::string BuiltInRampNames();

/// How a ramp colours elevations by way of 256 palette entries: more of them where its colours
/// change more, and none across one of its stops, so that coastlines stay sharp.
struct ElevationPalette {
    /// Entry i colours elevations from limits[i] up to limits[i + 1]; the first also what is lower,
    /// the last what is higher.
    std::array<double, 256> limits{};
    std::array<PaletteEntry, 256> colors{};
};

/// The palette for elevations between two.
[[nodiscard]] ElevationPalette MakeElevationPalette(const ColorRamp& ramp, double minimum,
                                                    double maximum);

/// The colour of one elevation; for a ramp without percentages.
[[nodiscard]] PaletteEntry ColorAt(const ColorRamp& ramp, double elevation);

}  // namespace rastrel_cli
