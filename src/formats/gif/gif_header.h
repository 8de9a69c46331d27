#pragma once

#include <cstdint>
#include <optional>

#include "core/geometry.h"
#include "core/palette.h"
#include "formats/gif/gif_bytes.h"

namespace rastrel {

/// What stands before the pixels of a GIF file's first image.
struct GifHeader {
    Size size;
    bool interlaced = false;
    int transparent_index = -1;
    Palette palette{std::span<const Color>()};
};

/// Reads up to the first image's pixels, past all extensions. None when that image is not there.
[[nodiscard]] std::optional<GifHeader> ReadGifHeader(GifBytes& bytes);

}  // namespace rastrel
