#include "formats/stream_image.h"

#include <utility>

namespace rastrel {

bool StreamImage::ReadInfo(const std::string& name, ImageInfo& info) {
    const std::string file_name = name.empty() ? FileName() : name;
    const auto source = FileSource::Open(file_name);
    if (!source || !ReadInfoFrom(*source, info)) return false;
    SetFileName(file_name);
    return true;
}

bool StreamImage::Read(const std::string& name) {
    const std::string file_name = name.empty() ? FileName() : name;
    const auto source = FileSource::Open(file_name);
    if (!source || !ReadFrom(*source)) return false;
    SetFileName(file_name);
    return true;
}

bool StreamImage::ReadPart(const std::string& name, Rect part) {
    const std::string file_name = name.empty() ? FileName() : name;
    const auto source = FileSource::Open(file_name);
    if (!source || !ReadPartFrom(*source, part)) return false;
    SetFileName(file_name);
    return true;
}

bool StreamImage::ReadPartFrom(ByteSource& /*source*/, const Rect& /*part*/) {
    return false;
}

void StreamImage::TakeDecoded(DibBlock block, const std::optional<Palette>& palette,
                              int transparent_index) {
    const int bits = block.Header().bit_count;
    int color_type = bits <= 8 ? 0 : kColorTypeColor;
    if (bits == 32) color_type |= kColorTypeAlpha;
    if (palette) color_type = kColorTypePalettised;
    RemovePalette();
    ReplaceBlock(std::move(block), color_type);
    if (palette) SetPalette(*palette);
    SetTransparentIndex(transparent_index);
}

bool StreamImage::Write(const std::string& name) {
    const std::string file_name = name.empty() ? FileName() : name;
    if (!HasBlock()) return false;
    const auto sink = FileSink::Create(file_name);
    if (!sink || !WriteTo(*sink) || !sink->Commit()) return false;
    SetFileName(file_name);
    return true;
}

}  // namespace rastrel
