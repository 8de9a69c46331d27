#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>

#include "grid_files.h"
#include "text.h"

namespace rastrel_cli {

namespace {

struct AsciiHeader {
    std::optional<std::int64_t> columns;
    std::optional<std::int64_t> rows;
    std::optional<double> x;
    std::optional<double> y;
    bool x_of_corner = false;
    bool y_of_corner = false;
    std::optional<double> cell_width;
    std::optional<double> cell_height;
    std::optional<double> no_data;
};

/// Where in a text something stands, as messages tell it.
std::string LineOf(std::string_view text, const char* at) {
    return fmt::format("line {}", std::count(text.data(), at, '\n') + 1);
}

bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// The header ends where the values begin; "nan" and "inf" may be values.
bool IsKeyword(const std::string& lower) {
    return !lower.empty() && IsLetter(lower.front()) && lower != "nan" && lower != "inf" &&
           lower != "infinity";
}

/// Stores what a keyword states; false when it is none or its value is not of its kind.
bool StoreKeyword(AsciiHeader& header, const std::string& keyword, std::string_view value) {
    constexpr std::int64_t kMostSide = std::numeric_limits<std::int32_t>::max();
    const auto store = [value](auto& field) {
        field = ParseFinite(value);
        return field.has_value();
    };
    if (keyword == "ncols") {
        header.columns = ParseWhole(value, 1, kMostSide);
        return header.columns.has_value();
    }
    if (keyword == "nrows") {
        header.rows = ParseWhole(value, 1, kMostSide);
        return header.rows.has_value();
    }
    if (keyword == "nodata_value" || keyword == "nodata") {
        header.no_data = ParseFinite(value);
        // Cells that are not a number hold no data in any case.
        return header.no_data || LowerCase(value) == "nan";
    }
    if (keyword == "cellsize") {
        store(header.cell_width);
        header.cell_height = header.cell_width;
        return header.cell_width.has_value();
    }
    if (keyword == "dx") return store(header.cell_width);
    if (keyword == "dy") return store(header.cell_height);
    if (keyword == "xllcorner" || keyword == "xllcenter") {
        header.x_of_corner = keyword == "xllcorner";
        return store(header.x);
    }
    if (keyword == "yllcorner" || keyword == "yllcenter") {
        header.y_of_corner = keyword == "yllcorner";
        return store(header.y);
    }
    return false;
}

/// Takes the header off the front of a text.
std::optional<AsciiHeader> TakeHeader(std::string_view& text, std::string& why) {
    const std::string_view whole = text;
    AsciiHeader header;
    while (true) {
        std::string_view rest = text;
        const std::string_view word = TakeWord(rest);
        const std::string keyword = LowerCase(word.substr(0, 20));
        if (!IsKeyword(keyword)) return header;
        const std::string_view value = TakeWord(rest);
        if (!StoreKeyword(header, keyword, value)) {
            why = fmt::format("{}: {} {} is no line of an ESRI ASCII grid's header",
                              LineOf(whole, word.data()), Shown(word), Shown(value));
            return std::nullopt;
        }
        text = rest;
    }
}

/// What a complete header says of the grid; the samples are still missing.
std::optional<Grid> GridOf(const AsciiHeader& header, std::string& why) {
    if (!header.columns || !header.rows || !header.cell_width || !header.cell_height) {
        why = fmt::format("its header lacks {}: it is no ESRI ASCII grid", !header.columns ? "ncols"
                                                                           : !header.rows
                                                                               ? "nrows"
                                                                               : "cellsize");
        return std::nullopt;
    }
    if (*header.cell_width <= 0.0 || *header.cell_height <= 0.0) {
        why = "its cell size is not above 0";
        return std::nullopt;
    }
    Grid grid;
    grid.columns = static_cast<int>(*header.columns);
    grid.rows = static_cast<int>(*header.rows);
    grid.no_data = header.no_data;
    grid.place.cell_width = *header.cell_width;
    grid.place.cell_height = *header.cell_height;
    if (header.x && header.y) {
        // The file tells of the lower left cell, its corner or its centre.
        const double half_cell_x = header.x_of_corner ? 0.5 : 0.0;
        const double half_cell_y = header.y_of_corner ? 0.5 : 0.0;
        grid.place.x = *header.x + half_cell_x * *header.cell_width;
        grid.place.y = *header.y + (grid.rows - 1 + half_cell_y) * *header.cell_height;
    }
    return grid;
}

/// Reads numbers that are divided by blanks.
class ValueReader {
  public:
    explicit ValueReader(std::string_view text)
        : at_(text.data()), end_(text.data() + text.size()) {}

    /// As many numbers as are wanted, of the type that is wanted; returns how many there are before
    /// the first that is not of the type, or the end.
    template <class Sample>
    std::size_t Read(Sample* samples, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            SkipBlanks();
            const char* start = at_ != end_ && *at_ == '+' ? at_ + 1 : at_;
            const auto parsed = std::from_chars(start, end_, samples[i]);
            if (parsed.ec != std::errc() || (parsed.ptr != end_ && !IsBlank(*parsed.ptr))) return i;
            at_ = parsed.ptr;
        }
        return count;
    }
    [[nodiscard]] bool AtEnd() {
        SkipBlanks();
        return at_ == end_;
    }
    [[nodiscard]] const char* At() const { return at_; }
    /// The word that is next.
    [[nodiscard]] std::string_view Word() const {
        std::string_view rest(at_, static_cast<std::size_t>(end_ - at_));
        return TakeWord(rest);
    }

  private:
    void SkipBlanks() {
        while (at_ != end_ && IsBlank(*at_))
            ++at_;
    }

    const char* at_;
    const char* end_;
};

/// All values as whole numbers if they are, else as floats; false when there are too few.
bool ReadValues(ValueReader& reader, Grid& grid) {
    Array<std::int32_t> whole(grid.rows, grid.columns);
    std::size_t count = reader.Read(whole.data(), whole.size());
    if (count == whole.size()) {
        grid.samples = std::move(whole);
        return true;
    }
    Array<float> floats(grid.rows, grid.columns);
    std::transform(whole.begin(), whole.begin() + count, floats.begin(),
                   [](std::int32_t value) { return static_cast<float>(value); });
    count += reader.Read(floats.data() + count, floats.size() - count);
    const bool all_there = count == floats.size();
    grid.samples = std::move(floats);
    return all_there;
}

}  // namespace

std::optional<Grid> ParseAsciiGrid(std::string_view text, std::string& why) {
    std::string_view values = text;
    const std::optional<AsciiHeader> header = TakeHeader(values, why);
    if (!header) return std::nullopt;
    std::optional<Grid> grid = GridOf(*header, why);
    if (!grid) return std::nullopt;
    // A digit for each value and a blank between two: a promise of more is not worth the memory.
    const std::string size = fmt::format("{} x {} cells", grid->columns, grid->rows);
    const auto columns = static_cast<std::uint64_t>(grid->columns);
    if (columns * static_cast<std::uint64_t>(grid->rows) > values.size() / 2 + 1) {
        why = fmt::format("it is too short for the {} that its header states", size);
        return std::nullopt;
    }
    ValueReader reader(values);
    if (!ReadValues(reader, *grid)) {
        why = reader.AtEnd()
                  ? fmt::format("it ends before the last of the {} that its header states", size)
                  : fmt::format("{}: {} is no number that a cell can hold",
                                LineOf(text, reader.At()), Shown(reader.Word()));
        return std::nullopt;
    }
    if (!reader.AtEnd()) {
        why = fmt::format("{}: there are more values than the {} that its header states",
                          LineOf(text, reader.At()), size);
        return std::nullopt;
    }
    return grid;
}

}  // namespace rastrel_cli
