#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <type_traits>
#include <variant>

#include "color_ramp.h"
#include "commands.h"
#include "options.h"
#include "progress_line.h"
#include "surface.h"

namespace rastrel_cli {

namespace {

/// Of slope and aspect, where 0 is a value; in hillshades no data is 0, as other programs have it.
constexpr std::uint8_t kNoData = 255;
constexpr std::size_t kFlat = 8;  ///< the aspect of level ground

constexpr const char* kHillshadeNotes = R"(
Shades an elevation grid by a light: 0 is dark, 255 bright. Cells without data and those beside them
become 0; the outermost cells of the grid, whose neighbours are not known, become 255.
Where the grid tells its place and its cells are square, the output gets a world file.)";

constexpr const char* kSlopeNotes = R"(
Slopes in whole degrees, 0 to 89. Cells without data and those beside them become 255; the outermost
cells of the grid, whose neighbours are not known, become 0.
Where the grid tells its place and its cells are square, the output gets a world file.)";

constexpr const char* kAspectNotes = R"(
The direction that each cell faces (downhill): 0 north, 1 north-east, 2 east, 3 south-east, 4 south,
5 south-west, 6 west, 7 north-west; 8 level ground and the outermost cells of the grid; 255 cells
without data and those beside them.
Where the grid tells its place and its cells are square, the output gets a world file.)";

constexpr const char* kSlopeRamp = R"(
0  250 250 245
4  206 226 180
10 152 200 120
18 236 224 120
28 240 170 80
40 214 92 60
55 150 34 62
89 70 8 50
)";

/// Clockwise from north, then level ground.
constexpr std::array<PaletteEntry, 9> kAspectColors = {{{224, 82, 72},
                                                        {238, 150, 72},
                                                        {244, 218, 94},
                                                        {144, 204, 98},
                                                        {84, 186, 172},
                                                        {86, 156, 214},
                                                        {92, 98, 190},
                                                        {186, 92, 170},
                                                        {214, 214, 208}}};

std::vector<PaletteEntry> SlopePalette() {
    std::string why;
    const auto ramp = ParseColorRamp(kSlopeRamp, why);
    std::vector<PaletteEntry> palette;
    for (int degrees = 0; degrees < 255; ++degrees)
        palette.push_back(ColorAt(ramp.value(), degrees));
    palette.push_back(ramp->no_data);
    return palette;
}

std::vector<PaletteEntry> AspectPalette() {
    std::vector<PaletteEntry> palette(256, PaletteEntry{255, 255, 255});
    std::copy(kAspectColors.begin(), kAspectColors.end(), palette.begin());
    return palette;
}

/// Puts a value where no data is, or is beside.
void MarkNoData(const Grid& grid, Array<std::uint8_t>& picture, std::uint8_t mark) {
    if (grid.valid.Empty()) return;
    const Array<std::uint8_t> valid = ValidNeighborhoods(grid);
    std::transform(
        valid.begin(), valid.end(), picture.begin(), picture.begin(),
        [mark](std::uint8_t is_valid, std::uint8_t value) { return is_valid != 0 ? value : mark; });
}

bool SaveGray(const SurfaceOptions& options, const Grid& grid, const Array<std::uint8_t>& pixels,
              std::vector<PaletteEntry> palette = {}) {
    const Picture picture{grid.rows, grid.columns, 8, pixels.data(), std::move(palette)};
    return SavePicture(picture, options.output, grid.place);
}

bool RunHillshade(const SurfaceOptions& options, const Light& light) {
    ProgressLine progress;
    progress.Say("shading " + options.input);
    const std::optional<Surface> surface = ReadSurface(options);
    if (!surface) return false;
    Array<std::uint8_t> shading = Hillshade(*surface, light);
    MarkNoData(surface->grid, shading, 0);
    return SaveGray(options, surface->grid, shading);
}

bool RunSlope(const SurfaceOptions& options, bool color) {
    ProgressLine progress;
    progress.Say("computing slopes of " + options.input);
    const std::optional<Surface> surface = ReadSurface(options);
    if (!surface) return false;
    const Grid& grid = surface->grid;
    Array<std::uint8_t> slopes(grid.rows, grid.columns);
    std::visit(
        [&](const auto& samples) {
            using Functions = typename std::remove_cvref_t<decltype(samples)>::Functions;
            Functions::kSlope(slopes.data(), samples.data(), grid.rows, grid.columns,
                              surface->factor);
        },
        grid.samples);
    MarkNoData(grid, slopes, kNoData);
    return SaveGray(options, grid, slopes, color ? SlopePalette() : std::vector<PaletteEntry>());
}

bool RunAspect(const SurfaceOptions& options, bool color) {
    ProgressLine progress;
    progress.Say("computing aspects of " + options.input);
    const std::optional<Surface> surface = ReadSurface(options);
    if (!surface) return false;
    const Grid& grid = surface->grid;
    Array<std::uint8_t> aspects(grid.rows, grid.columns);
    // The library leaves cells just west of its class 0 as they are.
    std::fill(aspects.begin(), aspects.end(), std::uint8_t{0});
    std::visit(
        [&](const auto& samples) {
            using Functions = typename std::remove_cvref_t<decltype(samples)>::Functions;
            Functions::kAspect(aspects.data(), samples.data(), grid.rows, grid.columns,
                               surface->factor);
        },
        grid.samples);
    // Its classes go clockwise from north as seen with rows going up; they go down.
    constexpr std::array<std::uint8_t, kFlat + 1> kCompass = {4, 3, 2, 1, 0, 7, 6, 5, kFlat};
    std::transform(aspects.begin(), aspects.end(), aspects.begin(),
                   [&kCompass](std::uint8_t c) { return kCompass.at(c); });
    MarkNoData(grid, aspects, kNoData);
    return SaveGray(options, grid, aspects, color ? AspectPalette() : std::vector<PaletteEntry>());
}

struct ColoredOptions : SurfaceOptions {
    bool color = false;
};

/// A command on a surface whose output can be in colour.
void AddColoredCommand(CLI::App& app, Job& job, const char* name, const char* description,
                       const char* notes, bool (*run)(const SurfaceOptions& options, bool color)) {
    const auto options = std::make_shared<ColoredOptions>();
    CLI::App* command = app.add_subcommand(name, description);
    AddSurfaceOptions(*command, *options);
    command->add_flag("--color,--colour", options->color, "with a palette that shows the values");
    command->footer(notes);
    command->callback(
        [options, run, &job] { job = [options, run] { return run(*options, options->color); }; });
}

}  // namespace

void AddHillshadeCommand(CLI::App& app, Job& job) {
    struct Options : SurfaceOptions {
        Light light;
    };
    const auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand("hillshade", "shade an elevation grid by a light");
    AddSurfaceOptions(*command, *options);
    AddLightOptions(*command, options->light);
    command->footer(kHillshadeNotes);
    command->callback(
        [options, &job] { job = [options] { return RunHillshade(*options, options->light); }; });
}

void AddSlopeCommand(CLI::App& app, Job& job) {
    AddColoredCommand(app, job, "slope", "slopes of an elevation grid", kSlopeNotes, RunSlope);
}

void AddAspectCommand(CLI::App& app, Job& job) {
    AddColoredCommand(app, job, "aspect", "the direction that each cell of an elevation grid faces",
                      kAspectNotes, RunAspect);
}

}  // namespace rastrel_cli
