#include "formats/jpeg/jpeg_image.h"

#include <utility>
#include <vector>

#include "core/pixel_reader.h"
#include "formats/jpeg/jpeg_reader.h"
#include "formats/jpeg/jpeg_writer.h"

namespace rastrel {

namespace {

constexpr int kBestQuality = 100;

struct JpegForm {
    bool grey;
    int quality;
};

/// What a quality field asks for. That 200 stands for the least quality is as it always was.
JpegForm FormOf(int quality_field, int bits) {
    if (quality_field <= kBestQuality) return {false, quality_field > 0 ? quality_field : 0};
    if (bits == 8) return {true, quality_field % kBestQuality};
    return {false, kBestQuality};
}

/// The picture's rows as they stand in the bitmap.
bool WriteStoredRows(JpegWriter& writer, const RasterImage& raster) {
    return writer.WriteRows(raster.PictureRow(0).data(),
                            -static_cast<std::ptrdiff_t>(raster.EffectiveWidth()), raster.Height());
}

bool WriteShownColors(JpegWriter& writer, const RasterImage& raster) {
    PixelReader reader(raster, PixelForm::kBgr);
    std::vector<std::uint8_t> row(static_cast<std::size_t>(raster.Width()) * 3);
    for (int y = 0; y < raster.Height(); ++y) {
        reader.Read(0, y, row);
        if (!writer.WriteRows(row.data(), 0, 1)) return false;
    }
    return true;
}

}  // namespace

bool JpegImage::ReadInfoFrom(ByteSource& source, ImageInfo& info) const {
    JpegReader reader(source);
    if (!reader.ReadHeader()) return false;
    const Size size = reader.PixelSize();
    info = {size.width, size.height, reader.Components() == 1 ? 8 : 24};
    return true;
}

bool JpegImage::ReadFrom(ByteSource& source) {
    return Load(source, nullptr);
}

bool JpegImage::ReadPartFrom(ByteSource& source, const Rect& part) {
    return Load(source, &part);
}

bool JpegImage::Load(ByteSource& source, const Rect* part) {
    JpegReader reader(source);
    if (!reader.ReadHeader()) return false;
    const Size size = reader.PixelSize();
    const Rect whole = {0, 0, size.width, size.height};
    const Rect inside = part != nullptr ? Clip(*part, size) : whole;
    if (inside.IsEmpty()) return false;
    DibBlock block = reader.Decode(inside);
    if (!block) return false;
    if (block.Header().bit_count == 8)
        TakeDecoded(std::move(block), Palette::Grey());
    else
        TakeDecoded(std::move(block));
    return true;
}

bool JpegImage::WriteTo(ByteSink& sink) {
    if (!HasPlainRows()) return false;
    const JpegForm form = FormOf(Quality(), Bits());
    JpegWriter writer(sink);
    const auto write = [&](JpegRows kind, auto write_rows) {
        return writer.Start(PixelSize(), kind, form.quality) && write_rows(writer, *this) &&
               writer.Finish();
    };
    if (form.grey) return write(JpegRows::kGrey, WriteStoredRows);
    switch (Bits()) {
        case 24:
            return write(JpegRows::kBgr, WriteStoredRows);
        case 32:
            return write(JpegRows::kBgrx, WriteStoredRows);
        default:
            return write(JpegRows::kBgr, WriteShownColors);
    }
}

bool JpegImage::Describe(FormatTexts& texts) const {
    texts = {(Bits() == 8 ? "Jpeg Grayscale, " : "Jpeg RGB, ") + std::to_string(Bits()) + " bit.",
             "Compression " + std::to_string(Quality()) + "."};
    return true;
}

}  // namespace rastrel
