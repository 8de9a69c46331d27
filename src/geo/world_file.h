#pragma once

#include <string>

#include "core/byte_source.h"
#include "geo/georeference.h"

namespace rastrel {

// World files: six lines with a number each. Line 1 is the pixel size, 5 and 6 are x and y; lines 2
// to 4, rotation and the y pixel size, are written and never read.

/// Always a success: a line that is missing or no number leaves its value out.
[[nodiscard]] FoundGeoreference ReadWorldFile(ByteSource& source);

/// The whole file.
[[nodiscard]] std::string WorldFileText(const Georeference& georeference);

}  // namespace rastrel
