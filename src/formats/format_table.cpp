#include "core/format_table.h"

#include <array>

#include "formats/bmp/bmp_image.h"
#include "formats/qvi/qvi_image.h"
#include "formats/raw/raw_image.h"

namespace rastrel {

namespace {

template <class Image>
std::unique_ptr<RasterImage> Make() {
    return std::make_unique<Image>();
}

/// Rows without a class are formats whose names are known but which cannot be read or written.
constexpr std::array<FormatRow, 16> kFormats = {{
    {.type = 0, .extensions = {"BMP"}, .make = Make<BmpImage>},
    {.type = 1, .extensions = {"JPG"}, .make = nullptr},
    {.type = 2, .extensions = {"GIF"}, .make = nullptr},
    {.type = 3, .extensions = {"PNG"}, .make = nullptr},
    {.type = 4, .extensions = {"TIF"}, .make = nullptr},
    {.type = 5, .extensions = {"QVI"}, .make = Make<QviImage>},
    {.type = 6, .extensions = {"BIL"}, .make = Make<BilImage>, .reads_parts = true},
    {.type = 7, .extensions = {"BIP"}, .make = Make<BipImage>, .reads_parts = true},
    {.type = 8, .extensions = {"BSQ"}, .make = Make<BsqImage>, .reads_parts = true},
    {.type = 9, .extensions = {"SID"}, .make = nullptr},
    {.type = 10, .extensions = {"ECW"}, .make = nullptr},
    {.type = 11, .extensions = {"FOT"}, .make = nullptr},
    {.type = 12, .extensions = {"MAP"}, .make = nullptr},
    {.type = 13, .extensions = {"GFC"}, .make = nullptr},
    {.type = 14, .extensions = {"GAF"}, .make = nullptr},
    {.type = 15, .extensions = {"JP2", "BIN"}, .make = nullptr},
}};

}  // namespace

std::span<const FormatRow> FormatTable() {
    return kFormats;
}

}  // namespace rastrel
