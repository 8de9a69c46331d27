#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "grid_files.h"
#include "text.h"

namespace rastrel_cli {

namespace {

constexpr std::int64_t kMostSide = std::numeric_limits<std::int32_t>::max();
/// No file is larger; sums of two such lengths do not overflow.
constexpr std::int64_t kMostBytes = std::int64_t{1} << 60;

/// The keywords of both kinds of header, those of .bil and of .flt files.
struct Keywords {
    std::optional<std::int64_t> rows, columns, bits, skip_bytes, band_row_bytes, total_row_bytes;
    std::int64_t bands = 1;
    std::optional<RawGridHeader::Kind> kind;
    bool big_endian = false;
    std::string layout = "bil";
    std::optional<double> upper_left_x, upper_left_y, x_size, y_size;
    std::optional<double> lower_left_x, lower_left_y;
    bool x_of_corner = false;
    bool y_of_corner = false;
    std::optional<double> no_data;
};

bool StoreWhole(std::optional<std::int64_t>& field, std::string_view value, std::int64_t least,
                std::int64_t most) {
    field = ParseWhole(value, least, most);
    return field.has_value();
}

bool StoreFinite(std::optional<double>& field, std::string_view value) {
    field = ParseFinite(value);
    return field.has_value();
}

bool StoreKind(Keywords& keywords, const std::string& value) {
    using enum RawGridHeader::Kind;
    if (value == "signedint")
        keywords.kind = kSigned;
    else if (value == "unsignedint")
        keywords.kind = kUnsigned;
    else if (value == "float")
        keywords.kind = kFloat;
    else
        return false;
    return true;
}

bool StoreByteOrder(Keywords& keywords, const std::string& value) {
    // I for Intel and M for Motorola; .flt headers write the order out.
    keywords.big_endian = value == "m" || value == "msbfirst";
    return keywords.big_endian || value == "i" || value == "lsbfirst";
}

bool StoreSizeKeyword(Keywords& keywords, const std::string& keyword, std::string_view value,
                      bool& known) {
    known = true;
    if (keyword == "nrows") return StoreWhole(keywords.rows, value, 1, kMostSide);
    if (keyword == "ncols") return StoreWhole(keywords.columns, value, 1, kMostSide);
    if (keyword == "nbits") return StoreWhole(keywords.bits, value, 1, kMostSide);
    if (keyword == "skipbytes") return StoreWhole(keywords.skip_bytes, value, 0, kMostBytes);
    if (keyword == "bandrowbytes") return StoreWhole(keywords.band_row_bytes, value, 1, kMostBytes);
    if (keyword == "totalrowbytes")
        return StoreWhole(keywords.total_row_bytes, value, 1, kMostBytes);
    if (keyword == "nbands") {
        const auto bands = ParseWhole(value, 1, kMostSide);
        keywords.bands = bands.value_or(1);
        return bands.has_value();
    }
    known = false;
    return true;
}

bool StorePlaceKeyword(Keywords& keywords, const std::string& keyword, std::string_view value,
                       bool& known) {
    known = true;
    if (keyword == "ulxmap") return StoreFinite(keywords.upper_left_x, value);
    if (keyword == "ulymap") return StoreFinite(keywords.upper_left_y, value);
    if (keyword == "xdim" || keyword == "dx") return StoreFinite(keywords.x_size, value);
    if (keyword == "ydim" || keyword == "dy") return StoreFinite(keywords.y_size, value);
    if (keyword == "cellsize") {
        keywords.y_size = keywords.x_size = ParseFinite(value);
        return keywords.x_size.has_value();
    }
    if (keyword == "xllcorner" || keyword == "xllcenter") {
        keywords.x_of_corner = keyword == "xllcorner";
        return StoreFinite(keywords.lower_left_x, value);
    }
    if (keyword == "yllcorner" || keyword == "yllcenter") {
        keywords.y_of_corner = keyword == "yllcorner";
        return StoreFinite(keywords.lower_left_y, value);
    }
    known = false;
    return true;
}

/// False when the value is not of the keyword's kind.
bool StoreKeyword(Keywords& keywords, const std::string& keyword, std::string_view value) {
    bool known = false;
    const bool stored = StoreSizeKeyword(keywords, keyword, value, known) &&
                        (known || StorePlaceKeyword(keywords, keyword, value, known));
    if (!stored || known) return stored;
    if (keyword == "pixeltype") return StoreKind(keywords, LowerCase(value));
    if (keyword == "byteorder") return StoreByteOrder(keywords, LowerCase(value));
    if (keyword == "layout") {
        keywords.layout = LowerCase(value);
        return keywords.layout == "bil" || keywords.layout == "bip" || keywords.layout == "bsq";
    }
    if (keyword == "nodata" || keyword == "nodata_value") {
        keywords.no_data = ParseFinite(value);
        // Cells that are not a number hold no data in any case.
        return keywords.no_data || LowerCase(value) == "nan";
    }
    return true;
}

std::optional<Keywords> ParseKeywords(std::string_view text, std::string& why) {
    Keywords keywords;
    for (int line = 1; !text.empty(); ++line) {
        std::string_view rest = TakeLine(text);
        const std::string_view word = TakeWord(rest);
        const std::string_view value = TakeWord(rest);
        if (!StoreKeyword(keywords, LowerCase(word.substr(0, 20)), value)) {
            why = fmt::format("line {} of its header: {} cannot be {}", line, Shown(word),
                              value.empty() ? "empty" : Shown(value));
            return std::nullopt;
        }
    }
    return keywords;
}

/// Signed and unsigned samples are told apart by PIXELTYPE. Where it is missing they are unsigned,
/// but elevation models that are older than that keyword state a negative value for no data.
RawGridHeader::Kind KindOf(const Keywords& keywords, bool float_file) {
    using enum RawGridHeader::Kind;
    if (keywords.kind) return *keywords.kind;
    if (float_file) return kFloat;
    const bool below_0 = keywords.no_data && *keywords.no_data < 0.0;
    return below_0 && keywords.bits.value_or(8) > 8 ? kSigned : kUnsigned;
}

bool StorePlace(const Keywords& keywords, GridPlace& place, int rows, std::string& why) {
    place.cell_width = keywords.x_size.value_or(1.0);
    place.cell_height = keywords.y_size.value_or(place.cell_width);
    if (place.cell_width <= 0.0 || place.cell_height <= 0.0) {
        why = "the cell size in its header is not above 0";
        return false;
    }
    if (keywords.upper_left_x && keywords.upper_left_y) {
        place.x = *keywords.upper_left_x;
        place.y = *keywords.upper_left_y;
    } else if (keywords.lower_left_x && keywords.lower_left_y) {
        const double half_cell_x = keywords.x_of_corner ? 0.5 : 0.0;
        const double half_cell_y = keywords.y_of_corner ? 0.5 : 0.0;
        place.x = *keywords.lower_left_x + half_cell_x * place.cell_width;
        place.y = *keywords.lower_left_y + (rows - 1 + half_cell_y) * place.cell_height;
    }
    return true;
}

/// A stored sample, from bytes that may lie anywhere and in the other order.
template <class Stored>
Stored Load(const std::uint8_t* bytes, bool other_order) {
    std::array<std::uint8_t, sizeof(Stored)> ordered;
    std::memcpy(ordered.data(), bytes, sizeof(Stored));
    if (other_order) std::reverse(ordered.begin(), ordered.end());
    return std::bit_cast<Stored>(ordered);
}

template <class Stored, class Sample>
Samples Decode(const RawGridHeader& header, std::span<const std::uint8_t> bytes) {
    const bool other_order = header.big_endian != (std::endian::native == std::endian::big);
    const auto columns = static_cast<std::size_t>(header.columns);
    const auto row_bytes = static_cast<std::size_t>(header.row_bytes);
    Array<Sample> samples(header.rows, header.columns);
    Sample* to = samples.data();
    for (std::size_t row = 0; row < static_cast<std::size_t>(header.rows); ++row) {
        const std::uint8_t* from = bytes.data() + row * row_bytes;
        if (std::is_same_v<Stored, Sample> && !other_order) {
            std::memcpy(to, from, columns * sizeof(Sample));
        } else {
            for (std::size_t i = 0; i < columns; ++i)
                // NOLINTNEXTLINE(bugprone-signed-char-misuse,cert-str34-c): numbers, not characters
                to[i] = static_cast<Sample>(Load<Stored>(from + i * sizeof(Stored), other_order));
        }
        to += columns;
    }
    return samples;
}

std::optional<Samples> DecodeSamples(const RawGridHeader& header,
                                     std::span<const std::uint8_t> bytes, std::string& why) {
    using enum RawGridHeader::Kind;
    const bool is_signed = header.kind == kSigned;
    switch (header.bits) {
        case 8:
            return is_signed ? Decode<std::int8_t, std::int16_t>(header, bytes)
                             : Decode<std::uint8_t, std::uint8_t>(header, bytes);
        case 16:
            return is_signed ? Decode<std::int16_t, std::int16_t>(header, bytes)
                             : Decode<std::uint16_t, std::int32_t>(header, bytes);
        default:
            break;
    }
    if (header.kind == kFloat) return Decode<float, float>(header, bytes);
    Samples samples = Decode<std::int32_t, std::int32_t>(header, bytes);
    const auto& whole = std::get<Array<std::int32_t>>(samples);
    const auto negative = [](std::int32_t value) { return value < 0; };
    if (!is_signed && std::any_of(whole.begin(), whole.end(), negative)) {
        why = "it holds unsigned values above 2147483647";
        return std::nullopt;
    }
    return samples;
}

}  // namespace

std::optional<RawGridHeader> ParseRawGridHeader(std::string_view text, bool float_file,
                                                std::string& why) {
    const std::optional<Keywords> keywords = ParseKeywords(text, why);
    if (!keywords) return std::nullopt;
    if (!keywords->rows || !keywords->columns) {
        why = fmt::format("its header lacks {}", keywords->rows ? "NCOLS" : "NROWS");
        return std::nullopt;
    }
    RawGridHeader header;
    header.rows = static_cast<int>(*keywords->rows);
    header.columns = static_cast<int>(*keywords->columns);
    header.bands = static_cast<int>(keywords->bands);
    header.kind = KindOf(*keywords, float_file);
    const bool is_float = header.kind == RawGridHeader::Kind::kFloat;
    header.bits = static_cast<int>(keywords->bits.value_or(is_float ? 32 : 8));
    header.big_endian = keywords->big_endian;
    header.skip_bytes = static_cast<std::uint64_t>(keywords->skip_bytes.value_or(0));
    header.no_data = keywords->no_data;
    if (header.bits != 32 && (is_float || (header.bits != 8 && header.bits != 16))) {
        why = fmt::format("its samples are of {} bits{}; grids of 8, 16 and 32 bits can be read",
                          header.bits, is_float ? " with floating point" : "");
        return std::nullopt;
    }
    // Only lines of bands can be padded; with one band both keywords tell the same.
    header.row_bytes = header.SampleRowBytes();
    if (keywords->layout == "bil") {
        const auto stated =
            keywords->total_row_bytes ? keywords->total_row_bytes : keywords->band_row_bytes;
        if (stated && static_cast<std::uint64_t>(*stated) < header.row_bytes) {
            why = fmt::format("its header states {} bytes a row, and {} samples take {}", *stated,
                              header.columns, header.row_bytes);
            return std::nullopt;
        }
        if (stated) header.row_bytes = static_cast<std::uint64_t>(*stated);
    }
    if (!StorePlace(*keywords, header.place, header.rows, why)) return std::nullopt;
    return header;
}

std::optional<Grid> DecodeRawGrid(const RawGridHeader& header, std::span<const std::uint8_t> bytes,
                                  std::string& why) {
    if (header.bands != 1) {
        why = fmt::format("it has {} bands, and a grid has one", header.bands);
        return std::nullopt;
    }
    const std::uint64_t there =
        bytes.size() - std::min<std::uint64_t>(bytes.size(), header.skip_bytes);
    const std::uint64_t row = header.SampleRowBytes();
    const auto more_rows = static_cast<std::uint64_t>(header.rows) - 1;
    if (row > there || more_rows > (there - row) / header.row_bytes) {
        why = fmt::format(
            "its {} bytes are too few for the {} x {} cells of {} bits that its header states",
            bytes.size(), header.columns, header.rows, header.bits);
        return std::nullopt;
    }
    Grid grid;
    grid.rows = header.rows;
    grid.columns = header.columns;
    grid.no_data = header.no_data;
    grid.place = header.place;
    std::optional<Samples> samples =
        DecodeSamples(header, bytes.subspan(static_cast<std::size_t>(header.skip_bytes)), why);
    if (!samples) return std::nullopt;
    grid.samples = std::move(*samples);
    return grid;
}

std::string RawGridHeaderText(const Grid& grid) {
    const std::size_t sample_bytes =
        std::visit([](const auto& samples) { return sizeof(*samples.data()); }, grid.samples);
    const bool is_float = std::holds_alternative<Array<float>>(grid.samples);
    const bool is_byte = std::holds_alternative<Array<std::uint8_t>>(grid.samples);
    std::string text =
        fmt::format("BYTEORDER {}\nLAYOUT BIL\nNROWS {}\nNCOLS {}\nNBANDS 1\nNBITS {}\n",
                    std::endian::native == std::endian::big ? "M" : "I", grid.rows, grid.columns,
                    sample_bytes * 8);
    text += fmt::format("PIXELTYPE {}\n", is_float  ? "FLOAT"
                                          : is_byte ? "UNSIGNEDINT"
                                                    : "SIGNEDINT");
    if (grid.no_data) text += fmt::format("NODATA {}\n", *grid.no_data);
    if (grid.place.HasPosition())
        text += fmt::format("ULXMAP {}\nULYMAP {}\n", grid.place.x, grid.place.y);
    text += fmt::format("XDIM {}\nYDIM {}\n", grid.place.cell_width, grid.place.cell_height);
    return text;
}

}  // namespace rastrel_cli
