#pragma once

#include <optional>
#include <string>

#include "image.h"

namespace rastrel_cli {

// The library says that something failed; these find out, as well as can be told from outside, why.

/// Why a file cannot be opened for reading; empty when it can.
[[nodiscard]] std::string WhyNotOpened(const std::string& name);
/// Why no file can have this name; empty when there is no telling.
[[nodiscard]] std::string WhyNoFileThere(const std::string& name);
/// Why a file cannot be made or replaced; empty when there is no telling.
[[nodiscard]] std::string WhyNotWritten(const std::string& name);
/// Why a file could not be read as an image of a type (-1: by its extension).
[[nodiscard]] std::string WhyNotRead(const std::string& name, int type);
/// Why a rectangle of an image, or the whole, could not be read.
[[nodiscard]] std::string WhyPartNotRead(const std::string& name, int type,
                                         const std::optional<Rectangle>& part);
/// Why an image of some depth could not be saved in a file.
[[nodiscard]] std::string WhyNotSaved(const std::string& name, int type, int bits);

}  // namespace rastrel_cli
