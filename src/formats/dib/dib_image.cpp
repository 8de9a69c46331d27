#include "formats/dib/dib_image.h"

#include <utility>

#include "core/dib_palette.h"

namespace rastrel {

bool DibImage::ReadInfoFrom(ByteSource& source, ImageInfo& info) const {
    return ReadDibInfo(source, info);
}

bool DibImage::ReadFrom(ByteSource& source) {
    DibBlock block = ReadDibFile(source, coding_);
    if (!block) return false;
    const auto palette = CreateDibPalette(block);
    const int plain_type = block.Header().bit_count <= 8 ? 0 : kColorTypeColor;
    RemovePalette();
    ReplaceBlock(std::move(block), palette ? kColorTypePalettised : plain_type);
    if (palette) SetPalette(*palette);
    SetTransparentIndex(-1);
    return true;
}

bool DibImage::WriteTo(ByteSink& sink) {
    DibColorTableFromPalette(Block(), GetPalette(), ColorTableMode::kColors);
    return WriteDibFile(sink, Block(), coding_);
}

}  // namespace rastrel
