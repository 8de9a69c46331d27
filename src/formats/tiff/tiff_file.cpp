#include "formats/tiff/tiff_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <limits>

namespace rastrel {

namespace {

/// libtiff does not know the tags of geographic files (those of GeoTIFF and GDAL's own), and would
/// fill the log with that.
bool IsOfGeographicTag(std::string_view text) {
    constexpr std::string_view kBefore = "Unknown field with tag ";
    constexpr std::array kTags = {33550, 33922, 34264, 34735, 34736, 34737, 42112, 42113};
    if (!text.starts_with(kBefore)) return false;
    text.remove_prefix(kBefore.size());
    int tag = 0;
    std::from_chars(text.data(), text.data() + text.size(), tag);
    return std::find(kTags.begin(), kTags.end(), tag) != kTags.end();
}

/// libtiff hands a message over as a format and its arguments.
template <void (TiffMessages::*add)(std::string_view, std::string_view) noexcept>
int TakeMessage(TIFF* /*tiff*/, void* messages, const char* module, const char* format,
                va_list arguments) {
    std::array<char, 2048> text = {};
    std::vsnprintf(text.data(), text.size(), format, arguments);
    if (!IsOfGeographicTag(text.data()))
        (static_cast<TiffMessages*>(messages)->*add)(module != nullptr ? module : "", text.data());
    return 1;  // handled: libtiff's own handlers, which belong to the host, hear nothing
}

struct OptionsDeleter {
    void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};
using OpenOptions = std::unique_ptr<TIFFOpenOptions, OptionsDeleter>;

OpenOptions OptionsFor(TiffMessages& messages) {
    OpenOptions options(TIFFOpenOptionsAlloc());
    if (!options) return nullptr;
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), TakeMessage<&TiffMessages::Error>, &messages);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), TakeMessage<&TiffMessages::Warning>,
                                         &messages);
    // No strip, tile or table of an image that we could hold needs more at once.
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), std::numeric_limits<std::int32_t>::max());
    return options;
}

std::uint64_t SeekTarget(std::uint64_t offset, int whence, std::uint64_t position,
                         std::uint64_t size) {
    // Offsets wrap round, as negative ones from the end do.
    switch (whence) {
        case SEEK_CUR:
            return position + offset;
        case SEEK_END:
            return size + offset;
        default:
            return offset;
    }
}

constexpr toff_t kSeekFailed = ~toff_t{0};

InputFile& Input(thandle_t file) {
    return *static_cast<InputFile*>(file);
}

tmsize_t ReadInput(thandle_t file, void* bytes, tmsize_t count) {
    if (count < 0) return -1;
    const auto wanted = static_cast<std::size_t>(count);
    return static_cast<tmsize_t>(Input(file).Read({static_cast<std::uint8_t*>(bytes), wanted}));
}

toff_t SeekInput(thandle_t file, toff_t offset, int whence) {
    const toff_t to = SeekTarget(offset, whence, Input(file).Position(), Input(file).Size());
    Input(file).Seek(to);
    return to;
}

toff_t InputSize(thandle_t file) {
    return Input(file).Size();
}

tmsize_t NoTransfer(thandle_t /*file*/, void* /*bytes*/, tmsize_t /*count*/) {
    return -1;
}

int KeepOpen(thandle_t /*file*/) {
    return 0;
}

}  // namespace

std::unique_ptr<TiffInput> TiffInput::Open(const std::string& name) {
    constexpr const char* kModule = "LoadTIFF()";
    std::unique_ptr<TiffInput> input(new TiffInput);
    const OpenOptions options = OptionsFor(input->messages_);
    input->file_ = InputFile::Open(name);
    if (input->file_ && options) {
        // Not mapped into memory, and one large strip stays one.
        input->tiff_.reset(TIFFClientOpenExt(name.c_str(), "rmc", input->file_.get(), ReadInput,
                                             NoTransfer, SeekInput, KeepOpen, InputSize, nullptr,
                                             nullptr, options.get()));
    }
    if (input->tiff_) return input;
    input->messages_.Error(kModule, "couldn't open file");
    return nullptr;
}

bool TiffInput::ReadAt(std::uint64_t offset, std::span<std::uint8_t> out) {
    file_->Seek(offset);
    return file_->Read(out) == out.size();
}

tmsize_t TiffOutput::WriteBytes(thandle_t self, void* bytes, tmsize_t count) {
    auto& output = *static_cast<TiffOutput*>(self);
    const auto size = static_cast<std::size_t>(std::max<tmsize_t>(count, 0));
    // Nothing more goes to a file that is lost: libtiff tries again on closing.
    output.all_written_ =
        output.all_written_ && output.file_->Write({static_cast<const std::uint8_t*>(bytes), size});
    return output.all_written_ ? count : -1;
}

std::unique_ptr<TiffOutput> TiffOutput::Create(const std::string& name, Place place) {
    std::unique_ptr<TiffOutput> output(new TiffOutput);
    const OpenOptions options = OptionsFor(output->messages_);
    output->file_ =
        place == Place::kBeside ? ReplacingFile::Create(name) : ReplacingFile::CreateInPlace(name);
    if (!output->file_ || !options) {
        output->messages_.Error(name, "Cannot open");
        return nullptr;
    }
    const auto seek = [](thandle_t self, toff_t offset, int whence) -> toff_t {
        ReplacingFile& file = *static_cast<TiffOutput*>(self)->file_;
        const toff_t to = SeekTarget(offset, whence, file.Position(), file.Size());
        return file.Seek(to) ? to : kSeekFailed;
    };
    const auto size = [](thandle_t self) -> toff_t {
        return static_cast<TiffOutput*>(self)->file_->Size();
    };
    output->tiff_.reset(TIFFClientOpenExt(name.c_str(), "w", output.get(), NoTransfer, WriteBytes,
                                          seek, KeepOpen, size, nullptr, nullptr, options.get()));
    if (!output->tiff_) return nullptr;
    return output;
}

bool TiffOutput::Commit() {
    const bool directory_written = TIFFWriteDirectory(Tiff()) == 1;
    tiff_.reset();
    return directory_written && all_written_ && file_->Commit();
}

}  // namespace rastrel
