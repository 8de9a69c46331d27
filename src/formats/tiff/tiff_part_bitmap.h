#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "core/dib_block.h"
#include "core/geometry.h"
#include "formats/tiff/tiff_layout.h"
#include "formats/tiff/tiff_rows.h"

namespace rastrel {

/// The part of a picture as its file counts rows, which may go up.
[[nodiscard]] Rect TiffFilePart(const TiffLayout& layout, const Rect& part);

/// The bitmap of a part of a picture, every reduction-th column and row of it, being filled with
/// decoded strips and tiles.
class TiffPartBitmap {
  public:
    /// The layout must outlive this. Without memory there is no block.
    TiffPartBitmap(const TiffLayout& layout, const Rect& part, int reduction);

    [[nodiscard]] bool HasBlock() const { return static_cast<bool>(block_); }
    [[nodiscard]] DibBlock Take() { return std::move(block_); }

    /// Puts decoded rows, whose first pixel stands at a column and row of the file, where they
    /// belong, as far as they do.
    void Put(const TiffRows& rows, std::int64_t column, std::int64_t row);

    /// Whether rows of the file are as long here as there, so that they can be decoded right where
    /// they belong: a strip as large as the image then needs no memory of its own.
    [[nodiscard]] bool HasRoomForRows() const;
    /// The memory of count rows from a row of the file on, to be filled with them one behind the
    /// other.
    [[nodiscard]] std::uint8_t* RoomFor(std::uint32_t row, std::uint32_t count) const;
    /// Makes pixels of the rows there, each in its place.
    void ArrangeRoom(std::uint8_t* room, std::uint32_t count);

  private:
    [[nodiscard]] int Width() const { return (part_.width - 1) / reduction_ + 1; }
    [[nodiscard]] int Height() const { return (part_.height - 1) / reduction_ + 1; }
    /// count pixels, from x of the part on, into the picture's row y.
    void PutRow(const TiffRows& rows, std::uint32_t row, std::size_t first_column, std::int64_t x,
                std::int64_t count, int y);

    const TiffLayout& layout_;
    Rect part_;
    int reduction_;
    TiffRowConverter converter_;
    DibBlock block_;
    std::uint8_t* rows_ = nullptr;
    std::size_t row_bytes_ = 0;
    std::vector<std::uint8_t> scratch_;
};

}  // namespace rastrel
