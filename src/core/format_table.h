#pragma once

#include <array>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "core/byte_source.h"
#include "core/raster_image.h"

namespace rastrel {

constexpr int kNoImageType = -1;
constexpr int kBmpImageType = 0;

/// What a format class reads less than a whole file of; the rest is read whole and cropped.
enum class PartialReads {
    kNone,
    kParts,
    kReduced,  ///< parts, and of them every n-th column and row
};

/// One file format: adding one takes its folder and its row.
struct FormatRow {
    int type;                                    ///< the image-type code
    std::array<std::string_view, 2> extensions;  ///< in upper case; the second may be empty
    std::unique_ptr<RasterImage> (*make)();      ///< null: no class reads or writes it
    PartialReads partial = PartialReads::kNone;  ///< its own partial reads
    std::span<const int> exports = {};           ///< types that its class makes files of by itself
    /// Whether a file, whatever its name, is one of this format; null: its files show no sign.
    bool (*recognises)(ByteSource& source) = nullptr;
};

/// All formats; the formats themselves supply it.
[[nodiscard]] std::span<const FormatRow> FormatTable();

/// A raster of the class that reads, but cannot write, files that no row is for; the formats supply
/// it, too.
[[nodiscard]] std::unique_ptr<RasterImage> MakeOtherFormat();

/// The row of an image type; null for a type that there is not.
[[nodiscard]] const FormatRow* FindFormat(int type);

/// The image type that a name's extension stands for, in any case: the text after the last point.
/// kNoImageType for a name without one, or with one that no format has.
[[nodiscard]] int ImageTypeFromName(std::string_view name);

/// The image type that a file's first bytes stand for; kNoImageType when none has such.
[[nodiscard]] int ImageTypeFromContent(ByteSource& source);

}  // namespace rastrel
