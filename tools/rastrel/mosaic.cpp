#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

#include "commands.h"
#include "image_work.h"
#include "options.h"
#include "reasons.h"

namespace rastrel_cli {

namespace {

constexpr const char* kNotes =
    R"(Images are laid by their georeferences, each above those before it;
of images whose pixels are larger or smaller than the output's the pixel under each centre counts.
Without --extent the output covers all images, without --cell-size its pixels are as small as the
smallest. When all have the same palette, and it has the background's colour, the output has that
palette, too, and 24 bits otherwise.)";

struct MosaicOptions {
    std::vector<std::string> inputs;  ///< the last one lies above
    SavingOptions saving;
    std::optional<MapBox> extent;
    std::optional<double> cell_size;
    std::optional<MapBox> clip;
    std::optional<PaletteEntry> key;
    std::optional<PaletteEntry> background = PaletteEntry{255, 255, 255};
};

/// What is known of an image before its pixels are read.
struct Sheet {
    std::string name;
    Georeference place;
    int width = 0;
    int height = 0;
    std::vector<PaletteEntry> palette;

    [[nodiscard]] MapBox Box() const {
        return {place.x, place.y - height * place.pixel_size, place.x + width * place.pixel_size,
                place.y};
    }
};

std::optional<Sheet> Survey(ImageWork& work, const std::string& name) {
    work.Say("looking at " + name);
    Sheet sheet;
    sheet.name = name;
    const Image corner;
    const Rectangle one_pixel = {0, 0, 1, 1};
    if (Rastrel_ReadInfo(name.c_str(), &sheet.width, &sheet.height, nullptr) != 1 ||
        !ReadPart(corner, name, -1, one_pixel)) {
        work.Fail(name, WhyPartNotRead(name, -1, one_pixel));
        return std::nullopt;
    }
    sheet.palette = corner.Palette();
    const auto place = ReadGeoreference(name);
    if (!place) {
        work.Fail(name, "it has no georeference: rastrel georef --set gives it one");
        return std::nullopt;
    }
    if (place->pixel_size <= 0) {
        work.Fail(name, fmt::format("its pixel size of {} is none", place->pixel_size));
        return std::nullopt;
    }
    sheet.place = *place;
    return sheet;
}

/// All sheets, or none when one of them is not fit.
std::vector<Sheet> SurveyAll(ImageWork& work, const std::vector<std::string>& names) {
    std::vector<Sheet> sheets;
    bool all_well = true;
    for (const std::string& name : names) {
        auto sheet = Survey(work, name);
        all_well = all_well && sheet;
        if (sheet) sheets.push_back(std::move(*sheet));
    }
    return all_well ? sheets : std::vector<Sheet>();
}

/// The output's place and size.
struct Frame {
    Georeference place;
    int width = 0;
    int height = 0;

    [[nodiscard]] MapBox Box() const {
        return {place.x, place.y - height * place.pixel_size, place.x + width * place.pixel_size,
                place.y};
    }
};

MapBox Around(const std::vector<Sheet>& sheets) {
    MapBox box = sheets.front().Box();
    for (const Sheet& sheet : sheets) {
        const MapBox other = sheet.Box();
        box = {std::min(box.x_min, other.x_min), std::min(box.y_min, other.y_min),
               std::max(box.x_max, other.x_max), std::max(box.y_max, other.y_max)};
    }
    return box;
}

std::optional<Frame> MakeFrame(const MosaicOptions& options, const std::vector<Sheet>& sheets) {
    const auto smallest = std::min_element(
        sheets.begin(), sheets.end(),
        [](const Sheet& a, const Sheet& b) { return a.place.pixel_size < b.place.pixel_size; });
    const double cell = options.cell_size.value_or(smallest->place.pixel_size);
    const MapBox box = options.extent.value_or(Around(sheets));
    // A given extent takes the nearest whole number of pixels; nothing of the images is lost at the
    // edges of one that follows from them, but for what rounding adds.
    constexpr double kRounding = 1e-6;
    const auto count = [&](double length) {
        const double cells = length / cell;
        return SideOf(options.extent ? std::floor(cells + 0.5) : std::ceil(cells - kRounding));
    };
    const auto width = count(box.Width());
    const auto height = count(box.Height());
    if (!width || !height) return std::nullopt;
    return Frame{{box.x_min, box.y_max, cell}, *width, *height};
}

/// The palette of all, if it has the background's colour; else none.
std::vector<PaletteEntry> CommonPalette(const std::vector<Sheet>& sheets, PaletteEntry background) {
    const auto& palette = sheets.front().palette;
    const bool is_common = std::all_of(
        sheets.begin(), sheets.end(), [&](const Sheet& sheet) { return sheet.palette == palette; });
    return is_common && Contains(palette, background) ? palette : std::vector<PaletteEntry>();
}

[[nodiscard]] bool Lay(ImageWork& work, const Image& mosaic, const Frame& frame, const Sheet& sheet,
                       const MosaicOptions& options) {
    if (!frame.Box().Overlaps(sheet.Box())) {
        work.Remark(sheet.name, "it lies outside the mosaic");
        return true;
    }
    Image image;
    if (!work.Read(image, sheet.name, -1)) return false;
    work.Say("laying " + sheet.name);
    const PaletteEntry key = options.key.value_or(PaletteEntry{});
    std::array<double, 4> clip{};
    if (options.clip)
        clip = {options.clip->x_min, options.clip->y_min, options.clip->x_max, options.clip->y_max};
    return Rastrel_MosaicaWithClipping(mosaic.Handle(), image.Handle(), frame.place.x,
                                       frame.place.y, frame.place.pixel_size, sheet.place.x,
                                       sheet.place.y, sheet.place.pixel_size, options.key ? 1 : 0,
                                       key.red, key.green, key.blue,
                                       options.clip ? clip.data() : nullptr) == 1 ||
           work.Fail(sheet.name, "memory does not suffice to lay it");
}

bool Mosaic(const MosaicOptions& options) {
    ImageWork work;
    const std::vector<Sheet> sheets = SurveyAll(work, options.inputs);
    if (sheets.empty()) return false;
    const auto frame = MakeFrame(options, sheets);
    if (!frame)
        return work.Fail(options.saving.name, "no image can be as large as it would become");
    const auto palette = CommonPalette(sheets, *options.background);
    const std::string reason = WhyNoImageOf(frame->width, frame->height, palette.empty() ? 24 : 8);
    if (!reason.empty()) return work.Fail(options.saving.name, reason);
    Image mosaic;
    if (!mosaic.MakeBlank(frame->width, frame->height, *options.background, palette))
        return work.Fail(
            options.saving.name,
            fmt::format("memory does not suffice for {} x {} pixels", frame->width, frame->height));
    for (const Sheet& sheet : sheets) {
        if (!Lay(work, mosaic, *frame, sheet, options)) return false;
    }
    return work.Save(mosaic, options.saving, frame->place);
}

}  // namespace

void AddMosaicCommand(CLI::App& app, Job& job) {
    const auto options = std::make_shared<MosaicOptions>();
    CLI::App* command =
        app.add_subcommand("mosaic", "lay georeferenced images into one by their places");
    command->add_option("file", options->inputs, "inputs, the last one above, then the output")
        ->required()
        ->expected(2, -1);
    AddBoxOption(*command, "--extent", options->extent, "of the output");
    AddCellSizeOption(*command, options->cell_size, "side of the output's pixels in map units");
    AddBoxOption(*command, "--clip", options->clip, "where images are laid");
    AddColorOption(*command, "--key", options->key, "colour of the images that is not laid");
    AddColorOption(*command, "--background", options->background,
                   "where no image lies (255,255,255)");
    AddSavingOptions(*command, options->saving);
    command->footer(kNotes);
    command->callback([options, &job] {
        options->saving.name = options->inputs.back();
        options->inputs.pop_back();
        CheckSavingOptions(options->saving);
        job = [options] { return Mosaic(*options); };
    });
}

}  // namespace rastrel_cli
