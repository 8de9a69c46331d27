#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <array>
#include <cmath>
#include <limits>
#include <memory>

#include "commands.h"
#include "image_work.h"
#include "options.h"

namespace rastrel_cli {

namespace {

constexpr std::array<Choice, 5> kMethods = {
    {{"auto", -1}, {"nearest", 0}, {"bilinear", 1}, {"bicubic", 2}, {"area", 3}}};

constexpr const char* kNotes = R"(Give the new size as --percent, as --width or --height, of which
the other follows in proportion, or as both. The method auto takes the nearest pixel for images with
a palette of colours, the mean of the area when a side shrinks, and bilinear else; all but nearest
make images with a palette of colours 24 bits deep. The georeference is carried over as far as its
one pixel size can tell of both sides.)";

struct ResizeOptions {
    std::string input;
    SavingOptions saving;
    int input_type = -1;
    std::optional<int> width;
    std::optional<int> height;
    std::optional<double> percent;
    int method = -1;
    std::optional<Rectangle> crop;
};

struct ImageSize {
    int width = 0;
    int height = 0;
};

/// What the options make of a size; nothing when that is beyond any image.
std::optional<ImageSize> NewSize(const ImageSize& old, const ResizeOptions& options) {
    const auto in_proportion = [](int side, double new_side, int old_side) {
        return SideOf(std::floor(side * new_side / old_side + 0.5));
    };
    constexpr int kWhole = 100;
    auto width = options.width;
    auto height = options.height;
    if (options.percent) {
        width = in_proportion(old.width, *options.percent, kWhole);
        height = in_proportion(old.height, *options.percent, kWhole);
    } else if (!width) {
        width = in_proportion(old.width, *height, old.height);
    } else if (!height) {
        height = in_proportion(old.height, *width, old.width);
    }
    if (!width || !height) return std::nullopt;
    return ImageSize{*width, *height};
}

/// The georeference after resizing, exact along the longer side. None where the other side's end
/// would lie more than half a pixel, which is what rounding to whole pixels makes, beside it.
std::optional<Georeference> Resized(const Georeference& georeference, const ImageSize& old,
                                    const ImageSize& size) {
    const bool is_wide = old.width >= old.height;
    const double scale = is_wide ? static_cast<double>(old.width) / size.width
                                 : static_cast<double>(old.height) / size.height;
    const double off = is_wide ? old.height / scale - size.height : old.width / scale - size.width;
    constexpr double kHalf = 0.5 + 1e-9;
    if (std::abs(off) > kHalf) return std::nullopt;
    return Georeference{georeference.x, georeference.y, georeference.pixel_size * scale};
}

/// Where the resized image lies; says when that cannot be told.
std::optional<Georeference> NewGeoreference(ImageWork& work, const ResizeOptions& options,
                                            const ImageSize& old, const ImageSize& size) {
    auto georeference = ReadGeoreference(options.input);
    if (!georeference) return std::nullopt;
    if (options.crop) georeference = OfPart(*georeference, *options.crop);
    const auto resized = Resized(*georeference, old, size);
    if (!resized)
        work.Remark(options.saving.name,
                    "no georeference, because it states one pixel size, and the pixels are no "
                    "longer square");
    return resized;
}

bool Resize(const ResizeOptions& options) {
    ImageWork work;
    Image image;
    if (!work.Read(image, options.input, options.input_type, options.crop)) return false;
    const ImageSize old = {Rastrel_GetWidth(image.Handle()), Rastrel_GetHeight(image.Handle())};
    const auto size = NewSize(old, options);
    if (!size) return work.Fail(options.input, "no image can be as large as it would become");
    work.Say(fmt::format("resizing {} to {} x {}", options.input, size->width, size->height));
    const int depth = Rastrel_GetDepth(image.Handle());
    if (Rastrel_Resize(image.Handle(), image.Handle(), size->width, size->height, options.method) !=
        1) {
        constexpr int kSmoothedDepth = 24;
        const std::string reason =
            WhyNoImageOf(size->width, size->height,
                         options.method == 0 ? depth : std::max(depth, kSmoothedDepth));
        return work.Fail(options.input, !reason.empty() ? reason : "memory does not suffice");
    }
    return work.Save(image, options.saving, NewGeoreference(work, options, old, *size));
}

}  // namespace

void AddResizeCommand(CLI::App& app, Job& job) {
    constexpr int kMost = std::numeric_limits<int>::max();
    constexpr double kLeastPercent = 1e-6;
    constexpr double kMostPercent = 1e9;
    const auto options = std::make_shared<ResizeOptions>();
    CLI::App* command = app.add_subcommand("resize", "scale an image to another size");
    AddInputTypeOption(*command, options->input_type);
    command->add_option("input", options->input, "an image")->required();
    command->add_option("output", options->saving.name, "what becomes of it")->required();
    command->add_option("--width", options->width, "of the output in pixels")
        ->check(CLI::Range(1, kMost));
    command->add_option("--height", options->height, "of the output in pixels")
        ->check(CLI::Range(1, kMost));
    AddNumberOption(*command, "--percent", options->percent, kLeastPercent, kMostPercent,
                    "of the input's size");
    AddChoiceOption(*command, "--method", options->method, kMethods, "how pixels are made");
    AddCropOption(*command, options->crop);
    AddSavingOptions(*command, options->saving);
    command->footer(kNotes);
    command->callback([options, &job] {
        if (options->percent && (options->width || options->height))
            throw CLI::ValidationError("--percent", "the size is told twice");
        if (!options->percent && !options->width && !options->height)
            throw CLI::ValidationError("resize", "needs --width, --height or --percent");
        CheckSavingOptions(options->saving);
        job = [options] { return Resize(*options); };
    });
}

}  // namespace rastrel_cli
