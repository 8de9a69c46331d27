#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "core/geometry.h"
#include "core/raster_image.h"
#include "imaging/rectify_kernels.h"
#include "imaging/resampling.h"

namespace rastrel {

/// The cells of a row from first up to end, which is not one of them.
struct CellRun {
    int first = 0;
    int end = 0;

    [[nodiscard]] bool IsEmpty() const { return first >= end; }
};

/// Of some cells of a row, those whose coordinate, plus shift, is at least from and less than to.
/// They stand side by side: along a row coordinates only grow, or only fall.
[[nodiscard]] CellRun RunWithin(const simd::CellRow& cells, const simd::CoordinateLine& line,
                                CellRun among, double shift, double from, double to);

/// Finds the pixels of a picture for runs of cells. The picture must stay as it is meanwhile.
class CellPixels {
  public:
    CellPixels() = default;
    CellPixels(const CellPixels&) = delete;
    CellPixels& operator=(const CellPixels&) = delete;
    virtual ~CellPixels() = default;

    /// The pixels of cells whose nearest pixels are all in the used part of the picture. No more
    /// cells at a time than kMostCells.
    virtual void Find(const simd::CellRow& cells, CellRun run, std::uint8_t* out) = 0;

    static constexpr int kMostCells = 256;
};

/// The nearest pixels; those of less than 8 bits as indices of a byte each. Null without memory.
[[nodiscard]] std::unique_ptr<CellPixels> MakeNearestCells(const RasterImage& source,
                                                           const Rect& used);
/// Bilinear or bicubic interpolation of the pixels as they are shown, beyond the middles of the
/// used part's edge pixels as at the edge. Null without memory.
[[nodiscard]] std::unique_ptr<CellPixels> MakeSmoothCells(const RasterImage& source,
                                                          const Rect& used, Resampling way);

}  // namespace rastrel
