#include "imaging/rectify.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "core/cell_grid.h"
#include "core/fill.h"
#include "core/pixel_rows.h"
#include "imaging/cell_pixels.h"
#include "imaging/shown_rows.h"

namespace rastrel {

namespace {

/// The size in cells; none when the box and cells are none that an image could have.
std::optional<Size> GridSize(const MapBox& box, double cell_size) {
    for (const double value : {box.x_min, box.y_min, box.x_max, box.y_max, cell_size}) {
        if (!std::isfinite(value)) return std::nullopt;
    }
    if (cell_size <= 0) return std::nullopt;
    const auto width = CountCells(box.x_max - box.x_min, cell_size);
    const auto height = CountCells(box.y_max - box.y_min, cell_size);
    if (!width || !height) return std::nullopt;
    return Size{*width, *height};
}

/// Fills an image with what cells without a pixel get unless a colour is given.
void FillWithWhite(const RasterImage& raster) {
    std::uint8_t bytes = 0xff;
    if (raster.Bits() <= 8 && raster.GetPalette() != nullptr) {
        const auto colors = raster.GetPalette()->Entries();
        const auto white = std::ranges::find(colors, Color{255, 255, 255});
        if (white != colors.end()) {
            const auto index = static_cast<unsigned>(white - colors.begin());
            // As often as it fits a byte.
            const unsigned repeated = raster.Bits() == 1   ? index * 0xff
                                      : raster.Bits() == 4 ? index * 0x11
                                                           : index;
            bytes = static_cast<std::uint8_t>(repeated);
        }
    }
    for (int y = 0; y < raster.Height(); ++y)
        std::ranges::fill(raster.Row(y), bytes);
}

/// Rows are made so many at a time, chunk by chunk, so that the pixels under them stay in the cache
/// even where rows of the picture stand across.
constexpr int kMostBandRows = 32;

class Rectifier {
  public:
    Rectifier(const Rectification& order, const Rect& used, CellPixels& pixels,
              const RasterImage& result)
        : order_(order),
          used_(used),
          pixels_(pixels),
          result_(result),
          pixel_bytes_(static_cast<std::size_t>(std::max(result.Bits(), 8)) / 8),
          grid_{order.box.x_min, order.box.y_max, order.cell_size} {
        if (result.Bits() < 8)
            indices_.resize(static_cast<std::size_t>(result.Width()) * kMostBandRows);
    }

    /// False when it is told to end.
    [[nodiscard]] bool Run() {
        const int height = result_.Height();
        // Not less often than at every percent.
        const int band_rows = std::clamp(height / 100, 1, kMostBandRows);
        for (int y = 0; y < height; y += band_rows) {
            if (!Tell(static_cast<double>(y) / height)) return false;
            MakeBand(y, std::min(band_rows, height - y));
        }
        return Tell(1);
    }

  private:
    struct CellsWithPixels {
        simd::CellRow row;
        CellRun run;
    };

    [[nodiscard]] bool Tell(double fraction) const {
        return !order_.progress || order_.progress(fraction);
    }

    [[nodiscard]] CellsWithPixels CellsOf(int y) const {
        const AffineMap& map = order_.to_pixel;
        const double map_y = grid_.CenterY(y);
        CellsWithPixels cells;
        cells.row = {grid_.x_min,
                     grid_.cell_size,
                     {map.x_column, map.x_row * map_y, map.x_origin},
                     {map.y_column, map.y_row * map_y, map.y_origin}};
        // A fraction is cut off towards zero, from both sides.
        const auto begin = [](int first) { return first == 0 ? std::nextafter(-1.0, 0.0) : first; };
        cells.run = RunWithin(cells.row, cells.row.x, {0, result_.Width()}, kNearestPixelShift,
                              begin(used_.x), used_.x + used_.width);
        cells.run = RunWithin(cells.row, cells.row.y, cells.run, kNearestPixelShift, begin(used_.y),
                              used_.y + used_.height);
        return cells;
    }

    void MakeBand(int first, int rows) {
        band_.clear();
        CellRun all{result_.Width(), 0};
        for (int y = 0; y < rows; ++y) {
            band_.push_back(CellsOf(first + y));
            const CellRun& run = band_.back().run;
            if (run.IsEmpty()) continue;
            all = {std::min(all.first, run.first), std::max(all.end, run.end)};
            if (!indices_.empty())
                UnpackIndices(result_.PictureRow(first + y), result_.Bits(), 0, IndexRow(y));
        }
        for (int x = all.first; x < all.end; x += CellPixels::kMostCells) {
            for (int y = 0; y < rows; ++y)
                MakeChunk(first, y, {x, std::min(x + CellPixels::kMostCells, all.end)});
        }
        for (int y = 0; y < rows && !indices_.empty(); ++y) {
            if (!band_[static_cast<std::size_t>(y)].run.IsEmpty())
                PackIndices(IndexRow(y), result_.Bits(), result_.PictureRow(first + y));
        }
    }

    /// The cells of a chunk in row y of the band.
    void MakeChunk(int band_first, int y, CellRun chunk) {
        const auto& [row, run] = band_[static_cast<std::size_t>(y)];
        const CellRun cells{std::max(chunk.first, run.first), std::min(chunk.end, run.end)};
        if (cells.IsEmpty()) return;
        const auto out = indices_.empty() ? result_.PictureRow(band_first + y) : IndexRow(y);
        pixels_.Find(row, cells, &out[static_cast<std::size_t>(cells.first) * pixel_bytes_]);
    }

    [[nodiscard]] std::span<std::uint8_t> IndexRow(int y) {
        const auto width = static_cast<std::size_t>(result_.Width());
        return std::span(indices_).subspan(static_cast<std::size_t>(y) * width, width);
    }

    const Rectification& order_;
    Rect used_;
    CellPixels& pixels_;
    const RasterImage& result_;
    std::size_t pixel_bytes_;
    CellGrid grid_;
    std::vector<CellsWithPixels> band_;
    std::vector<std::uint8_t> indices_;  ///< a band's, of less than 8 bits
};

}  // namespace

bool Rectify(const RasterImage& source, const Rectification& order, RasterImage& result) {
    const auto size = GridSize(order.box, order.cell_size);
    const Rect all{0, 0, source.Width(), source.Height()};
    const Rect used = Clip(order.used.value_or(all), source.PixelSize());
    if (!size || !source.HasPlainRows() || used.IsEmpty() || order.way == Resampling::kArea)
        return false;
    const bool keeps_pixels = order.way == Resampling::kNearest;
    RasterImage made;
    if (!(keeps_pixels ? MakeAlike(source, *size, made) : MakeSmooth(source, *size, made)))
        return false;
    if (order.background)
        Fill(made, *order.background);
    else
        FillWithWhite(made);
    const auto pixels =
        keeps_pixels ? MakeNearestCells(source, used) : MakeSmoothCells(source, used, order.way);
    if (!pixels || !Rectifier(order, used, *pixels, made).Run()) return false;
    result.TakeOver(made);
    return true;
}

}  // namespace rastrel
