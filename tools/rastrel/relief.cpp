#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <limits>
#include <type_traits>
#include <variant>

#include "color_ramp.h"
#include "commands.h"
#include "grid_statistics.h"
#include "options.h"
#include "progress_line.h"
#include "surface.h"
#include "text.h"

namespace rastrel_cli {

namespace {

constexpr std::size_t kMostCells = std::numeric_limits<std::int32_t>::max() / 3;

struct ReliefOptions : SurfaceOptions {
    Light light;
    std::string ramp = "elevation";
    double weight = 0.5;
};

constexpr const char* kNotes = R"(
Colours elevations by a ramp, which is the name of a built-in one or a text file with a line for each
elevation that has a colour of its own; between them colours blend:
  # elevation, red, green, blue from 0 to 255; blanks, commas or colons divide
  -200  20 70 140
  0     190 220 235
  0     110 160 100
  50%   230 215 150
  100%  white
  nv    255 255 255
Percentages are of the grid's range from lowest to highest; nv is for cells without data (white
without this line). Two colours at one elevation make a sharp edge. Colours can be named: white,
black, red, green, blue, yellow, magenta, cyan, aqua, grey, orange, brown, purple, violet, indigo,
pink, turquoise. A fourth number (alpha) and what comes after it is not used.
Where the grid tells its place and its cells are square, the output gets a world file.)";

std::optional<ColorRamp> LoadRamp(const std::string& name) {
    std::string why;
    std::optional<ColorRamp> ramp;
    if (const auto built_in = BuiltInRamp(name)) {
        ramp = ParseColorRamp(*built_in, why);
    } else if (const auto text = ReadWholeFile(name, why)) {
        ramp = ParseColorRamp(*text, why);
    } else {
        why += "; built-in ramps are " + BuiltInRampNames();
    }
    if (!ramp) ReportFailure(name, why);
    return ramp;
}

/// For each cell the palette entry that colours it.
template <class Sample>
Array<std::uint8_t> Indices(const Grid& grid, const Array<Sample>& samples,
                            const ElevationPalette& palette, double minimum, double maximum) {
    // A table of where in the palette to begin: two of its steps below the elevation, as rounding
    // may take it a step too far. The few limits up to it are then looked at one by one.
    constexpr std::size_t kSteps = 4096;
    constexpr double kLastStep = kSteps - 1;
    const double steps_per_unit = maximum > minimum ? kLastStep / (maximum - minimum) : 0.0;
    std::array<std::uint8_t, kSteps> first{};
    const auto limits_begin = palette.limits.begin() + 1;
    for (std::size_t step = 2; step < kSteps; ++step) {
        const double elevation =
            minimum + (maximum - minimum) * (static_cast<double>(step - 2) / kLastStep);
        first.at(step) = static_cast<std::uint8_t>(
            std::upper_bound(limits_begin, palette.limits.end(), elevation) - limits_begin);
    }
    Array<std::uint8_t> indices(grid.rows, grid.columns);
    std::transform(samples.begin(), samples.end(), indices.begin(), [&](Sample sample) {
        // Cells without data may hold anything.
        const double elevation = std::clamp(static_cast<double>(sample), minimum, maximum);
        const auto step = static_cast<std::size_t>((elevation - minimum) * steps_per_unit);
        std::size_t entry = first[std::min(step, kSteps - 1)];
        while (entry < 255 && elevation >= palette.limits[entry + 1])
            ++entry;
        return static_cast<std::uint8_t>(entry);
    });
    return indices;
}

/// Gives the outermost cells the shading of those inside of them, so that no frame shows.
void ExtendShading(const Grid& grid, Array<std::uint8_t>& shading) {
    if (grid.rows < 3 || grid.columns < 3) return;
    const auto rows = static_cast<std::size_t>(grid.rows);
    const auto columns = static_cast<std::size_t>(grid.columns);
    for (std::size_t r = 0; r < rows; ++r) {
        shading[r * columns] = shading[r * columns + 1];
        shading[(r + 1) * columns - 1] = shading[(r + 1) * columns - 2];
    }
    std::copy_n(shading.begin() + columns, columns, shading.begin());
    std::copy_n(shading.end() - 2 * columns, columns, shading.end() - columns);
}

std::uint32_t AsNumber(const PaletteEntry& color) {
    return std::uint32_t{color.red} | std::uint32_t{color.green} << 8U |
           std::uint32_t{color.blue} << 16U;
}

Array<std::uint8_t> MakeColorPixels(const Grid& grid) {
    return {grid.rows, grid.columns * 3};
}

Array<std::uint8_t> Color(const ReliefOptions& options, const Surface& surface,
                          const ColorRamp& ramp, const Statistics& range) {
    const Grid& grid = surface.grid;
    const ElevationPalette colors = MakeElevationPalette(ramp, range.minimum, range.maximum);
    std::array<std::uint32_t, 256> palette{};
    std::transform(colors.colors.begin(), colors.colors.end(), palette.begin(), AsNumber);
    const Array<std::uint8_t> indices = std::visit(
        [&](const auto& samples) {
            return Indices(grid, samples, colors, range.minimum, range.maximum);
        },
        grid.samples);
    Array<std::uint8_t> shading = Hillshade(surface, options.light);
    ExtendShading(grid, shading);
    Array<std::uint8_t> pixels = MakeColorPixels(grid);
    Rastrel_Ipsometry(pixels.data(), indices.data(), shading.data(), options.weight, grid.rows,
                      grid.columns, palette.data());
    if (grid.valid.Empty()) return pixels;
    Array<std::uint8_t> masked = MakeColorPixels(grid);
    Rastrel_Mask24(masked.data(), pixels.data(), grid.valid.data(), grid.rows, grid.columns,
                   AsNumber(ramp.no_data), 0);
    return masked;
}

bool RunRelief(const ReliefOptions& options) {
    ProgressLine progress;
    progress.Say("colouring " + options.input);
    const std::optional<ColorRamp> ramp = LoadRamp(options.ramp);
    if (!ramp) return false;
    const std::optional<Surface> surface = ReadSurface(options);
    if (!surface) return false;
    const Grid& grid = surface->grid;
    const Statistics range = StatisticsOf(grid);
    if (range.count == 0) {
        ReportFailure(options.input, "none of its cells holds data");
        return false;
    }
    if (grid.Cells() > kMostCells) {
        ReportFailure(options.input, "it has more cells than an image of 24 bits can have pixels");
        return false;
    }
    const Array<std::uint8_t> pixels = Color(options, *surface, *ramp, range);
    return SavePicture({grid.rows, grid.columns, 24, pixels.data(), {}}, options.output,
                       grid.place);
}

}  // namespace

void AddReliefCommand(CLI::App& app, Job& job) {
    const auto options = std::make_shared<ReliefOptions>();
    CLI::App* command =
        app.add_subcommand("relief", "colour an elevation grid by heights and shade it by a light");
    AddSurfaceOptions(*command, *options);
    AddLightOptions(*command, options->light);
    command->add_option("--ramp", options->ramp,
                        "colours: a file, or " + BuiltInRampNames() + " (elevation)");
    AddNumberOption(*command, "--weight", options->weight, 0.0, 1.0,
                    "of the colours' own brightness, against that of the shading");
    command->footer(kNotes);
    command->callback([options, &job] { job = [options] { return RunRelief(*options); }; });
}

}  // namespace rastrel_cli
