#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <array>
#include <cmath>
#include <limits>
#include <string_view>
#include <variant>

#include "commands.h"
#include "grid_statistics.h"
#include "image.h"
#include "options.h"
#include "picture.h"
#include "progress_line.h"
#include "reasons.h"
#include "types.h"

namespace rastrel_cli {

namespace {

constexpr const char* kStatsNotes = R"(
Cells without data do not count. Of an image with a palette the indices are measured, of one in colour
its channels. The deviation has the divisor n - 1.)";

constexpr const char* kStretchNotes = R"(
Values at the lower bound and below become 0, at the upper bound and above 255, linearly between. The
bounds are mean - k deviations and mean + k deviations or, with k = 0, minimum and maximum; they are
printed. Cells without data do not count and become 0. Of an image in colour each channel is
stretched by itself. The georeference is carried over.)";

/// What is measured: a grid, or the channels of an image as grids.
struct Bands {
    std::vector<std::string> names;
    std::vector<Grid> grids;
    std::string kind;
    bool is_grid = false;
};

std::string_view SampleName(const Samples& samples) {
    constexpr std::array<std::string_view, 4> kNames = {
        "8 bits, unsigned", "16 bits, signed", "32 bits, signed", "32 bits, floating point"};
    return kNames.at(samples.index());
}

Grid MakeByteGrid(int rows, int columns) {
    Grid grid;
    grid.rows = rows;
    grid.columns = columns;
    grid.samples = Array<std::uint8_t>(rows, columns);
    return grid;
}

/// The image's bytes at a depth of 8 or 24 bits; false when they cannot be had.
bool GetPixels(const Image& image, int depth, std::vector<std::uint8_t>& pixels) {
    const int width = Rastrel_GetWidth(image.Handle());
    const int height = Rastrel_GetHeight(image.Handle());
    pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                  static_cast<std::size_t>(depth / 8));
    return Rastrel_GetImageByte(image.Handle(), pixels.data(), depth, 0, 0, width, height) == 1;
}

/// One band of indices, or three of red, green and blue.
std::optional<Bands> ReadImageBands(const std::string& name, int type) {
    const Image image;
    std::vector<std::uint8_t> pixels;
    const bool is_read = Rastrel_Read(image.Handle(), name.c_str(), type) == 1;
    const int bits = Rastrel_GetDepth(image.Handle());
    const std::size_t channels = bits <= 8 ? 1 : 3;
    if (!is_read) {
        ReportFailure(name, WhyNotRead(name, type));
        return std::nullopt;
    }
    if (!GetPixels(image, static_cast<int>(channels) * 8, pixels)) {
        ReportFailure(name, "its pixels are run-length coded");
        return std::nullopt;
    }
    Bands bands;
    bands.kind = fmt::format("{} bits a pixel", bits);
    bands.names = channels == 1 ? std::vector<std::string>{""}
                                : std::vector<std::string>{"red", "green", "blue"};
    for (std::size_t channel = 0; channel < channels; ++channel) {
        Grid grid =
            MakeByteGrid(Rastrel_GetHeight(image.Handle()), Rastrel_GetWidth(image.Handle()));
        // Pixels are blue, green, red.
        const std::uint8_t* from = pixels.data() + (channels - 1 - channel);
        for (std::uint8_t& sample : std::get<Array<std::uint8_t>>(grid.samples)) {
            sample = *from;
            from += channels;
        }
        bands.grids.push_back(std::move(grid));
    }
    bands.grids.front().place = PlaceOfPicture(name);
    return bands;
}

/// A grid by its extension, unless a type says that it is an image; everything else as an image.
std::optional<Bands> ReadBands(const std::string& name, int type) {
    if (type >= 0 || !IsGridName(name)) return ReadImageBands(name, type);
    std::string why;
    std::optional<Grid> grid = ReadGrid(name, why);
    if (!grid) {
        ReportFailure(name, why);
        return std::nullopt;
    }
    Bands bands;
    bands.is_grid = true;
    bands.kind = SampleName(grid->samples);
    bands.names = {""};
    bands.grids.push_back(std::move(*grid));
    return bands;
}

/// Undefined where there are too few values to tell.
std::string Number(double value) {
    return std::isfinite(value) ? fmt::format("{}", value) : "-";
}

void PrintStatistics(const std::string& band, const Statistics& statistics) {
    const std::string before = band.empty() ? "  " : "    ";
    if (!band.empty()) fmt::print("  {}\n", band);
    const std::size_t width = band.empty() ? 12 : 10;
    fmt::print("{}{:{}} {}\n", before, "minimum", width, Number(statistics.minimum));
    fmt::print("{}{:{}} {}\n", before, "mean", width, Number(statistics.mean));
    fmt::print("{}{:{}} {}\n", before, "maximum", width, Number(statistics.maximum));
    fmt::print("{}{:{}} {}\n", before, "deviation", width, Number(statistics.deviation));
}

void PrintGridFacts(const Grid& grid) {
    fmt::print("  {:12} {} x {}\n", "cell size", grid.place.cell_width, grid.place.cell_height);
    if (grid.place.HasPosition())
        fmt::print("  {:12} {} {} (centre of the upper left cell)\n", "position", grid.place.x,
                   grid.place.y);
    const auto without =
        std::count(grid.valid.begin(), grid.valid.end(), static_cast<std::uint8_t>(0));
    fmt::print("  {:12} {} cells\n", "no data", without);
}

bool ShowStatistics(const std::string& name, int type, int step) {
    ProgressLine progress;
    progress.Say("measuring " + name);
    const std::optional<Bands> bands = ReadBands(name, type);
    if (!bands) return false;
    std::vector<Statistics> results;
    for (const Grid& grid : bands->grids)
        results.push_back(StatisticsOf(grid, step));
    progress.Wipe();
    if (results.front().count == 0) {
        ReportFailure(name, "none of its cells holds data");
        return false;
    }
    const Grid& first = bands->grids.front();
    fmt::print("{}\n  {:12} {} x {}\n  {:12} {}\n", name, "size", first.columns, first.rows,
               "samples", bands->kind);
    if (bands->is_grid) PrintGridFacts(first);
    fmt::print("  {:12} {}\n", "measured", results.front().count);
    for (std::size_t i = 0; i < results.size(); ++i)
        PrintStatistics(bands->names[i], results[i]);
    return true;
}

struct StretchOptions {
    std::string input;
    int input_type = -1;
    OutputOptions output;
    double k = 2.0;
};

/// The bands' bytes as pixels: one band as they are, three as blue, green, red.
std::vector<std::uint8_t> Interleave(const std::vector<Stretched>& bands) {
    const std::size_t channels = bands.size();
    std::vector<std::uint8_t> pixels(bands.front().bytes.size() * channels);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        std::uint8_t* to = pixels.data() + (channels - 1 - channel);
        for (const std::uint8_t byte : bands[channel].bytes) {
            *to = byte;
            to += channels;
        }
    }
    return pixels;
}

bool RunStretch(const StretchOptions& options) {
    ProgressLine progress;
    progress.Say("stretching " + options.input);
    if (ReplacesInput(options.input, options.output.name)) return false;
    const std::optional<Bands> bands = ReadBands(options.input, options.input_type);
    if (!bands) return false;
    const Grid& first = bands->grids.front();
    if (StatisticsOf(first).count == 0) {
        ReportFailure(options.input, "none of its cells holds data");
        return false;
    }
    std::vector<Stretched> stretched;
    for (const Grid& grid : bands->grids)
        stretched.push_back(Stretch(grid, options.k));
    const std::vector<std::uint8_t> pixels = Interleave(stretched);
    const int bits = static_cast<int>(stretched.size()) * 8;
    if (!SavePicture({first.rows, first.columns, bits, pixels.data(), {}}, options.output,
                     first.place))
        return false;
    progress.Wipe();
    for (std::size_t i = 0; i < stretched.size(); ++i) {
        const std::string& name = bands->names[i];
        fmt::print("{}{}low {} high {}\n", name, name.empty() ? "" : " ", Number(stretched[i].low),
                   Number(stretched[i].high));
    }
    return true;
}

}  // namespace

void AddStatsCommand(CLI::App& app, Job& job) {
    struct Options {
        std::vector<std::string> names;
        int type = -1;
        int step = 1;
    };
    const auto options = std::make_shared<Options>();
    CLI::App* command =
        app.add_subcommand("stats", "minimum, mean, maximum and deviation of grids and images");
    AddInputTypeOption(*command, options->type);
    command->add_option("file", options->names, "grids (bil, bip, bsq, flt, asc, grd) or images")
        ->required();
    command->add_option("--step", options->step, "measures every n-th row and column only (1)")
        ->check(CLI::Range(1, std::numeric_limits<int>::max()));
    command->footer(kStatsNotes);
    command->callback([options, &job] {
        job = [options] {
            bool all_well = true;
            for (const std::string& name : options->names)
                all_well = ShowStatistics(name, options->type, options->step) && all_well;
            return all_well;
        };
    });
}

void AddStretchCommand(CLI::App& app, Job& job) {
    const auto options = std::make_shared<StretchOptions>();
    CLI::App* command =
        app.add_subcommand("stretch", "turn a grid or image into 8 bits by a linear stretch");
    AddInputTypeOption(*command, options->input_type);
    command->add_option("input", options->input, "grid (bil, bip, bsq, flt, asc, grd) or image")
        ->required();
    command->add_option("output", options->output.name, "image")->required();
    AddTypeOption(*command, "--type", options->output.type,
                  "the output's format, not by its extension");
    AddNumberOption(*command, "--k", options->k, 0.0, 1e6,
                    "deviations on either side of the mean; 0: minimum to maximum");
    command->footer(kStretchNotes);
    command->callback([options, &job] { job = [options] { return RunStretch(*options); }; });
}

}  // namespace rastrel_cli
