#include "formats/tiff/tiff_part_bitmap.h"

#include <algorithm>
#include <cstring>

#include "core/pixel_rows.h"

namespace rastrel {

Rect TiffFilePart(const TiffLayout& layout, const Rect& part) {
    Rect file_part = part;
    if (layout.bottom_up) file_part.y = layout.size.height - part.y - part.height;
    return file_part;
}

TiffPartBitmap::TiffPartBitmap(const TiffLayout& layout, const Rect& part, int reduction)
    : layout_(layout),
      part_(part),
      reduction_(reduction),
      converter_(layout),
      block_(DibBlock::Create(Width(), Height(), static_cast<int>(8 * converter_.PixelBytes()))) {
    if (!block_) return;
    rows_ = block_.Rows();
    row_bytes_ = static_cast<std::size_t>(
        DibRowBytes(block_.Header().bit_count, static_cast<std::uint32_t>(Width())));
}

void TiffPartBitmap::Put(const TiffRows& rows, std::int64_t column, std::int64_t row) {
    const std::int64_t first = std::max<std::int64_t>(column, part_.x);
    const std::int64_t end =
        std::min<std::int64_t>(column + layout_.chunk_width, std::int64_t{part_.x} + part_.width);
    for (std::uint32_t i = 0; i < rows.count; ++i) {
        const std::int64_t in_file = row + i;
        const std::int64_t y =
            (layout_.bottom_up ? layout_.size.height - 1 - in_file : in_file) - part_.y;
        if (y < 0 || y >= part_.height || y % reduction_ != 0) continue;
        PutRow(rows, i, static_cast<std::size_t>(first - column), first - part_.x, end - first,
               static_cast<int>(y / reduction_));
    }
}

void TiffPartBitmap::PutRow(const TiffRows& rows, std::uint32_t row, std::size_t first_column,
                            std::int64_t x, std::int64_t count, int y) {
    const std::size_t pixel_bytes = converter_.PixelBytes();
    std::uint8_t* out = rows_ + row_bytes_ * static_cast<std::size_t>(Height() - 1 - y);
    const auto pixels = static_cast<std::size_t>(count);
    if (reduction_ == 1) {
        out += pixel_bytes * static_cast<std::size_t>(x);
        converter_.Convert(rows, row, first_column, {out, pixels * pixel_bytes});
        return;
    }
    scratch_.resize(pixels * pixel_bytes);
    converter_.Convert(rows, row, first_column, scratch_);
    const auto step = static_cast<std::size_t>(reduction_);
    const auto start = static_cast<std::size_t>(x);
    // The first column from here on that is kept.
    const std::size_t kept = (start + step - 1) / step;
    out += kept * pixel_bytes;
    for (std::size_t at = kept * step - start; at < pixels; at += step, out += pixel_bytes)
        std::memcpy(out, &scratch_[at * pixel_bytes], pixel_bytes);
}

bool TiffPartBitmap::HasRoomForRows() const {
    const bool inverted =
        layout_.pixels == TiffPixels::kColors && layout_.photometric == PHOTOMETRIC_MINISWHITE;
    return layout_.bits == 8 && !layout_.tiled && layout_.Planes() == 1 && !inverted &&
           layout_.pixels != TiffPixels::kColorsByCodec &&
           layout_.samples == static_cast<int>(converter_.PixelBytes()) && reduction_ == 1 &&
           part_.width == layout_.size.width;
}

std::uint8_t* TiffPartBitmap::RoomFor(std::uint32_t row, std::uint32_t count) const {
    const std::size_t before = row - static_cast<std::size_t>(TiffFilePart(layout_, part_).y);
    const auto height = static_cast<std::size_t>(Height());
    return rows_ + row_bytes_ * (layout_.bottom_up ? before : height - before - count);
}

void TiffPartBitmap::ArrangeRoom(std::uint8_t* room, std::uint32_t count) {
    const auto used = static_cast<std::size_t>(layout_.RowBytes());
    if (used < row_bytes_) {
        // From the last row on, so that none is overwritten before it has moved.
        for (std::size_t i = count; i-- > 0;) {
            std::uint8_t* row = room + i * row_bytes_;
            std::memmove(row, room + i * used, used);
            std::fill(row + used, row + row_bytes_, std::uint8_t{0});
        }
    }
    const auto convert = [this, used](const std::uint8_t* from, std::uint8_t* to) {
        if (converter_.PixelBytes() == 3)
            SwapRedBlue24({from, used}, {to, used});
        else
            std::memcpy(to, from, used);
    };
    scratch_.resize(used);
    // Rows change places with each other, or each with itself where they go up already.
    const std::size_t steps = layout_.bottom_up ? count : (count + 1) / 2;
    for (std::size_t i = 0; i < steps; ++i) {
        std::uint8_t* low = room + i * row_bytes_;
        std::uint8_t* high = layout_.bottom_up ? low : room + (count - 1 - i) * row_bytes_;
        convert(low, scratch_.data());
        if (low != high) convert(high, low);
        std::memcpy(high, scratch_.data(), used);
    }
}

}  // namespace rastrel
