#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

#include "commands.h"
#include "control_points.h"
#include "image_work.h"
#include "options.h"
#include "text.h"

namespace rastrel_cli {

namespace {

constexpr std::array<Choice, 3> kMethods = {{{"nearest", 0}, {"bilinear", 1}, {"bicubic", 2}}};

constexpr const char* kNotes = R"(Control points stand in a text file, one a line: column row X Y.
The centre of the upper left pixel has column 0 and row 0, rows count downward, X and Y are map
units; "#" begins a comment. Three points or more, not on one line, give an affine transformation
with the least sum of squared distances on the map. How far each point lies from where the
transformation puts it is printed, and the root of the mean square of all. Without an output that is
all. Without --extent the output covers the whole image, without --cell-size its pixels are as large
as the image's are on the map.)";

struct RectifyOptions {
    std::string input;
    std::string points;
    SavingOptions saving;
    int input_type = -1;
    std::optional<MapBox> extent;
    std::optional<double> cell_size;
    std::optional<PaletteEntry> background = PaletteEntry{255, 255, 255};
    int method = 0;
};

struct MapPoint {
    double x = 0;
    double y = 0;
};

/// Where the solution puts a place of the picture.
MapPoint ToMap(double column, double row) {
    MapPoint point = {column, row};
    Rastrel_AffineApplicaDiretta(&point.x, &point.y);
    return point;
}

/// How far, in pixels, a point of the map lies from its place in the picture.
double PixelsOff(const ControlPoint& point) {
    double column = point.x;
    double row = point.y;
    Rastrel_AffineApplicaInversa(&column, &row);
    return std::hypot(column - point.column, row - point.row);
}

void PrintResiduals(const std::string& name, const std::vector<ControlPoint>& points) {
    fmt::print("{}\n  {:>5} {:>12} {:>12} {:>14} {:>14} {:>12} {:>12} {:>12} {:>12}\n", name,
               "point", "column", "row", "X", "Y", "dX", "dY", "distance", "pixels");
    double map_squares = 0;
    double pixel_squares = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const ControlPoint& point = points[i];
        const MapPoint there = ToMap(point.column, point.row);
        const double dx = there.x - point.x;
        const double dy = there.y - point.y;
        const double pixels = PixelsOff(point);
        fmt::print("  {:>5} {:>12} {:>12} {:>14} {:>14} {:>12.6g} {:>12.6g} {:>12.6g} {:>12.6g}\n",
                   i + 1, point.column, point.row, point.x, point.y, dx, dy, std::hypot(dx, dy),
                   pixels);
        map_squares += dx * dx + dy * dy;
        pixel_squares += pixels * pixels;
    }
    const auto count = static_cast<double>(points.size());
    fmt::print("  RMS error    {:.6g} map units, {:.6g} pixels\n", std::sqrt(map_squares / count),
               std::sqrt(pixel_squares / count));
}

/// Gives the points of a file to the library and prints how well they agree.
bool Solve(ImageWork& work, const std::string& name) {
    std::string why;
    const auto text = ReadWholeFile(name, why);
    const auto points = text ? ParseControlPoints(*text, why) : std::nullopt;
    if (!points) return work.Fail(name, why);
    constexpr std::size_t kLeast = 3;
    if (points->size() < kLeast)
        return work.Fail(name, fmt::format("it holds {} control points, and at least {} are needed",
                                           points->size(), kLeast));
    Rastrel_AffineReset();
    for (const ControlPoint& point : *points)
        Rastrel_AffineAddControlPoint(point.column, point.row, point.x, point.y);
    if (Rastrel_AffineCalculate() != 1)
        return work.Fail(name, "its control points lie on one line, in the image or on the map");
    work.Pause();
    PrintResiduals(name, *points);
    if (points->size() == kLeast)
        work.Remark(name, "three points always agree; a fourth would show errors");
    return true;
}

/// The box around an image on the map.
MapBox BoxOf(const Image& image) {
    // Pixels reach half a pixel beyond their centres.
    const double right = Rastrel_GetWidth(image.Handle()) - 0.5;
    const double bottom = Rastrel_GetHeight(image.Handle()) - 0.5;
    const MapPoint first = ToMap(-0.5, -0.5);
    MapBox box = {first.x, first.y, first.x, first.y};
    for (const MapPoint& corner : {ToMap(right, -0.5), ToMap(-0.5, bottom), ToMap(right, bottom)}) {
        box = {std::min(box.x_min, corner.x), std::min(box.y_min, corner.y),
               std::max(box.x_max, corner.x), std::max(box.y_max, corner.y)};
    }
    return box;
}

/// The side of a square as large as a pixel is on the map.
double UsualCellSize() {
    const MapPoint origin = ToMap(0, 0);
    const MapPoint right = ToMap(1, 0);
    const MapPoint below = ToMap(0, 1);
    return std::sqrt(std::abs((right.x - origin.x) * (below.y - origin.y) -
                              (right.y - origin.y) * (below.x - origin.x)));
}

/// Why no image over the box can be made; empty when there is no telling.
std::string WhyNotRectified(const MapBox& box, double cell_size, int bits) {
    const double columns = std::floor(box.Width() / cell_size + 0.5);
    const double rows = std::floor(box.Height() / cell_size + 0.5);
    if (columns < 1 || rows < 1) return "the output would be smaller than a pixel";
    const auto width = SideOf(columns);
    const auto height = SideOf(rows);
    if (!width || !height) return "no image can be as large as it would become";
    return WhyNoImageOf(*width, *height, bits);
}

/// Where the work's progress is shown.
struct Listener {
    ImageWork& work;
    const std::string& name;
};

int RASTREL_CALL ShowProgress(double fraction, const char* /*message*/, void* user) {
    const auto& listener = *static_cast<const Listener*>(user);
    try {
        constexpr double kPercent = 100;
        listener.work.Say(
            fmt::format("rectifying {}, {:.0f} %", listener.name, fraction * kPercent));
    } catch (const std::bad_alloc&) {
        // The work goes on without a word.
    }
    return 1;
}

bool Rectify(const RectifyOptions& options) {
    ImageWork work;
    Image image;
    if (!work.Read(image, options.input, options.input_type)) return false;
    if (!Solve(work, options.points)) return false;
    if (options.saving.name.empty()) return true;
    const PaletteEntry background = *options.background;
    if (!Contains(image.Palette(), background) && !work.ExpandColors(image, options.input))
        return false;
    const MapBox box = options.extent.value_or(BoxOf(image));
    const double cell_size = options.cell_size.value_or(UsualCellSize());
    std::string reason = WhyNotRectified(box, cell_size, Rastrel_GetDepth(image.Handle()));
    if (!reason.empty()) return work.Fail(options.input, reason);
    Listener listener = {work, options.input};
    const RastrelProgress progress = {&ShowProgress, &listener};
    if (Rastrel_AffineTransformExBackColor(image.Handle(), image.Handle(), box.x_min, box.y_min,
                                           box.x_max, box.y_max, cell_size, options.method, 0, 0,
                                           Rastrel_GetWidth(image.Handle()),
                                           Rastrel_GetHeight(image.Handle()), &progress,
                                           background.red, background.green, background.blue) != 1)
        return work.Fail(options.input, "memory does not suffice to rectify it");
    return work.Save(image, options.saving, Georeference{box.x_min, box.y_max, cell_size});
}

}  // namespace

void AddRectifyCommand(CLI::App& app, Job& job) {
    const auto options = std::make_shared<RectifyOptions>();
    CLI::App* command =
        app.add_subcommand("rectify", "turn an image north-up by control points on the map");
    AddInputTypeOption(*command, options->input_type);
    command->add_option("points", options->points, "text file of control points")->required();
    command->add_option("input", options->input, "an image")->required();
    command->add_option("output", options->saving.name, "what becomes of it");
    AddChoiceOption(*command, "--method", options->method, kMethods, "how pixels are made");
    AddBoxOption(*command, "--extent", options->extent, "of the output");
    AddCellSizeOption(*command, options->cell_size, "side of the output's pixels in map units");
    AddColorOption(*command, "--background", options->background,
                   "where the image does not reach (255,255,255)");
    AddSavingOptions(*command, options->saving);
    command->footer(kNotes);
    command->callback([options, &job] {
        CheckSavingOptions(options->saving);
        job = [options] { return Rectify(*options); };
    });
}

}  // namespace rastrel_cli
