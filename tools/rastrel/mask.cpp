#include <CLI/CLI.hpp>
#include <memory>

#include "commands.h"
#include "image_work.h"
#include "options.h"

namespace rastrel_cli {

namespace {

constexpr const char* kNotes = R"(Painted is where the mask's pixel has a channel that is 0: where
it is black and not where it is white. With --invert it is where a channel is not 0: where the mask
is white and not where it is black. Places of a pure colour, such as red, are painted either way. An
image with a palette keeps it when it has the paint's colour, and becomes 24 bits deep otherwise.)";

struct MaskOptions {
    std::string input;
    std::string mask;
    SavingOptions saving;
    int input_type = -1;
    bool inverts = false;
    std::optional<PaletteEntry> color = PaletteEntry{};
};

bool Mask(const MaskOptions& options) {
    ImageWork work;
    Image image;
    Image mask;
    if (!work.Read(image, options.input, options.input_type) ||
        !work.Read(mask, options.mask, -1) ||
        !work.AreOfOneSize(mask, options.mask, image, options.input))
        return false;
    work.Say("painting " + options.input);
    const PaletteEntry color = *options.color;
    if (!Contains(image.Palette(), color) && !work.ExpandColors(image, options.input)) return false;
    if (Rastrel_ApplyMask(image.Handle(), mask.Handle(), options.inverts ? 1 : 0, color.red,
                          color.green, color.blue) != 1)
        return work.Fail(options.mask, "memory does not suffice to paint through it");
    return work.Save(image, options.saving, ReadGeoreference(options.input));
}

}  // namespace

void AddMaskCommand(CLI::App& app, Job& job) {
    const auto options = std::make_shared<MaskOptions>();
    CLI::App* command =
        app.add_subcommand("mask", "paint an image where another of its size is black");
    AddInputTypeOption(*command, options->input_type);
    command->add_option("input", options->input, "an image")->required();
    command->add_option("mask", options->mask, "the image that tells where")->required();
    command->add_option("output", options->saving.name, "what becomes of it")->required();
    AddColorOption(*command, "--color", options->color, "of the paint (0,0,0)");
    command->add_flag("--invert", options->inverts, "paint where the mask is white");
    AddSavingOptions(*command, options->saving);
    command->footer(kNotes);
    command->callback([options, &job] {
        CheckSavingOptions(options->saving);
        job = [options] { return Mask(*options); };
    });
}

}  // namespace rastrel_cli
