#pragma once

#include <optional>
#include <string>

#include "image.h"

namespace rastrel_cli {

/// Where an image lies on the map: the upper-left corner of its upper-left pixel and the side of
/// its pixels, in map units.
struct Georeference {
    double x = 0;
    double y = 0;
    double pixel_size = 1;
};

/// None when the library finds none, or finds only some of the values.
[[nodiscard]] std::optional<Georeference> ReadGeoreference(const std::string& image_name);

/// The georeference of a part of an image.
[[nodiscard]] Georeference OfPart(const Georeference& whole, const Rectangle& part);

/// Where an image keeps its georeference.
struct Companion {
    std::string name;        ///< as it is written on this system
    bool is_inside = false;  ///< in the image itself, by its format
    bool is_image = false;   ///< the image's own name, which has no extension to tell them apart
};

[[nodiscard]] Companion CompanionOf(const std::string& image_name);

/// Writes an image's georeference. What went wrong, or nothing.
[[nodiscard]] std::optional<std::string> WriteGeoreference(const std::string& image_name,
                                                           const Georeference& georeference);

/// Prints corner and pixel size and, for an image of known size, the extent.
void PrintGeoreference(const Georeference& georeference, int width = 0, int height = 0);

}  // namespace rastrel_cli
