#include "geo/tiff_georeference.h"

namespace rastrel {

std::optional<Georeference> ReadTiffGeoreference(const std::string& /*image_name*/) {
    // TIFF files are not read yet.
    return std::nullopt;
}

}  // namespace rastrel
