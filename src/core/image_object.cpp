#include "core/image_object.h"

#include <utility>

#include "core/channels.h"
#include "core/portion.h"

namespace rastrel {

namespace {

std::unique_ptr<RasterImage> MakeFormat(const FormatRow* format) {
    return format != nullptr && format->make != nullptr ? format->make() : nullptr;
}

}  // namespace

bool ImageObject::MakeRaster(int type) {
    raster_.reset();
    raster_ = MakeFormat(FindFormat(type));
    return raster_ != nullptr;
}

bool ImageObject::Create(int width, int height, int bits, int color_type) {
    type_ = kBmpImageType;
    return MakeRaster(type_) && raster_->Create(width, height, bits, color_type);
}

bool ImageObject::CopyFrom(const ImageObject& source) {
    type_ = source.type_;
    file_name_ = source.file_name_;
    if (!source.raster_) {
        raster_.reset();
        return false;
    }
    return MakeRaster(type_) && raster_->CopyFrom(*source.raster_);
}

bool ImageObject::CombineBands(const ImageObject& red, const ImageObject& green,
                               const ImageObject& blue) {
    type_ = kBmpImageType;
    return red.IsValid() && green.IsValid() && blue.IsValid() && MakeRaster(type_) &&
           CombineChannels(*raster_, *red.raster_, *green.raster_, *blue.raster_);
}

bool ImageObject::PrepareToRead(const std::string& name, int type) {
    const int old_type = type_;
    file_name_ = name;
    type_ = type == kNoImageType ? ImageTypeFromName(name) : type;
    return (raster_ && type_ == old_type) || MakeRaster(type_);
}

bool ImageObject::Read(const std::string& name, int type) {
    // Here ends, for now, the list of ways to read: names that fail would next be tried as network
    // addresses, then by a decoder for whatever the content turns out to be.
    return PrepareToRead(name, type) && raster_->Read(name);
}

bool ImageObject::ReadPart(const std::string& name, int type, Rect part, int reduction) {
    if (!PrepareToRead(name, type) || reduction < 1) return false;
    const FormatRow* format = FindFormat(type_);
    if (format->reads_parts) {
        return reduction == 1 ? raster_->ReadPart(name, part)
                              : raster_->ReadPartReduced(name, part, reduction);
    }
    // Beside the raster, so that a part that turns out empty leaves it as it was.
    const std::unique_ptr<RasterImage> whole = MakeFormat(format);
    whole->SetQuality(raster_->Quality());
    const std::string& file_name = name.empty() ? raster_->FileName() : name;
    if (!whole->Read(file_name) || !ExtractPortion(*whole, part, reduction)) return false;
    raster_->TakeOver(*whole);
    raster_->SetFileName(whole->FileName());
    return true;
}

bool ImageObject::ReadInfo(const std::string& name, ImageInfo& info) {
    return PrepareToRead(name, kNoImageType) && raster_->ReadInfo(name, info);
}

bool ImageObject::Save(const std::string& name, int type) {
    if (!raster_) return false;
    const int target = type == kNoImageType ? ImageTypeFromName(name) : type;
    if (target == type_) {
        if (!raster_->Write(name)) return false;
    } else {
        const FormatRow* format = FindFormat(target);
        if (format == nullptr || !SaveAsOtherType(name, *format)) return false;
    }
    type_ = target;
    file_name_ = name;
    return true;
}

bool ImageObject::SaveAsOtherType(const std::string& name, const FormatRow& format) {
    std::unique_ptr<RasterImage> converted = MakeFormat(&format);
    if (!converted) return false;
    converted->TakeOver(*raster_);
    bool written = false;
    try {
        written = converted->Write(name);
    } catch (...) {
        // Exhausted memory is one more way for a write to fail: the image must find its way back.
        written = false;
    }
    if (written)
        raster_ = std::move(converted);
    else
        raster_->TakeOver(*converted);
    return written;
}

}  // namespace rastrel
