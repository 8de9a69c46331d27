#pragma once

#include <optional>
#include <string>

#include "geo/georeference.h"

namespace rastrel {

/// The georeference in a TIFF file's own tags; none where there is none.
[[nodiscard]] std::optional<Georeference> ReadTiffGeoreference(const std::string& image_name);

}  // namespace rastrel
