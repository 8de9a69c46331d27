#pragma once

#include <string>

#include "image.h"

namespace rastrel_cli {

/// Saves an image (type -1: by the name's extension), with its colours reduced where the format
/// takes no more than 256. The reason when it fails; empty when all is well.
[[nodiscard]] std::string Save(Image& image, const std::string& name, int type);

}  // namespace rastrel_cli
