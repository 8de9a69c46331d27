#pragma once

#include <optional>
#include <string>

#include "georeference.h"
#include "image.h"

namespace rastrel_cli {

/// Saves an image (type -1: by the name's extension), with its colours reduced where the format
/// takes no more than 256. The reason when it fails; empty when all is well.
[[nodiscard]] std::string Save(Image& image, const std::string& name, int type);

/// How one output is saved.
struct SavingOptions {
    std::string name;
    int type = -1;                   ///< by the name's extension
    std::optional<int> quality;      ///< of JPEG and JPEG 2000
    std::optional<int> compression;  ///< of TIFF, a tag value
};

/// The name that an image of a type is really saved under: raw pixel files always take the
/// extension of their layout.
[[nodiscard]] std::string SavedName(const std::string& name, int type);

/// Saves an image and, where it has one, its georeference beside it. The reason when it fails;
/// empty when all is well.
[[nodiscard]] std::string SaveOnMap(Image& image, const SavingOptions& options,
                                    const std::optional<Georeference>& georeference);

}  // namespace rastrel_cli
