#include <CLI/CLI.hpp>
#include <array>
#include <memory>

#include "commands.h"
#include "compression.h"
#include "image_work.h"
#include "options.h"

namespace rastrel_cli {

namespace {

constexpr std::array<Choice, 8> kModes = {{{"normal", 0},
                                           {"multiply", 1},
                                           {"screen", 2},
                                           {"overlay", 3},
                                           {"darken", 4},
                                           {"lighten", 5},
                                           {"difference", 6},
                                           {"add", 7}}};

constexpr const char* kNotes = R"(The result is first x (1 - weight) + mixed x weight, channel by
channel, where mixed is the second image itself or, by mode, what multiply, screen, overlay, darken,
lighten, difference or add make of both. Two grey images give a grey one, others one in true colour.
It lies on the map where the first image does or, if that does not tell, the second.)";

struct BlendOptions {
    std::string first;
    std::string second;
    SavingOptions saving;
    int input_type = -1;
    double weight = 0.5;
    int mode = 0;
    std::optional<PaletteEntry> key;
};

bool Blend(const BlendOptions& options) {
    ImageWork work;
    Image first;
    Image second;
    if (!work.Read(first, options.first, options.input_type) ||
        !work.Read(second, options.second, options.input_type) ||
        !work.AreOfOneSize(second, options.second, first, options.first))
        return false;
    work.Say("blending " + options.first + " and " + options.second);
    // A mixture of colours is seldom one of the palette's; of greys it always is.
    if (!(IsGrey(first) && IsGrey(second)) && !work.ExpandColors(first, options.first))
        return false;
    const PaletteEntry key = options.key.value_or(PaletteEntry{});
    if (Rastrel_FusionEx(first.Handle(), second.Handle(), options.key ? 1 : 0, key.red, key.green,
                         key.blue, options.weight, options.mode) != 1)
        return work.Fail(options.second, "memory does not suffice to blend it");
    auto georeference = ReadGeoreference(options.first);
    if (!georeference) georeference = ReadGeoreference(options.second);
    return work.Save(first, options.saving, georeference);
}

}  // namespace

void AddBlendCommand(CLI::App& app, Job& job) {
    const auto options = std::make_shared<BlendOptions>();
    CLI::App* command = app.add_subcommand("blend", "blend an image into another of its size");
    AddInputTypeOption(*command, options->input_type);
    command->add_option("first", options->first, "the image below")->required();
    command->add_option("second", options->second, "the image above")->required();
    command->add_option("output", options->saving.name, "what becomes of them")->required();
    AddNumberOption(*command, "--weight", options->weight, 0.0, 1.0, "of what lies above");
    AddChoiceOption(*command, "--mode", options->mode, kModes, "how they mix");
    AddColorOption(*command, "--key", options->key,
                   "colour of the second image where the first stays as it is");
    AddSavingOptions(*command, options->saving);
    command->footer(kNotes);
    command->callback([options, &job] {
        CheckSavingOptions(options->saving);
        job = [options] { return Blend(*options); };
    });
}

}  // namespace rastrel_cli
