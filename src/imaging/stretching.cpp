#include "imaging/stretching.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <vector>

#include "core/pixel_reader.h"

namespace rastrel {

namespace {

/// How many pixels have each value.
using Histogram = std::array<std::uint64_t, 256>;

struct Bounds {
    double low = 0;
    double high = 0;
};

/// Of blue, green and red. Two counters each, in turn, so that runs of one value do not wait for
/// themselves.
std::array<Histogram, 3> HistogramsOf(const RasterImage& image) {
    std::array<std::array<Histogram, 3>, 2> counts = {};
    PixelReader reader(image, PixelForm::kBgr);
    std::vector<std::uint8_t> row(static_cast<std::size_t>(image.Width()) * 3);
    for (int y = 0; y < image.Height(); ++y) {
        reader.Read(0, y, row);
        for (std::size_t at = 0; at < row.size(); at += 3) {
            auto& set = counts[at & 1];
            ++set[0][row[at]];
            ++set[1][row[at + 1]];
            ++set[2][row[at + 2]];
        }
    }
    for (std::size_t channel = 0; channel < 3; ++channel) {
        for (std::size_t value = 0; value < 256; ++value)
            counts[0][channel][value] += counts[1][channel][value];
    }
    return counts[0];
}

std::uint64_t PixelsOf(const Histogram& histogram) {
    return std::accumulate(histogram.begin(), histogram.end(), std::uint64_t{0});
}

Bounds DeviationBounds(const Histogram& histogram, double k) {
    const auto pixels = static_cast<double>(PixelsOf(histogram));
    std::uint64_t sum = 0;
    for (std::size_t value = 0; value < 256; ++value)
        sum += histogram[value] * value;
    const double mean = static_cast<double>(sum) / pixels;
    double squares = 0;
    for (std::size_t value = 0; value < 256; ++value) {
        const double difference = static_cast<double>(value) - mean;
        squares += static_cast<double>(histogram[value]) * difference * difference;
    }
    const double deviation = std::sqrt(squares / (pixels - 1));
    return {mean - k * deviation, mean + k * deviation};
}

/// The outermost values behind which at most a share of the pixels lies; the extremes for 0.
Bounds TailBounds(const Histogram& histogram, double percent) {
    const auto spared = static_cast<double>(PixelsOf(histogram)) * percent / 100;
    const auto first_beyond = [spared](auto begin, auto end) {
        double passed = 0;
        auto at = begin;
        while (at + 1 != end && passed + static_cast<double>(*at) <= spared)
            passed += static_cast<double>(*at++);
        return at - begin;
    };
    const auto low = first_beyond(histogram.begin(), histogram.end());
    const auto high = 255 - first_beyond(histogram.rbegin(), histogram.rend());
    return {static_cast<double>(low), static_cast<double>(high)};
}

StretchTable Identity() {
    StretchTable table;
    std::iota(table.begin(), table.end(), std::uint8_t{0});
    return table;
}

StretchTable LinearTable(const Bounds& bounds) {
    if (!(bounds.low < bounds.high)) return Identity();
    StretchTable table;
    for (std::size_t value = 0; value < table.size(); ++value) {
        const double place =
            (static_cast<double>(value) - bounds.low) * 255 / (bounds.high - bounds.low);
        table[value] = static_cast<std::uint8_t>(std::clamp(place, 0.0, 255.0));
    }
    return table;
}

StretchTable EqualisedTable(const Histogram& histogram) {
    const std::uint64_t pixels = PixelsOf(histogram);
    const auto* first = std::find_if(histogram.begin(), histogram.end(),
                                     [](std::uint64_t count) { return count > 0; });
    if (first == histogram.end() || *first == pixels) return Identity();
    // The share of the pixels up to a value, of those above the least one.
    StretchTable table = {};
    std::uint64_t passed = 0;
    for (std::size_t value = 0; value < table.size(); ++value) {
        passed += histogram[value];
        const std::uint64_t above = passed > *first ? passed - *first : 0;
        table[value] =
            static_cast<std::uint8_t>((above * 255 + (pixels - *first) / 2) / (pixels - *first));
    }
    return table;
}

StretchTable TableOf(const Histogram& histogram, StretchMethod method, double k) {
    switch (method) {
        case StretchMethod::kDeviations:
            return LinearTable(DeviationBounds(histogram, k));
        case StretchMethod::kRange:
            return LinearTable(TailBounds(histogram, 0));
        case StretchMethod::kTails:
            return LinearTable(TailBounds(histogram, k));
        default:
            return EqualisedTable(histogram);
    }
}

bool Takes(StretchMethod method, double k) {
    if (method == StretchMethod::kDeviations) return std::isfinite(k) && k > 0;
    return method != StretchMethod::kTails || (k >= 0 && k <= 50);
}

}  // namespace

std::optional<StretchTables> CalculateStretching(const RasterImage& image, StretchMethod method,
                                                 double k) {
    if (!image.HasPlainRows() || !Takes(method, k)) return std::nullopt;
    const auto histograms = HistogramsOf(image);
    return StretchTables{.red = TableOf(histograms[2], method, k),
                         .green = TableOf(histograms[1], method, k),
                         .blue = TableOf(histograms[0], method, k)};
}

bool ApplyStretching(RasterImage& image, const StretchTables& tables) {
    if (!image.HasPlainRows()) return false;
    if (const Palette* palette = image.GetPalette()) {
        std::vector<Color> colors(palette->Entries().begin(), palette->Entries().end());
        for (Color& color : colors)
            color = {tables.red[color.red], tables.green[color.green], tables.blue[color.blue]};
        image.SetPalette(Palette(colors));
        return true;
    }
    if (image.Bits() <= 16) return false;
    const auto pixel_bytes = static_cast<std::size_t>(image.Bits() / 8);
    const std::size_t used = static_cast<std::size_t>(image.Width()) * pixel_bytes;
    for (int y = 0; y < image.Height(); ++y) {
        const auto row = image.Row(y);
        for (std::size_t at = 0; at < used; at += pixel_bytes) {
            row[at] = tables.blue[row[at]];
            row[at + 1] = tables.green[row[at + 1]];
            row[at + 2] = tables.red[row[at + 2]];
        }
    }
    return true;
}

}  // namespace rastrel
