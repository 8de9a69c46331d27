#include "core/format_table.h"

#include <algorithm>
#include <array>

#include "formats/bmp/bmp_image.h"
#include "formats/gif/gif_image.h"
#include "formats/jp2/jp2_image.h"
#include "formats/jpeg/jpeg_image.h"
#include "formats/other/other_image.h"
#include "formats/png/png_image.h"
#include "formats/qvi/qvi_image.h"
#include "formats/raw/raw_image.h"
#include "formats/tiff/tiff_image.h"
#include "formats/unavailable/unavailable_image.h"

namespace rastrel {

namespace {

template <class Image>
std::unique_ptr<RasterImage> Make() {
    return std::make_unique<Image>();
}

using enum PartialReads;

/// Whether a file begins with one of some signatures.
bool StartsWith(ByteSource& source, std::initializer_list<std::string_view> signatures) {
    std::array<std::uint8_t, 16> head = {};
    const auto got = std::span(head).first(source.Read(head));
    return std::any_of(signatures.begin(), signatures.end(), [got](std::string_view signature) {
        return got.size() >= signature.size() &&
               std::equal(
                   signature.begin(), signature.end(), got.begin(),
                   [](char c, std::uint8_t byte) { return static_cast<std::uint8_t>(c) == byte; });
    });
}

// A bitmap file whose pixels are one compressed stream is the library's own.
bool IsBmp(ByteSource& source) {
    return StartsWith(source, {"BM"}) && !HasLzoPixels(source);
}
bool IsQvi(ByteSource& source) {
    return HasLzoPixels(source);
}
bool IsJpeg(ByteSource& source) {
    return StartsWith(source, {"\xff\xd8\xff"});
}
bool IsGif(ByteSource& source) {
    return StartsWith(source, {"GIF87a", "GIF89a"});
}
bool IsPng(ByteSource& source) {
    return StartsWith(source, {"\x89PNG\r\n\x1a\n"});
}
/// In either byte order, with offsets of 32 or 64 bits.
bool IsTiff(ByteSource& source) {
    using namespace std::string_view_literals;
    return StartsWith(source, {"II*\0"sv, "MM\0*"sv, "II+\0"sv, "MM\0+"sv});
}
/// The file format, or a code stream alone.
bool IsJpeg2000(ByteSource& source) {
    using namespace std::string_view_literals;
    return StartsWith(source, {"\0\0\0\x0cjP  \r\n\x87\n"sv, "\xff\x4f\xff\x51"sv});
}

/// MrSID and ECW images, which nobody can write, are exported by their decoders.
constexpr std::array kMrSidExports = {0, 1, 4, 7};
constexpr std::array kEcwExports = {7};

/// Rows without a class are formats whose names are known but which cannot be read or written.
constexpr std::array<FormatRow, 16> kFormats = {{
    {.type = 0, .extensions = {"BMP"}, .make = Make<BmpImage>, .recognises = IsBmp},
    {.type = 1,
     .extensions = {"JPG"},
     .make = Make<JpegImage>,
     .partial = kParts,
     .recognises = IsJpeg},
    {.type = 2, .extensions = {"GIF"}, .make = Make<GifImage>, .recognises = IsGif},
    {.type = 3,
     .extensions = {"PNG"},
     .make = Make<PngImage>,
     .partial = kParts,
     .recognises = IsPng},
    {.type = 4,
     .extensions = {"TIF"},
     .make = Make<TiffImage>,
     .partial = kReduced,
     .recognises = IsTiff},
    {.type = 5, .extensions = {"QVI"}, .make = Make<QviImage>, .recognises = IsQvi},
    {.type = 6, .extensions = {"BIL"}, .make = Make<BilImage>, .partial = kReduced},
    {.type = 7, .extensions = {"BIP"}, .make = Make<BipImage>, .partial = kReduced},
    {.type = 8, .extensions = {"BSQ"}, .make = Make<BsqImage>, .partial = kReduced},
    {.type = 9, .extensions = {"SID"}, .make = Make<UnavailableImage>, .exports = kMrSidExports},
    {.type = 10, .extensions = {"ECW"}, .make = Make<UnavailableImage>, .exports = kEcwExports},
    {.type = 11, .extensions = {"FOT"}, .make = Make<UnavailableImage>},
    {.type = 12, .extensions = {"MAP"}, .make = Make<UnavailableImage>},
    {.type = 13, .extensions = {"GFC"}, .make = Make<UnavailableImage>},
    {.type = 14, .extensions = {"GAF"}, .make = Make<UnavailableImage>},
    {.type = 15,
     .extensions = {"JP2", "BIN"},
     .make = Make<Jp2Image>,
     .partial = kParts,
     .recognises = IsJpeg2000},
}};

}  // namespace

std::span<const FormatRow> FormatTable() {
    return kFormats;
}

std::unique_ptr<RasterImage> MakeOtherFormat() {
    return std::make_unique<OtherImage>();
}

}  // namespace rastrel
