#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>

#include "commands.h"
#include "georeference.h"
#include "options.h"
#include "progress_line.h"
#include "reasons.h"
#include "saving.h"

namespace rastrel_cli {

namespace {

struct QuantizeOptions {
    std::string input;
    std::string output;
    std::string palette;  ///< an image; empty: colours are chosen
    int input_type = -1;
    int output_type = -1;
};

/// Reduces to the colours of another image. The reason when it fails.
std::string ReduceToPaletteOf(const Image& image, const std::string& name) {
    const Image other;
    if (Rastrel_Read(other.Handle(), name.c_str(), -1) != 1) return WhyNotRead(name, -1);
    std::vector<std::uint8_t> red;
    std::vector<std::uint8_t> green;
    std::vector<std::uint8_t> blue;
    for (const PaletteEntry& entry : other.Palette()) {
        red.push_back(entry.red);
        green.push_back(entry.green);
        blue.push_back(entry.blue);
    }
    if (red.empty()) return "it has no palette";
    if (Rastrel_Conv24To8_Precalcolata(image.Handle(), static_cast<int>(red.size()), red.data(),
                                       green.data(), blue.data()) != 1)
        return "memory does not suffice to reduce colours to its palette";
    return "";
}

bool Quantize(const QuantizeOptions& options) {
    ProgressLine progress;
    const auto fail = [&progress](const std::string& name, const std::string& reason) {
        progress.Wipe();
        ReportFailure(name, reason);
        return false;
    };
    progress.Say("reading " + options.input);
    Image image;
    if (Rastrel_Read(image.Handle(), options.input.c_str(), options.input_type) != 1)
        return fail(options.input, WhyNotRead(options.input, options.input_type));
    progress.Say("reducing the colours of " + options.input);
    // Pixels that have a palette already are taken for their colours.
    if (!image.ConvertDepth(24)) return fail(options.input, "its pixels are run-length coded");
    if (!options.palette.empty()) {
        const std::string reason = ReduceToPaletteOf(image, options.palette);
        if (!reason.empty()) return fail(options.palette, reason);
    }
    if (!image.ConvertDepth(8))
        return fail(options.input, "memory does not suffice to reduce its colours");
    const auto georeference = ReadGeoreference(options.input);
    progress.Say("saving " + options.output);
    const std::string reason =
        SaveOnMap(image, {options.output, options.output_type, {}, {}}, georeference);
    return reason.empty() || fail(options.output, reason);
}

}  // namespace

void AddQuantizeCommand(CLI::App& app, Job& job) {
    const auto options = std::make_shared<QuantizeOptions>();
    CLI::App* command =
        app.add_subcommand("quantize", "reduce an image to at most 255 colours of its own");
    AddInputTypeOption(*command, options->input_type);
    command->add_option("input", options->input, "an image")->required();
    command->add_option("output", options->output, "what becomes of it")->required();
    AddTypeOption(*command, "--type", options->output_type,
                  "the output's format, not by its extension");
    command->add_option("--palette", options->palette,
                        "an image, to whose palette colours are reduced");
    command->callback([options, &job] { job = [options] { return Quantize(*options); }; });
}

}  // namespace rastrel_cli
