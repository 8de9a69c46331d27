#pragma once

#include <cstdint>
#include <optional>

#include "core/byte_source.h"
#include "core/geometry.h"

namespace rastrel {

/// What the boxes and main headers of a JPEG 2000 file say, read and checked without its decoder,
/// which takes memory for whatever is claimed.
struct Jp2Layout {
    bool in_boxes = false;     ///< a JP2 file; else a bare codestream
    Size size;                 ///< of the first component
    int channels = 0;          ///< components, or a palette's columns
    bool differences = false;  ///< brightness and two colour differences, by the file's own word
};

/// None for files that are no JPEG 2000, are in a colour space that bitmaps do not have, or claim
/// more than their length can stand for.
[[nodiscard]] std::optional<Jp2Layout> ReadJp2Layout(ByteSource& source);

}  // namespace rastrel
