#include "commands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>

#include "options.h"

namespace rastrel_cli {

void AddCommandOnImages(CLI::App& app, Job& job, const std::string& name,
                        const std::string& description,
                        std::function<bool(const std::string& name, int type)> do_one) {
    struct Options {
        std::vector<std::string> names;
        int type = -1;
    };
    const auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand(name, description);
    AddInputTypeOption(*command, options->type);
    command->add_option("file", options->names, "images")->required();
    command->callback([options, &job, do_one = std::move(do_one)] {
        job = [options, do_one] {
            bool all_well = true;
            for (const std::string& each : options->names)
                all_well = do_one(each, options->type) && all_well;
            return all_well;
        };
    });
}

void ReportFailure(const std::string& name, const std::string& reason) {
    std::fflush(stdout);
    fmt::print(stderr, "rastrel: {}: {}\n", name, reason);
}

}  // namespace rastrel_cli
