// A layout, then the texts of a header and of a palette file, each ended by a zero byte, then
// pixels.

#include <algorithm>
#include <cstddef>

#include "formats/raw/raw_image.h"
#include "formats/raw/raw_pixels.h"
#include "read_and_use.h"

namespace {

using namespace rastrel;
using rastrel_fuzz::Require;

using Bytes = std::span<const std::uint8_t>;

/// Takes the bytes up to the first zero, and that, off the front.
Bytes TakeText(Bytes& bytes) {
    const auto end = std::find(bytes.begin(), bytes.end(), std::uint8_t{0});
    const auto length = static_cast<std::size_t>(end - bytes.begin());
    const Bytes text = bytes.first(length);
    bytes = bytes.subspan(std::min(length + 1, bytes.size()));
    return text;
}

struct RawFiles {
    RawLayout layout;
    Bytes header;
    Bytes colors;
    Bytes pixels;

    [[nodiscard]] bool ReadInto(RawImage& image, std::optional<Rect> part = std::nullopt,
                                int reduction = 1) const {
        MemorySource header_source(header);
        MemorySource color_source(colors);
        MemorySource pixel_source(pixels);
        return image.ReadFrom(header_source, &color_source, pixel_source, part, reduction);
    }
};

void RequireSamePixels(const RasterImage& a, const RasterImage& b) {
    Require(a.PixelSize() == b.PixelSize() && a.Bits() == b.Bits());
    const auto row_bytes =
        static_cast<std::size_t>(a.Width()) * static_cast<std::size_t>(a.Bits() / 8);
    for (int y = 0; y < a.Height(); ++y)
        Require(std::ranges::equal(a.Row(y).first(row_bytes), b.Row(y).first(row_bytes)));
}

void RequirePartsLikeCrops(const RawFiles& files, const RawImage& image) {
    const Rect part = {image.Width() / 3, image.Height() / 4 - 1, image.Width() / 2 + 1,
                       image.Height() / 2 + 1};
    for (const int reduction : {1, 3}) {
        RasterImage cropped;
        Require(cropped.CopyFrom(image));
        RawImage read(files.layout);
        const bool has_part = ExtractPortion(cropped, part, reduction);
        Require(files.ReadInto(read, part, reduction) == has_part);
        if (has_part) RequireSamePixels(read, cropped);
    }
}

void RequireRoundTrip(const RawFiles& files, const RawImage& image) {
    MemorySink header;
    MemorySink colors;
    MemorySink pixels;
    Require(image.WriteTo(header, &colors, pixels));
    RawImage again(files.layout);
    Require(RawFiles{files.layout, header.Bytes(), colors.Bytes(), pixels.Bytes()}.ReadInto(again));
    RequireSamePixels(again, image);
    const Palette* palette = image.GetPalette();
    Require((palette != nullptr) == (again.GetPalette() != nullptr));
    Require(palette == nullptr ||
            std::ranges::equal(palette->Entries(), again.GetPalette()->Entries()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    if (bytes.empty()) return 0;
    RawFiles files = {
        .layout = static_cast<RawLayout>(bytes[0] % 3), .header = {}, .colors = {}, .pixels = {}};
    bytes = bytes.subspan(1);
    files.header = TakeText(bytes);
    files.colors = TakeText(bytes);
    files.pixels = bytes;
    RawImage image(files.layout);
    if (!files.ReadInto(image)) {
        Require(!image.HasBlock());
        return 0;
    }
    if (image.Block().Bytes().size() > rastrel_fuzz::kMostUsedBytes) return 0;
    RequirePartsLikeCrops(files, image);
    RequireRoundTrip(files, image);
    rastrel_fuzz::UseRaster(image);
    return 0;
}
