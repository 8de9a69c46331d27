#include "formats/raw/raw_header.h"

#include <limits>

#include "core/checked_size.h"
#include "core/line_reader.h"
#include "core/text_fields.h"

namespace rastrel {

namespace {

constexpr std::string_view kRows = "NROWS";
constexpr std::string_view kColumns = "NCOLS";
constexpr std::string_view kBands = "NBANDS";
constexpr std::string_view kSampleBits = "NBITS";

}  // namespace

std::string_view LayoutName(RawLayout layout) {
    switch (layout) {
        case RawLayout::kBil:
            return "BIL";
        case RawLayout::kBip:
            return "BIP";
        default:
            return "BSQ";
    }
}

std::optional<RawHeader> ReadRawHeader(ByteSource& source) {
    std::optional<int> rows;
    std::optional<int> columns;
    std::optional<int> bands;
    std::optional<int> sample_bits;
    LineReader lines(source, kMostLineCharacters);
    while (const auto line = lines.NextLine()) {
        FieldReader fields(*line);
        const std::string_view keyword = fields.Word();
        const auto value = fields.Integer();
        if (keyword == kRows) rows = value;
        if (keyword == kColumns) columns = value;
        if (keyword == kBands) bands = value;
        if (keyword == kSampleBits) sample_bits = value;
    }
    if (!rows || !columns || !bands || !sample_bits) return std::nullopt;
    CheckedSize size(std::numeric_limits<int>::max());
    const auto bits = static_cast<int>(size.Mul(*sample_bits, *bands));
    if (!size.Ok() || *sample_bits < 1 || *bands < 1 || *rows < 1 || *columns < 1)
        return std::nullopt;
    return RawHeader{*columns, *rows, bits};
}

std::string RawHeaderText(RawLayout layout, int width, int height, int bands) {
    std::string text = "BYTEORDER I\n";
    const auto add = [&text](std::string_view keyword, const std::string& value) {
        text += keyword;
        text += ' ' + value + '\n';
    };
    add("LAYOUT", std::string(LayoutName(layout)));
    add(kRows, std::to_string(height));
    add(kColumns, std::to_string(width));
    add(kBands, std::to_string(bands));
    add(kSampleBits, "8");
    return text;
}

}  // namespace rastrel
