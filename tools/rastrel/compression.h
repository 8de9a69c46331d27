#pragma once

#include <optional>
#include <string>

#include "image.h"

namespace rastrel_cli {

/// The TIFF tag value of a compression by its name on the command line, in lower case.
[[nodiscard]] std::optional<int> CompressionFromText(const std::string& text);

/// Why an image cannot be saved with a compression; empty when it can.
[[nodiscard]] std::string WhyNotCompressed(const Image& image, int compression);

/// 8 bits a pixel with the palette whose entry i is the grey i.
[[nodiscard]] bool IsGrey(const Image& image);

}  // namespace rastrel_cli
