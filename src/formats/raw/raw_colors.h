#pragma once

#include <string>

#include "core/byte_source.h"
#include "core/palette.h"

namespace rastrel {

/// Reads the palette file beside raw pixels: of every line that begins with four integers, index,
/// red, green and blue, the entry with that index. Other lines, and other indices than 0 to 255,
/// are passed over. Entries that no line tells of are grey.
[[nodiscard]] Palette ReadColorFile(ByteSource& source);

[[nodiscard]] std::string ColorFileText(const Palette& palette);

}  // namespace rastrel
