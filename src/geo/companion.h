#pragma once

#include <string>
#include <string_view>

namespace rastrel {

/// Where an image keeps its georeference.
enum class GeoreferencePlace {
    kWorldFile,        ///< a companion file of six lines
    kRawHeader,        ///< keywords in the header beside raw pixels
    kEcwFile,          ///< the image file, for its own library to read
    kShortAimaHeader,  ///< the image file, in a header of 24 bytes
    kLongAimaHeader,   ///< the image file, in a header of 72 bytes
};

/// An image's companion file.
struct Companion {
    /// Folder, "\" and the image's name without extension: also without a folder, so that the
    /// companion of a bare name lies in the root of the current drive.
    std::string base;
    /// What makes the base the companion's name; empty for images of unknown extension.
    std::string_view extension;
    /// What stands for the companion's name of images that keep their georeference themselves.
    std::string_view marker;
    GeoreferencePlace read_from = GeoreferencePlace::kWorldFile;
    GeoreferencePlace written_to = GeoreferencePlace::kWorldFile;
    /// The extension of the world file written; MrSID's and ECW's have none.
    std::string_view written_extension;

    [[nodiscard]] std::string Name() const {
        return marker.empty() ? base + std::string(extension) : std::string(marker);
    }
    [[nodiscard]] std::string WrittenName() const { return base + std::string(written_extension); }
};

/// The companion of an image, by the image's extension in any case.
[[nodiscard]] Companion CompanionOf(std::string_view image_name);

}  // namespace rastrel
