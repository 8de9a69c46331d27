#include "formats/tiff/tiff_chunks.h"

#include <algorithm>
#include <new>

#include "core/dib_block.h"

namespace rastrel {

namespace {

/// About what is decoded at once where the file does not say: half of a usual second-level cache.
constexpr std::uint64_t kCachedBytes = 256 << 10;

/// A strip of more bytes is decoded row by row rather than as a whole, where that costs no time.
constexpr std::uint64_t kMostWholeStripBytes = 4 << 20;

/// Whole strips go through a much faster library than single rows.
bool IsDeflate(std::uint16_t compression) {
    return compression == COMPRESSION_ADOBE_DEFLATE || compression == COMPRESSION_DEFLATE;
}

tmsize_t Signed(std::uint64_t bytes) {
    return static_cast<tmsize_t>(bytes);
}

}  // namespace

TiffChunks::TiffChunks(TiffInput& file, const TiffLayout& layout)
    : file_(file), layout_(layout), stored_rows_(HasStoredRows()) {}

bool TiffChunks::HasStoredRows() const {
    return layout_.compression == COMPRESSION_NONE &&
           layout_.pixels != TiffPixels::kColorsByCodec &&
           file_.Field<std::uint16_t>(TIFFTAG_FILLORDER) == FILLORDER_MSB2LSB;
}

bool TiffChunks::Reserve(std::uint64_t bytes_in_plane, std::string_view complaint) {
    for (int i = 0; i < layout_.Planes(); ++i) {
        Plane& plane = planes_[static_cast<std::size_t>(i)];
        if (plane.size >= bytes_in_plane) continue;
        plane.size = 0;
        plane.bytes.reset();
        // Not zeroed: what is not decoded is not looked at.
        if (bytes_in_plane <= kMostBlockBytes)
            plane.bytes.reset(new (std::nothrow)
                                  std::uint8_t[static_cast<std::size_t>(bytes_in_plane)]);
        if (!plane.bytes) {
            file_.Messages().Error("LoadTIFF()", complaint);
            return false;
        }
        plane.size = bytes_in_plane;
    }
    return true;
}

TiffRows TiffChunks::Decoded(std::uint32_t count) const {
    TiffRows rows;
    for (std::size_t i = 0; i < planes_.size(); ++i)
        rows.planes[i] = planes_[i].bytes.get();
    rows.row_bytes = static_cast<std::size_t>(layout_.RowBytes());
    rows.count = count;
    return rows;
}

std::optional<TiffRows> TiffChunks::RowsFrom(std::uint32_t row, std::uint32_t end) {
    const std::uint32_t top = row / layout_.chunk_height * layout_.chunk_height;
    end = std::min(end, top + layout_.RowsInChunkAt(top));
    if (stored_rows_) return StoredRows(row, end);
    const bool by_codec = layout_.pixels == TiffPixels::kColorsByCodec;
    if (!by_codec && !IsDecodedWhole(top)) return ScannedRows(row, end);
    std::optional<TiffRows> rows = by_codec ? ColorsByCodec(0, top) : WholeStrip(top, end);
    // From the row that was asked for on.
    if (rows) {
        const std::uint32_t skipped = row - top;
        if (!rows->upward) {
            for (const std::uint8_t*& plane : rows->planes)
                if (plane != nullptr) plane += skipped * rows->row_bytes;
        }
        rows->count -= skipped;
    }
    return rows;
}

std::uint32_t TiffChunks::RowsAtOnce(std::uint32_t row, std::uint32_t end) const {
    const std::uint32_t top = row / layout_.chunk_height * layout_.chunk_height;
    end = std::min(end, top + layout_.RowsInChunkAt(top));
    if (stored_rows_) {
        const std::uint64_t fitting = kCachedBytes / layout_.RowBytes();
        return static_cast<std::uint32_t>(std::clamp<std::uint64_t>(fitting, 1, end - row));
    }
    return row == top && IsDecodedWhole(top) ? end - row : 0;
}

bool TiffChunks::DecodeInto(std::uint32_t row, std::uint32_t count, std::uint8_t* out) {
    const std::uint64_t bytes = layout_.RowBytes() * count;
    if (stored_rows_) return ReadStored(row, 0, {out, static_cast<std::size_t>(bytes)});
    const std::uint32_t strip = TIFFComputeStrip(file_.Tiff(), row, 0);
    return TIFFReadEncodedStrip(file_.Tiff(), strip, out, Signed(bytes)) == Signed(bytes);
}

bool TiffChunks::ReadStored(std::uint32_t row, int plane, std::span<std::uint8_t> out) {
    const std::uint32_t strip =
        TIFFComputeStrip(file_.Tiff(), row, static_cast<std::uint16_t>(plane));
    const std::uint64_t offset = TIFFGetStrileOffset(file_.Tiff(), strip) +
                                 layout_.RowBytes() * (row % layout_.chunk_height);
    if (!file_.ReadAt(offset, out)) return false;
    if (layout_.bits == 16 && TIFFIsByteSwapped(file_.Tiff()) != 0)
        TIFFSwabArrayOfShort(reinterpret_cast<std::uint16_t*>(out.data()), Signed(out.size() / 2));
    return true;
}

std::optional<TiffRows> TiffChunks::StoredRows(std::uint32_t row, std::uint32_t end) {
    const std::uint32_t count = RowsAtOnce(row, end);
    const std::uint64_t bytes = layout_.RowBytes() * count;
    if (!Reserve(bytes, "No space for strip buffer")) return std::nullopt;
    for (int i = 0; i < layout_.Planes(); ++i) {
        std::uint8_t* out = planes_[static_cast<std::size_t>(i)].bytes.get();
        if (!ReadStored(row, i, {out, static_cast<std::size_t>(bytes)})) return std::nullopt;
    }
    return Decoded(count);
}

bool TiffChunks::IsDecodedWhole(std::uint32_t top) const {
    const std::uint64_t bytes = layout_.ChunkBytesAt(top);
    // Rows of several planes in turn would each begin their strip anew.
    if (layout_.Planes() > 1 || bytes <= kMostWholeStripBytes) return true;
    return IsDeflate(layout_.compression) && bytes <= kMostBlockBytes;
}

std::optional<TiffRows> TiffChunks::WholeStrip(std::uint32_t top, std::uint32_t end) {
    const std::uint64_t bytes = layout_.RowBytes() * (end - top);
    if (!Reserve(bytes, "No space for strip buffer")) return std::nullopt;
    for (int i = 0; i < layout_.Planes(); ++i) {
        const std::uint32_t strip =
            TIFFComputeStrip(file_.Tiff(), top, static_cast<std::uint16_t>(i));
        if (TIFFReadEncodedStrip(file_.Tiff(), strip,
                                 planes_[static_cast<std::size_t>(i)].bytes.get(),
                                 Signed(bytes)) != Signed(bytes))
            return std::nullopt;
    }
    return Decoded(end - top);
}

std::optional<TiffRows> TiffChunks::ScannedRows(std::uint32_t row, std::uint32_t end) {
    const std::uint64_t row_bytes = layout_.RowBytes();
    const auto fitting = static_cast<std::uint32_t>(
        std::clamp<std::uint64_t>(kCachedBytes / row_bytes, 1, end - row));
    if (!Reserve(row_bytes * fitting, "No space for strip buffer")) return std::nullopt;
    // Most decoders cannot jump: rows of the strip that come before are decoded and dropped.
    const std::uint32_t top = row / layout_.chunk_height * layout_.chunk_height;
    if (next_scanned_row_ > row) next_scanned_row_ = top;
    next_scanned_row_ = std::max(next_scanned_row_, top);
    std::uint8_t* out = planes_.front().bytes.get();
    for (; next_scanned_row_ < row + fitting; ++next_scanned_row_) {
        if (TIFFReadScanline(file_.Tiff(), out, next_scanned_row_, 0) != 1) return std::nullopt;
        if (next_scanned_row_ >= row) out += row_bytes;
    }
    return Decoded(fitting);
}

std::optional<TiffRows> TiffChunks::TileAt(std::uint32_t column, std::uint32_t row) {
    if (layout_.pixels == TiffPixels::kColorsByCodec) return ColorsByCodec(column, row);
    const std::uint64_t bytes = layout_.ChunkBytesAt(row);
    if (!Reserve(bytes, "No space for tile buffer")) return std::nullopt;
    for (int i = 0; i < layout_.Planes(); ++i) {
        const std::uint32_t tile =
            TIFFComputeTile(file_.Tiff(), column, row, 0, static_cast<std::uint16_t>(i));
        if (TIFFReadEncodedTile(file_.Tiff(), tile,
                                planes_[static_cast<std::size_t>(i)].bytes.get(),
                                Signed(bytes)) != Signed(bytes))
            return std::nullopt;
    }
    return Decoded(layout_.chunk_height);
}

std::optional<TiffRows> TiffChunks::ColorsByCodec(std::uint32_t column, std::uint32_t row) {
    constexpr std::uint64_t kPixelBytes = 4;
    const std::uint32_t count = layout_.RowsInChunkAt(row);
    const std::uint64_t row_bytes = kPixelBytes * layout_.chunk_width;
    if (!Reserve(row_bytes * count, "No space for decoded buffer")) return std::nullopt;
    auto* colors = reinterpret_cast<std::uint32_t*>(planes_.front().bytes.get());
    constexpr int kStopAtErrors = 1;
    const int done = layout_.tiled
                         ? TIFFReadRGBATileExt(file_.Tiff(), column, row, colors, kStopAtErrors)
                         : TIFFReadRGBAStripExt(file_.Tiff(), row, colors, kStopAtErrors);
    if (done != 1) return std::nullopt;
    TiffRows rows = Decoded(count);
    rows.row_bytes = static_cast<std::size_t>(row_bytes);
    rows.upward = true;
    return rows;
}

}  // namespace rastrel
