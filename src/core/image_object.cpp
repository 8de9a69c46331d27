#include "core/image_object.h"

#include <algorithm>
#include <utility>

#include "core/byte_source.h"
#include "core/channels.h"
#include "core/network_source.h"
#include "core/portion.h"
#include "platform/temporary_file.h"

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

bool ImageObject::TakeOver(int type, RasterImage& raster) {
    if (!MakeRaster(type)) return false;
    type_ = type;
    raster_->TakeOver(raster);
    return true;
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

bool ImageObject::ChooseClass(const std::string& name, int type) {
    const int old_type = type_;
    type_ = type == kNoImageType ? ImageTypeFromName(name) : type;
    return (raster_ && type_ == old_type) || MakeRaster(type_);
}

bool ImageObject::ByTypeOrAddress(const std::string& name, int type, const Operation& operation) {
    file_name_ = name;
    if (ChooseClass(name, type) && operation(name)) return true;
    const auto copy = FetchLocalCopy(name);
    if (!copy || !ChooseClass(copy->Path(), kNoImageType) || !operation(copy->Path())) return false;
    raster_->SetFileName({});  // the copy ends here
    return true;
}

std::unique_ptr<RasterImage> ImageObject::ByContent(const std::string& name,
                                                    const OperationOn& operation) const {
    const auto source = FileSource::Open(name);
    if (!source) return nullptr;
    const int type = ImageTypeFromContent(*source);
    // Its class has just failed.
    if (type != kNoImageType && type == type_) return nullptr;
    auto raster = type == kNoImageType ? MakeOtherFormat() : MakeFormat(FindFormat(type));
    return raster && operation(*raster) ? std::move(raster) : nullptr;
}

bool ImageObject::BecomeBmp(RasterImage& source) {
    std::unique_ptr<RasterImage> bmp = MakeFormat(FindFormat(kBmpImageType));
    bmp->TakeOver(source);
    const auto file = TemporaryFile::Create("bmp");
    if (!file || !bmp->Write(file->Path()) || !bmp->Read(file->Path())) return false;
    bmp->SetFileName({});  // the file ends here
    raster_ = std::move(bmp);
    type_ = kBmpImageType;
    return true;
}

bool ImageObject::Read(const std::string& name, int type) {
    if (ByTypeOrAddress(name, type, [this](const auto& file) { return raster_->Read(file); }))
        return true;
    const auto found = ByContent(name, [&name](RasterImage& raster) { return raster.Read(name); });
    return found && BecomeBmp(*found);
}

bool ImageObject::ReadPartByClass(const std::string& name, Rect part, int reduction) {
    const FormatRow* format = FindFormat(type_);
    const PartialReads partial = format->partial;
    if (partial != PartialReads::kNone && reduction == 1) return raster_->ReadPart(name, part);
    if (partial == PartialReads::kReduced) return raster_->ReadPartReduced(name, part, reduction);
    // Beside the raster, so that a part that turns out empty leaves it as it was.
    const std::unique_ptr<RasterImage> larger = MakeFormat(format);
    larger->SetQuality(raster_->Quality());
    const std::string& file_name = name.empty() ? raster_->FileName() : name;
    if (partial == PartialReads::kParts) {
        if (!larger->ReadPart(file_name, part)) return false;
        part = {0, 0, larger->Width(), larger->Height()};
    } else if (!larger->Read(file_name)) {
        return false;
    }
    if (!ExtractPortion(*larger, part, reduction)) return false;
    raster_->TakeOver(*larger);
    raster_->SetFileName(larger->FileName());
    return true;
}

bool ImageObject::ReadPart(const std::string& name, int type, Rect part, int reduction) {
    const bool read = ByTypeOrAddress(name, type, [&](const auto& file) {
        return reduction >= 1 && ReadPartByClass(file, part, reduction);
    });
    if (read || reduction < 1) return read;
    const auto found = ByContent(name, [&](RasterImage& raster) {
        return raster.Read(name) && ExtractPortion(raster, part, reduction);
    });
    return found && BecomeBmp(*found);
}

bool ImageObject::ReadInfo(const std::string& name, ImageInfo& info) {
    const auto read = [&](const auto& file) { return raster_->ReadInfo(file, info); };
    if (ByTypeOrAddress(name, kNoImageType, read)) return true;
    return ByContent(name, [&](RasterImage& raster) { return raster.ReadInfo(name, info); }) !=
           nullptr;
}

bool ImageObject::Save(const std::string& name, int type) {
    if (!raster_) return false;
    const int target = type == kNoImageType ? ImageTypeFromName(name) : type;
    if (const FormatRow* own = FindFormat(type_)) {
        // Type and name stay then: the image is still the one that was read.
        if (std::ranges::find(own->exports, target) != own->exports.end())
            return raster_->ExportAs(name, target);
    }
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
