#include "formats/png/png_image.h"

#include "core/portion.h"
#include "formats/png/png_reader.h"
#include "formats/png/png_writer.h"

namespace rastrel {

bool PngImage::ReadInfoFrom(ByteSource& source, ImageInfo& info) const {
    PngReader reader(source);
    if (!reader.ReadHeader()) return false;
    info = {reader.PixelSize().width, reader.PixelSize().height, reader.Bits()};
    return true;
}

bool PngImage::ReadFrom(ByteSource& source) {
    PngReader reader(source);
    if (!reader.ReadHeader()) return false;
    DibBlock block = reader.DecodeWhole();
    if (!block) return false;
    TakeDecoded(std::move(block), reader.GetPalette(), reader.TransparentIndex());
    return true;
}

bool PngImage::ReadPartFrom(ByteSource& source, const Rect& part) {
    PngReader reader(source);
    if (!reader.ReadHeader()) return false;
    const Rect inside = Clip(part, reader.PixelSize());
    if (inside.IsEmpty()) return false;
    DibBlock block;
    if (reader.IsInterlaced()) {
        // Every pass covers the whole picture.
        RasterImage whole;
        whole.ReplaceBlock(reader.DecodeWhole());
        if (!whole.HasBlock() || !ExtractPortion(whole, inside)) return false;
        block = whole.DetachBlock();
    } else {
        block = reader.DecodePart(inside);
    }
    if (!block) return false;
    TakeDecoded(std::move(block), reader.GetPalette(), reader.TransparentIndex());
    return true;
}

bool PngImage::WriteTo(ByteSink& sink) {
    return PngWriter(sink).Write(*this);
}

bool PngImage::Describe(FormatTexts& texts) const {
    texts = {"PNG Format, " + std::to_string(Bits()) + " bit.", ""};
    return true;
}

}  // namespace rastrel
