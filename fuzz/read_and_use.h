#pragma once

#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

#include "core/byte_source.h"
#include "core/depth_conversion.h"
#include "core/fill.h"
#include "core/pixel_reader.h"
#include "core/portion.h"

namespace rastrel_fuzz {

/// A property that must hold whatever the input; the fuzzer keeps inputs that end the process.
inline void Require(bool holds) {
    if (!holds) std::abort();
}

/// Puts a raster through everything that can be done with one.
inline void UseRaster(rastrel::RasterImage& image) {
    using namespace rastrel;
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(image.Width()) *
                                     static_cast<std::size_t>(image.Height()) * 4);
    for (const int depth : {8, 24, 32})
        CopyPixels(image, depth, {0, 0, image.Width(), image.Height()}, pixels.data());
    static_cast<void>(image.GetRgb(image.Width() - 1, image.Height() - 1));
    image.SetRgb(image.Width() - 1, image.Height() - 1, {1, 2, 3});
    static_cast<void>(ExtractPortion(image, {1, 0, image.Width(), image.Height()}, 2));
    static_cast<void>(NarrowTo1Bit(image));
    static_cast<void>(WidenTo8Bits(image));
    static_cast<void>(ExpandToTrueColor(image));
    Fill(image, {200, 100, 50});
}

/// Blocks much larger than their files are zeros: they would only slow the search down.
constexpr std::size_t kMostUsedBytes = std::size_t{4} << 20;

/// Reads bytes as an image of one format; what loads is written, read again and compared, and
/// used.
template <class Image>
void ReadAndUse(std::span<const std::uint8_t> bytes) {
    using namespace rastrel;
    MemorySource info_source(bytes);
    ImageInfo info;
    Image image;
    const bool has_info = image.ReadInfoFrom(info_source, info);
    MemorySource source(bytes);
    if (!image.ReadFrom(source)) {
        Require(!image.HasBlock());
        return;
    }
    Require(has_info && info.width == image.Width() && info.height == image.Height() &&
            info.bits == image.Bits());
    if (image.Block().Bytes().size() > kMostUsedBytes) return;

    // Grey JPEG files stay grey.
    image.SetQuality(175);
    MemorySink sink;
    const bool written = image.WriteTo(sink);
    MemorySource written_source(sink.Bytes());
    Image again;
    if (written && again.ReadFrom(written_source)) {
        Require(again.PixelSize() == image.PixelSize() && again.Bits() == image.Bits());
    }
    UseRaster(image);
}

}  // namespace rastrel_fuzz
