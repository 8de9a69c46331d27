#pragma once

#include "core/portion.h"
#include "read_and_use.h"

namespace rastrel_fuzz {

/// As ReadAndUse for a format with partial reads: a part of what loads must be the same part of the
/// whole. Images much larger than the search needs are left alone.
template <class Image>
void ReadWholeAndPart(std::span<const std::uint8_t> bytes) {
    using namespace rastrel;
    constexpr std::uint64_t kMostPixels = std::uint64_t{1} << 18;
    MemorySource info_source(bytes);
    ImageInfo info;
    if (!Image().ReadInfoFrom(info_source, info)) info = {};
    if (static_cast<std::uint64_t>(info.width) * static_cast<std::uint64_t>(info.height) >
        kMostPixels)
        return;
    ReadAndUse<Image>(bytes);

    const Rect rect = {1, 2, 30, 20};
    MemorySource whole_source(bytes);
    MemorySource part_source(bytes);
    Image whole;
    Image part;
    const bool has_part = part.ReadPartFrom(part_source, rect);
    if (!whole.ReadFrom(whole_source)) return;
    if (!ExtractPortion(whole, rect)) {
        Require(!has_part);
        return;
    }
    Require(has_part && part.PixelSize() == whole.PixelSize() && part.Bits() == whole.Bits());
    for (int y = 0; y < part.Height(); ++y) {
        for (int x = 0; x < part.Width(); ++x) {
            if (part.Bits() <= 8)
                Require(part.GetIndex(x, y) == whole.GetIndex(x, y));
            else
                Require(part.GetRgb(x, y) == whole.GetRgb(x, y));
        }
    }
}

}  // namespace rastrel_fuzz
