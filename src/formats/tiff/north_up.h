#pragma once

#include <cstdint>
#include <optional>

#include "core/cell_grid.h"
#include "core/dib_block.h"
#include "core/geometry.h"
#include "formats/tiff/geotiff.h"

namespace rastrel {

/// The pixels of a picture, or of a rectangle of it, and what stands where it has none.
struct NorthUpSource {
    const DibBlock& block;  ///< empty when the rectangle is
    Rect rectangle;
    int bits = 8;                    ///< 8 or 24
    std::uint8_t background = 0xff;  ///< all bytes of a pixel
};

/// A picture turned north-up: square cells over the box around it on the ground.
class NorthUpGrid {
  public:
    explicit NorthUpGrid(const QVgeotif& geotif);

    /// In cells; none where the box is out of all proportion to the picture.
    [[nodiscard]] std::optional<Size> GridSize() const;
    /// The part of the original picture that cells of a part of the grid take their pixels from,
    /// clipped to the picture; it may be empty.
    [[nodiscard]] Rect SourceOf(const Rect& part) const;
    /// Cells of a part of the grid, every reduction-th column and row of it: each the pixel of the
    /// original under its centre, or the background. Empty without memory.
    [[nodiscard]] DibBlock Fill(const Rect& part, int reduction, const NorthUpSource& source) const;

  private:
    QVgeotif geotif_;
    CellGrid cells_;
};

}  // namespace rastrel
