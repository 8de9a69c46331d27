#pragma once

#include <optional>
#include <string>
#include <vector>

#include "image.h"

namespace rastrel_cli {

// Each command works through all its inputs, says on standard error which failed and why, and
// returns whether all went well.

[[nodiscard]] bool ShowInfo(const std::vector<std::string>& names, int type);

[[nodiscard]] bool ShowPalette(const std::vector<std::string>& names, int type);

struct ConvertOptions {
    std::vector<std::string> inputs;
    std::string output;  ///< a file, or an existing folder
    int input_type = -1;
    int output_type = -1;
    std::optional<int> depth;
    std::optional<int> quality;
    std::optional<Rectangle> crop;
};

[[nodiscard]] bool Convert(const ConvertOptions& options);

/// Reports a failure on standard error.
void ReportFailure(const std::string& name, const std::string& reason);

}  // namespace rastrel_cli
