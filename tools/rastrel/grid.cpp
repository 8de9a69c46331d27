#include "grid.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <span>
#include <type_traits>
#include <vector>

#include "grid_files.h"
#include "text.h"

namespace rastrel_cli {

namespace {

namespace fs = std::filesystem;

/// The library counts in 32 bits.
constexpr std::size_t kMostCells = std::numeric_limits<std::int32_t>::max();

std::string Extension(const std::string& name) {
    std::string extension = fs::path(name).extension().string();
    return extension.empty() ? "" : LowerCase(extension).substr(1);
}

bool IsAsciiGridName(const std::string& name) {
    const std::string extension = Extension(name);
    return extension == "asc" || extension == "grd";
}

std::optional<Grid> ReadRawGrid(const std::string& name, std::string& why) {
    const std::string header_name = HeaderName(name);
    const std::optional<std::string> header_text = ReadWholeFile(header_name, why);
    if (!header_text) {
        why = fmt::format("its header {}: {}", fs::path(header_name).filename().string(), why);
        return std::nullopt;
    }
    const auto header = ParseRawGridHeader(*header_text, Extension(name) == "flt", why);
    if (!header) return std::nullopt;
    const std::optional<std::string> bytes = ReadWholeFile(name, why);
    if (!bytes) return std::nullopt;
    return DecodeRawGrid(
        *header, std::span(reinterpret_cast<const std::uint8_t*>(bytes->data()), bytes->size()),
        why);
}

/// A number as samples of some type hold it; nothing when none of them can be equal to it.
template <class Sample>
std::optional<Sample> AsSample(double number) {
    if constexpr (std::is_floating_point_v<Sample>) {
        // The largest float is written with fewer digits than it has, and may come out larger.
        constexpr double kLargest = std::numeric_limits<Sample>::max();
        constexpr double kRounding = 1.0 + 1e-6;
        if (std::abs(number) > kLargest * kRounding) return std::nullopt;
        return static_cast<Sample>(std::clamp(number, -kLargest, kLargest));
    } else {
        if (number < std::numeric_limits<Sample>::min() ||
            number > std::numeric_limits<Sample>::max() || number != std::floor(number))
            return std::nullopt;
        return static_cast<Sample>(number);
    }
}

template <class Sample>
bool IsNumber(Sample value) {
    if constexpr (std::is_floating_point_v<Sample>) return !std::isnan(value);
    return true;
}

/// The mean of the values around a cell, of which at least one exists.
template <class Sample>
class Neighbors {
  public:
    Neighbors(const Grid& grid, const Array<Sample>& samples) : grid_(grid), samples_(samples) {}

    /// Nothing when no neighbour holds a value.
    [[nodiscard]] std::optional<Sample> Mean(int row, int column) const {
        double sum = 0.0;
        int count = 0;
        for (int r = std::max(row - 1, 0); r <= std::min(row + 1, grid_.rows - 1); ++r) {
            for (int c = std::max(column - 1, 0); c <= std::min(column + 1, grid_.columns - 1);
                 ++c) {
                const std::size_t at =
                    static_cast<std::size_t>(r) * static_cast<std::size_t>(grid_.columns) +
                    static_cast<std::size_t>(c);
                if (grid_.valid[at] == 0) continue;
                sum += static_cast<double>(samples_[at]);
                ++count;
            }
        }
        if (count == 0) return std::nullopt;
        return static_cast<Sample>(sum / count);
    }

  private:
    const Grid& grid_;
    const Array<Sample>& samples_;
};

template <class Sample>
void Fill(Grid& grid, Array<Sample>& samples) {
    const Neighbors<Sample> neighbors(grid, samples);
    std::size_t at = 0;
    for (int row = 0; row < grid.rows; ++row) {
        for (int column = 0; column < grid.columns; ++column, ++at) {
            if (grid.valid[at] == 0) samples[at] = neighbors.Mean(row, column).value_or(Sample{});
        }
    }
}

}  // namespace

bool GridPlace::HasSquareCells() const {
    // Sides are often written with a dozen digits.
    constexpr double kRounding = 1e-9;
    return std::abs(cell_width - cell_height) <= kRounding * cell_width;
}

bool IsRawGridName(const std::string& name) {
    const std::string extension = Extension(name);
    return extension == "bil" || extension == "bip" || extension == "bsq" || extension == "flt";
}

bool IsGridName(const std::string& name) {
    return IsRawGridName(name) || IsAsciiGridName(name);
}

std::string HeaderName(const std::string& name) {
    std::error_code error;
    const fs::path capitals = fs::path(name).replace_extension(".HDR");
    fs::path usual = fs::path(name).replace_extension(".hdr");
    return !fs::exists(usual, error) && fs::exists(capitals, error) ? capitals.string()
                                                                    : usual.string();
}

std::optional<Grid> ReadGrid(const std::string& name, std::string& why) {
    std::optional<Grid> grid;
    if (IsAsciiGridName(name)) {
        const std::optional<std::string> text = ReadWholeFile(name, why);
        if (text) grid = ParseAsciiGrid(*text, why);
    } else if (IsRawGridName(name)) {
        grid = ReadRawGrid(name, why);
    } else {
        why = "its extension is none of a grid: bil, bip, bsq, flt, asc or grd";
    }
    if (!grid || !FindValidCells(*grid, why)) return std::nullopt;
    return grid;
}

bool FindValidCells(Grid& grid, std::string& why) {
    if (grid.Cells() > kMostCells) {
        why = fmt::format("{} cells are more than can be worked with", grid.Cells());
        return false;
    }
    return std::visit(
        [&grid, &why](const auto& samples) {
            using Sample = std::remove_cvref_t<decltype(samples[0])>;
            const std::optional<Sample> no_data =
                grid.no_data ? AsSample<Sample>(*grid.no_data) : std::nullopt;
            const auto is_valid = [no_data](Sample value) {
                return IsNumber(value) && !(no_data && value == *no_data);
            };
            if (!std::all_of(samples.begin(), samples.end(), is_valid)) {
                grid.valid = Array<std::uint8_t>(grid.rows, grid.columns);
                std::transform(samples.begin(), samples.end(), grid.valid.begin(),
                               [&is_valid](Sample value) {
                                   return is_valid(value) ? std::uint8_t{255} : std::uint8_t{0};
                               });
            }
            if constexpr (std::is_floating_point_v<Sample>) {
                const auto infinite = std::find_if(samples.begin(), samples.end(),
                                                   [](Sample value) { return std::isinf(value); });
                if (infinite == samples.end()) return true;
                const std::int64_t at = infinite - samples.begin();
                why = fmt::format("the value in row {}, column {} is infinite",
                                  at / grid.columns + 1, at % grid.columns + 1);
                return false;
            }
            return true;
        },
        grid.samples);
}

void FillInvalidCells(Grid& grid) {
    if (grid.valid.Empty()) return;
    std::visit([&grid](auto& samples) { Fill(grid, samples); }, grid.samples);
}

Array<std::uint8_t> ValidNeighborhoods(const Grid& grid) {
    Array<std::uint8_t> result;
    if (grid.valid.Empty()) return result;
    const auto rows = static_cast<std::size_t>(grid.rows);
    const auto columns = static_cast<std::size_t>(grid.columns);
    // First along the rows, then across them.
    Array<std::uint8_t> along(grid.rows, grid.columns);
    for (std::size_t r = 0; r < rows; ++r) {
        const std::uint8_t* from = grid.valid.data() + r * columns;
        std::uint8_t* to = along.data() + r * columns;
        for (std::size_t c = 0; c < columns; ++c) {
            const std::size_t left = c == 0 ? 0 : c - 1;
            const std::size_t right = c + 1 == columns ? c : c + 1;
            to[c] = from[left] & from[c] & from[right];
        }
    }
    result = Array<std::uint8_t>(grid.rows, grid.columns);
    for (std::size_t r = 0; r < rows; ++r) {
        const std::uint8_t* here = along.data() + r * columns;
        const std::uint8_t* above = r == 0 ? here : here - columns;
        const std::uint8_t* below = r + 1 == rows ? here : here + columns;
        std::uint8_t* to = result.data() + r * columns;
        for (std::size_t c = 0; c < columns; ++c)
            to[c] = above[c] & here[c] & below[c];
    }
    return result;
}

}  // namespace rastrel_cli
