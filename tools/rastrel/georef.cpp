#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "georeference.h"
#include "reasons.h"
#include "text.h"

namespace rastrel_cli {

namespace {

struct GeorefOptions {
    std::vector<std::string> names;
    std::optional<Georeference> wanted;
};

/// "X,Y,SIZE": three numbers, the last above 0.
std::optional<Georeference> ParseGeoreference(const std::string& text) {
    const auto numbers = ParseNumbers(text);
    if (numbers.size() != 3 || numbers[2] <= 0) return std::nullopt;
    return Georeference{numbers[0], numbers[1], numbers[2]};
}

bool ShowOrSet(const std::string& name, const std::optional<Georeference>& wanted) {
    const std::string missing = WhyNotOpened(name);
    if (!missing.empty()) {
        ReportFailure(name, missing);
        return false;
    }
    if (wanted) {
        if (const auto failure = WriteGeoreference(name, *wanted)) {
            ReportFailure(name, *failure);
            return false;
        }
    }
    const Companion companion = CompanionOf(name);
    fmt::print("{}\n", name);
    fmt::print("  companion    {}\n", companion.is_inside ? "the image itself" : companion.name);
    // What was set is shown as it was stored, which may be in whole units.
    const auto georeference = ReadGeoreference(name);
    if (!georeference) {
        ReportFailure(name, wanted ? "images of this kind are not asked for what was written"
                                   : "it has no georeference");
        return false;
    }
    PrintGeoreference(*georeference);
    return true;
}

}  // namespace

void AddGeorefCommand(CLI::App& app, Job& job) {
    const auto options = std::make_shared<GeorefOptions>();
    CLI::App* command = app.add_subcommand("georef", "show or set where images lie on the map");
    command->add_option("file", options->names, "images")->required();
    command->add_option_function<std::string>(
        "--set",
        [options](const std::string& text) {
            options->wanted = ParseGeoreference(text);
            if (!options->wanted)
                throw CLI::ValidationError("--set", "\"" + text + "\" is no x,y,size");
        },
        "write it: x,y of the upper left corner, and the pixel size, in map units");
    command->callback([options, &job] {
        job = [options] {
            bool all_well = true;
            for (const std::string& name : options->names)
                all_well = ShowOrSet(name, options->wanted) && all_well;
            return all_well;
        };
    });
}

}  // namespace rastrel_cli
