#pragma once

#include <string>

namespace rastrel {

/// Converts a TIFF file, whatever its name, into a GIF file. Colours are reduced to a palette of at
/// most 256, chosen by median cut. False when the source cannot be read or, with a word to the
/// user, the GIF file cannot be written.
[[nodiscard]] bool TiffToGif(const std::string& tiff_name, const std::string& gif_name);

}  // namespace rastrel
