#include "formats/stream_image.h"

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

bool StreamImage::Write(const std::string& name) {
    const std::string file_name = name.empty() ? FileName() : name;
    if (!HasBlock()) return false;
    const auto sink = FileSink::Create(file_name);
    if (!sink || !WriteTo(*sink) || !sink->Commit()) return false;
    SetFileName(file_name);
    return true;
}

}  // namespace rastrel
