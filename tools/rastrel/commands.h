#pragma once

#include <CLI/ConfigFwd.hpp>
#include <functional>
#include <string>

namespace rastrel_cli {

/// What a command line asks for. It works through all its inputs, says on standard error which
/// failed and why, and returns whether all went well.
using Job = std::function<bool()>;

// Each describes a command and its options to the parser. When the command is the one on the
// command line, the job becomes its work; contradictory options throw CLI::ParseError.

void AddAspectCommand(CLI::App& app, Job& job);
void AddBalanceCommand(CLI::App& app, Job& job);
void AddBlendCommand(CLI::App& app, Job& job);
void AddConvertCommand(CLI::App& app, Job& job);
void AddGeorefCommand(CLI::App& app, Job& job);
void AddHillshadeCommand(CLI::App& app, Job& job);
void AddInfoCommand(CLI::App& app, Job& job);
void AddMaskCommand(CLI::App& app, Job& job);
void AddMosaicCommand(CLI::App& app, Job& job);
void AddPaletteCommand(CLI::App& app, Job& job);
void AddQuantizeCommand(CLI::App& app, Job& job);
void AddRectifyCommand(CLI::App& app, Job& job);
void AddReliefCommand(CLI::App& app, Job& job);
void AddResizeCommand(CLI::App& app, Job& job);
void AddSlopeCommand(CLI::App& app, Job& job);
void AddSmoothCommand(CLI::App& app, Job& job);
void AddStackCommand(CLI::App& app, Job& job);
void AddStatsCommand(CLI::App& app, Job& job);
void AddStretchCommand(CLI::App& app, Job& job);

/// A command that does one thing to each of several images, given by name and --from's type.
void AddCommandOnImages(CLI::App& app, Job& job, const std::string& name,
                        const std::string& description,
                        std::function<bool(const std::string& name, int type)> do_one);

/// Reports a failure on standard error.
void ReportFailure(const std::string& name, const std::string& reason);

}  // namespace rastrel_cli
