#pragma once

#include <string>

namespace rastrel_cli {

// The library says that something failed; these find out, as well as can be told from outside, why.

/// Why a file could not be read as an image of a type (-1: by its extension).
[[nodiscard]] std::string WhyNotRead(const std::string& name, int type);
/// Why an image of some depth could not be saved in a file.
[[nodiscard]] std::string WhyNotSaved(const std::string& name, int type, int bits);

}  // namespace rastrel_cli
