#pragma once

#include <array>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "core/raster_image.h"

namespace rastrel {

constexpr int kNoImageType = -1;
constexpr int kBmpImageType = 0;

/// One file format: adding one takes its folder and its row.
struct FormatRow {
    int type;                                    ///< the image-type code
    std::array<std::string_view, 2> extensions;  ///< in upper case; the second may be empty
    std::unique_ptr<RasterImage> (*make)();      ///< null: no class reads or writes it
    bool reads_parts = false;                    ///< has partial reads of its own
};

/// All formats; the formats themselves supply it.
[[nodiscard]] std::span<const FormatRow> FormatTable();

/// The row of an image type; null for a type that there is not.
[[nodiscard]] const FormatRow* FindFormat(int type);

/// The image type that a name's extension stands for, in any case: the text after the last point.
/// kNoImageType for a name without one, or with one that no format has.
[[nodiscard]] int ImageTypeFromName(std::string_view name);

}  // namespace rastrel
