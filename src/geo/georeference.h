#pragma once

#include <optional>
#include <string>

namespace rastrel {

/// Where an image lies on the map: the upper-left corner of its upper-left pixel, and the side of
/// its square pixels, in map units. Rotation is not told.
struct Georeference {
    double x = 0.0;
    double y = 0.0;
    double pixel_size = 1.0;
};

/// What a search for a georeference came to. Values that are there are for the caller even when the
/// result is no success; those that are not leave what the caller had.
struct FoundGeoreference {
    bool success = false;
    std::optional<double> x;
    std::optional<double> y;
    std::optional<double> pixel_size;

    /// All three values, and success.
    [[nodiscard]] static FoundGeoreference Of(const Georeference& georeference) {
        return {true, georeference.x, georeference.y, georeference.pixel_size};
    }
    /// What callers get where nothing was found: a grid of single pixels from the origin.
    [[nodiscard]] static FoundGeoreference None() { return {false, 0.0, 0.0, 1.0}; }
};

/// Looks for an image's georeference: in its companion file, else in the image file itself.
[[nodiscard]] FoundGeoreference ReadGeoreference(const std::string& image_name);

/// Writes an image's georeference to where it is looked for. False, with every file as it was, for
/// values that are not finite, or that the place cannot hold, and for files that cannot be written.
[[nodiscard]] bool WriteGeoreference(const std::string& image_name,
                                     const Georeference& georeference);

}  // namespace rastrel
