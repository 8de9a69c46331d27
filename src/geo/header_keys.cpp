#include "geo/header_keys.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

#include "core/ascii.h"
#include "core/line_reader.h"
#include "geo/georeference_text.h"

namespace rastrel {

namespace {

constexpr std::string_view kX = "ULXMAP";
constexpr std::string_view kY = "ULYMAP";
constexpr std::string_view kPixelSize = "XDIM";
constexpr std::string_view kPixelHeight = "YDIM";

bool IsGeoreference(std::string_view line) {
    const std::string_view word = FieldReader(line).Word();
    return std::ranges::any_of(std::array{kX, kY, kPixelSize, kPixelHeight},
                               [word](auto key) { return EqualsInAnyCase(word, key); });
}

std::string GeoreferenceLines(const Georeference& georeference) {
    const auto line = [](std::string_view keyword, double value) {
        // Keywords of one width, so that the numbers line up.
        std::string text(keyword);
        text.resize(kX.size(), ' ');
        return text + " " + CoordinateText(value) + "\n";
    };
    return line(kX, georeference.x) + line(kY, georeference.y) +
           line(kPixelSize, georeference.pixel_size) + line(kPixelHeight, georeference.pixel_size);
}

std::span<const std::uint8_t> BytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

bool Append(const std::string& header_name, const std::string& lines) {
    const auto file = UpdatedFile::Open(header_name, UpdatedFile::Access::kWrite);
    // Whether the last line there has its end is not known: an empty line does no harm.
    return file && file->Append(BytesOf("\n" + lines));
}

}  // namespace

FoundGeoreference ReadHeaderGeoreference(ByteSource& source) {
    FoundGeoreference found;
    LineReader lines(source, kMostLineCharacters);
    while (const auto line = lines.NextLine()) {
        FieldReader fields(*line);
        const std::string_view word = fields.Word();
        const auto value = fields.Number();
        if (EqualsInAnyCase(word, kX)) found.x = value;
        if (EqualsInAnyCase(word, kY)) found.y = value;
        if (EqualsInAnyCase(word, kPixelSize)) found.pixel_size = value;
    }
    if (!found.x || !found.y || !found.pixel_size) return {};
    found.success = true;
    return found;
}

bool WriteHeaderGeoreference(const std::string& header_name, const Georeference& georeference) {
    const std::string lines = GeoreferenceLines(georeference);
    auto old = FileSource::Open(header_name);
    if (!old && FileExists(header_name)) return Append(header_name, lines);
    const auto fresh = FileSink::Create(header_name);
    if (!fresh) return old && Append(header_name, lines);
    if (old && !CopyOtherLines(*old, *fresh)) return false;
    old.reset();  // on Windows an open file is not replaced
    return fresh->Write(BytesOf(lines)) && fresh->Commit();
}

bool CopyOtherLines(ByteSource& source, ByteSink& sink) {
    LineReader lines(source, kMostLineCharacters);
    bool is_kept = true;
    bool has_end = true;
    while (const auto piece = lines.NextPiece()) {
        if (piece->starts_line) is_kept = !IsGeoreference(piece->text);
        if (!is_kept) continue;
        if (!sink.Write(BytesOf(piece->text))) return false;
        has_end = piece->text.back() == '\n';
    }
    return has_end || sink.Write(BytesOf("\n"));
}

}  // namespace rastrel
