#include "formats/gif/gif_rows.h"

#include <algorithm>
#include <array>

namespace rastrel {

namespace {

/// Interlaced rows come in four passes, each from its first row on in its step.
struct Pass {
    int first;
    int step;
};
constexpr std::array<Pass, 4> kPasses = {{{0, 8}, {4, 8}, {2, 4}, {1, 2}}};

}  // namespace

void GifRows::Append(std::span<const std::uint8_t> pixels) {
    const auto width = static_cast<std::size_t>(raster_.Width());
    while (!pixels.empty() && !Complete()) {
        const auto part = pixels.first(std::min(pixels.size(), width - column_));
        std::copy(part.begin(), part.end(), raster_.PictureRow(row_).subspan(column_).begin());
        pixels = pixels.subspan(part.size());
        column_ += part.size();
        if (column_ < width) return;
        column_ = 0;
        NextRow();
    }
}

void GifRows::NextRow() {
    row_ += interlaced_ ? kPasses[pass_].step : 1;
    // Low images have no rows in some passes.
    while (interlaced_ && Complete() && pass_ + 1 < kPasses.size())
        row_ = kPasses[++pass_].first;
}

}  // namespace rastrel
