#include "formats/raw/raw_image.h"

#include <memory>
#include <span>
#include <string_view>
#include <utility>

#include "core/ascii.h"
#include "core/path_parts.h"
#include "formats/raw/raw_colors.h"
#include "formats/raw/raw_pixels.h"

namespace rastrel {

namespace {

constexpr std::string_view kHeaderExtension = ".hdr";
constexpr std::string_view kColorExtension = ".clr";

std::string_view PixelExtension(RawLayout layout) {
    switch (layout) {
        case RawLayout::kBil:
            return ".bil";
        case RawLayout::kBip:
            return ".bip";
        default:
            return ".bsq";
    }
}

/// The name with another extension.
std::string WithExtension(std::string_view name, std::string_view extension) {
    const std::size_t kept = name.size() - SplitPath(name).extension.size();
    return std::string(name.substr(0, kept)) + std::string(extension);
}

std::unique_ptr<FileSource> OpenBeside(const std::string& name, std::string_view extension) {
    return FileSource::Open(ExistingInEitherCase(WithExtension(name, extension)));
}

bool WriteText(ByteSink& sink, const std::string& text) {
    return sink.Write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

/// A palette file that an earlier image has left would colour the new one.
bool RemoveColors(const std::string& name) {
    const std::string colors = WithExtension(name, kColorExtension);
    return RemoveFile(colors) && RemoveFile(ExistingInEitherCase(colors));
}

}  // namespace

bool RawImage::ReadInfo(const std::string& name, ImageInfo& info) {
    const std::string file_name = name.empty() ? FileName() : name;
    const auto source = OpenBeside(file_name, kHeaderExtension);
    if (!source) return false;
    const auto header = ReadRawHeader(*source);
    if (!header) return false;
    info = {header->width, header->height, header->bits};
    SetFileName(file_name);
    return true;
}

bool RawImage::Read(const std::string& name) {
    return ReadFiles(name, std::nullopt, 1);
}

bool RawImage::ReadPart(const std::string& name, Rect part) {
    return ReadFiles(name, part, 1);
}

bool RawImage::ReadPartReduced(const std::string& name, Rect part, int reduction) {
    return ReadFiles(name, part, reduction);
}

bool RawImage::ReadFiles(const std::string& name, std::optional<Rect> part, int reduction) {
    const std::string file_name = name.empty() ? FileName() : name;
    const auto header = OpenBeside(file_name, kHeaderExtension);
    const auto colors = OpenBeside(file_name, kColorExtension);
    const auto pixels = FileSource::Open(file_name);
    if (!header || !pixels || !ReadFrom(*header, colors.get(), *pixels, part, reduction))
        return false;
    SetFileName(file_name);
    return true;
}

bool RawImage::ReadFrom(ByteSource& header, ByteSource* colors, ByteSource& pixels,
                        std::optional<Rect> part, int reduction) {
    const auto told = ReadRawHeader(header);
    if (!told || reduction < 1) return false;
    const Size size = {told->width, told->height};
    const Rect whole = {0, 0, size.width, size.height};
    const Rect inside = part ? Clip(*part, size) : whole;
    if (inside.IsEmpty()) return false;
    const Palette palette = colors != nullptr ? ReadColorFile(*colors) : Palette::Grey();
    DibBlock block = ReadRawPixels(pixels, *told, layout_, inside, reduction);
    if (!block) return false;
    const bool has_indices = told->bits == 8;
    RemovePalette();
    ReplaceBlock(std::move(block), has_indices ? kColorTypePalettised : kColorTypeColor);
    if (has_indices) SetPalette(palette);
    SetTransparentIndex(-1);
    return true;
}

bool RawImage::Write(const std::string& name) {
    const std::string given = name.empty() ? FileName() : name;
    if (given.empty() || !HasRawPixels(*this)) return false;
    const bool has_extension =
        EqualsInAnyCase(SplitPath(given).ExtensionText(), LayoutName(layout_));
    const std::string pixel_name =
        has_extension ? given : WithExtension(given, PixelExtension(layout_));
    const auto header = FileSink::Create(WithExtension(given, kHeaderExtension));
    const auto colors =
        GetPalette() != nullptr ? FileSink::Create(WithExtension(given, kColorExtension)) : nullptr;
    const auto pixels = FileSink::Create(pixel_name);
    if (!header || !pixels || (GetPalette() != nullptr && !colors)) return false;
    if (!WriteTo(*header, colors.get(), *pixels)) return false;
    // The pixels first: of the three, other programs are most likely to hold that file open.
    if (!pixels->Commit() || !header->Commit() || (colors && !colors->Commit())) return false;
    if (!colors && Bits() <= 8 && !RemoveColors(given)) return false;
    SetFileName(pixel_name);
    return true;
}

bool RawImage::WriteTo(ByteSink& header, ByteSink* colors, ByteSink& pixels) const {
    if (!HasRawPixels(*this)) return false;
    const int bands = Bits() == 24 ? 3 : 1;
    if (!WriteText(header, RawHeaderText(layout_, Width(), Height(), bands))) return false;
    if (colors != nullptr && GetPalette() != nullptr &&
        !WriteText(*colors, ColorFileText(*GetPalette())))
        return false;
    return WriteRawPixels(pixels, *this, layout_);
}

bool RawImage::Describe(FormatTexts& texts) const {
    texts = {std::string(LayoutName(layout_)) + " Format, " + std::to_string(Bits()) + " bit.",
             "No compression."};
    return true;
}

}  // namespace rastrel
