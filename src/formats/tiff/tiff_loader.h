#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/dib_block.h"
#include "core/geometry.h"
#include "core/palette.h"
#include "formats/tiff/tiff_file.h"
#include "formats/tiff/tiff_layout.h"

namespace rastrel {

/// What the loader makes of a file: a bitmap of 8-bit indices with their palette, or of 24 bits.
struct LoadedTiff {
    DibBlock block;
    std::optional<Palette> palette;
    std::uint16_t compression = 0;
    std::string information;  ///< describes the file's samples
    std::string comment;      ///< its ImageDescription
};

/// Loads a part of the picture, which lies inside it, and of that every reduction-th column and row
/// from its upper left. None, with a word in the log, on failure.
[[nodiscard]] std::optional<LoadedTiff> LoadTiff(TiffInput& file, const TiffLayout& layout,
                                                 const Rect& part, int reduction = 1);

}  // namespace rastrel
