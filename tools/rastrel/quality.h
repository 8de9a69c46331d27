#pragma once

#include <optional>
#include <string>

#include "image.h"

namespace rastrel_cli {

/// The quality of JPEG files when none is asked for, on libjpeg's scale.
constexpr int kUsualJpegQuality = 75;

/// Sets the quality code that an image will be saved with under a name and type (-1: by the name's
/// extension): the one given; without one, the usual for JPEG files. Grey images become grey files.
void SetQualityFor(const Image& image, const std::string& name, int type,
                   std::optional<int> quality = std::nullopt);

}  // namespace rastrel_cli
