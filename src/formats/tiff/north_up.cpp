#include "formats/tiff/north_up.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace rastrel {

NorthUpGrid::NorthUpGrid(const QVgeotif& geotif)
    : geotif_(geotif),
      cells_{QVgeotif_Affine_xmin(geotif), QVgeotif_Affine_ymax(geotif),
             QVgeotif_Affine_Cellsize(geotif)} {}

std::optional<Size> NorthUpGrid::GridSize() const {
    const auto width = CountCells(QVgeotif_Affine_xmax(geotif_) - cells_.x_min, cells_.cell_size);
    const auto height = CountCells(cells_.y_max - QVgeotif_Affine_ymin(geotif_), cells_.cell_size);
    if (!width || !height) return std::nullopt;
    const Size size{*width, *height};
    // A picture turned by 45 degrees stays below the square of its sides' sum; tags that squeeze it
    // into a line would make a few pixels fill all memory.
    constexpr double kMostSpread = 64;
    const auto sides = static_cast<double>(geotif_.size.width) + geotif_.size.height;
    if (static_cast<double>(size.width) * size.height > kMostSpread * sides * sides)
        return std::nullopt;
    return size;
}

Rect NorthUpGrid::SourceOf(const Rect& part) const {
    const double infinity = std::numeric_limits<double>::infinity();
    double left = infinity;
    double top = infinity;
    double right = -infinity;
    double bottom = -infinity;
    for (const std::int64_t column :
         {std::int64_t{part.x}, std::int64_t{part.x} + part.width - 1}) {
        for (const std::int64_t row :
             {std::int64_t{part.y}, std::int64_t{part.y} + part.height - 1}) {
            double x = cells_.CenterX(column);
            double y = cells_.CenterY(row);
            QVgeotif_AffineInversa(geotif_, &x, &y);
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = std::max(bottom, y);
        }
    }
    // Two pixels more on every side than rounding, of whichever kind, can reach.
    constexpr double kMargin = 2;
    const auto side = [](double least, double largest, int limit, int& from, int& count) {
        // Comparisons in this form take what is no number as the whole side.
        from = least - kMargin > 0 ? static_cast<int>(std::min<double>(least - kMargin, limit)) : 0;
        const int end =
            largest + kMargin < limit ? static_cast<int>(std::max(largest + kMargin, 0.0)) : limit;
        count = std::max(end - from, 0);
    };
    Rect source;
    side(left, right, geotif_.size.width, source.x, source.width);
    side(top, bottom, geotif_.size.height, source.y, source.height);
    return source;
}

DibBlock NorthUpGrid::Fill(const Rect& part, int reduction, const NorthUpSource& source) const {
    const int width = (part.width - 1) / reduction + 1;
    const int height = (part.height - 1) / reduction + 1;
    DibBlock grid = DibBlock::Create(width, height, source.bits);
    if (!grid) return {};
    const auto pixel_bytes = static_cast<std::size_t>(source.bits / 8);
    const auto row_bytes_of = [&source](int pixels) {
        return static_cast<std::size_t>(DibRowBytes(static_cast<std::uint32_t>(source.bits),
                                                    static_cast<std::uint32_t>(pixels)));
    };
    const Rect& there = source.rectangle;
    const std::size_t source_row_bytes = row_bytes_of(there.width);
    const std::uint8_t* source_rows = there.IsEmpty() ? nullptr : source.block.Rows();
    const std::array<std::uint8_t, 3> blank = {source.background, source.background,
                                               source.background};
    // The pixel under a place of the picture, columns and rows from its upper left.
    const auto pixel_at = [&](double x, double y) {
        const auto nearest_column = NearestPixel(x);
        const auto nearest_row = NearestPixel(y);
        if (!nearest_column || !nearest_row) return blank.data();
        const std::int64_t column = *nearest_column - there.x;
        const std::int64_t row = *nearest_row - there.y;
        if (column < 0 || column >= there.width || row < 0 || row >= there.height)
            return blank.data();
        return source_rows + static_cast<std::size_t>(there.height - 1 - row) * source_row_bytes +
               static_cast<std::size_t>(column) * pixel_bytes;
    };
    for (int j = 0; j < height; ++j) {
        std::uint8_t* out =
            grid.Rows() + row_bytes_of(width) * static_cast<std::size_t>(height - 1 - j);
        const double cell_y = cells_.CenterY(part.y + std::int64_t{j} * reduction);
        for (int i = 0; i < width; ++i, out += pixel_bytes) {
            double x = cells_.CenterX(part.x + std::int64_t{i} * reduction);
            double y = cell_y;
            QVgeotif_AffineInversa(geotif_, &x, &y);
            std::memcpy(out, pixel_at(x, y), pixel_bytes);
        }
    }
    return grid;
}

}  // namespace rastrel
