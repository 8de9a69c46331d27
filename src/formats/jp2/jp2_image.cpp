#include "formats/jp2/jp2_image.h"

#include <utility>

#include "formats/jp2/jp2_layout.h"
#include "formats/jp2/jp2_reader.h"
#include "formats/jp2/jp2_writer.h"

namespace rastrel {

bool Jp2Image::ReadInfoFrom(ByteSource& source, ImageInfo& info) const {
    const auto layout = ReadJp2Layout(source);
    if (!layout) return false;
    info = {layout->size.width, layout->size.height, Jp2Bits(*layout)};
    return true;
}

bool Jp2Image::ReadFrom(ByteSource& source) {
    return Load(source, nullptr);
}

bool Jp2Image::ReadPartFrom(ByteSource& source, const Rect& part) {
    return Load(source, &part);
}

bool Jp2Image::Load(ByteSource& source, const Rect* part) {
    const auto layout = ReadJp2Layout(source);
    if (!layout) return false;
    const Rect whole = {0, 0, layout->size.width, layout->size.height};
    const Rect inside = part != nullptr ? Clip(*part, layout->size) : whole;
    if (inside.IsEmpty()) return false;
    DibBlock block = DecodeJp2(source, *layout, inside);
    if (!block) return false;
    if (Jp2Bits(*layout) == 8)
        TakeDecoded(std::move(block), Palette::Grey());
    else
        TakeDecoded(std::move(block));
    return true;
}

bool Jp2Image::WriteTo(ByteSink& sink) {
    return WriteJp2(sink, *this);
}

bool Jp2Image::Describe(FormatTexts& texts) const {
    texts = {"JPEG2000 Format, " + std::to_string(Bits()) + " bit.", ""};
    return true;
}

}  // namespace rastrel
