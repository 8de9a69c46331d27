#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "formats/tiff/tiff_layout.h"
#include "formats/tiff/tiff_rows.h"

namespace rastrel {

/// Decodes the strips or tiles of a file, one at a time into the same memory: small enough, as a
/// rule, to be still in the caches when its rows are made into pixels.
class TiffChunks {
  public:
    /// The file and its layout must outlive this.
    TiffChunks(TiffInput& file, const TiffLayout& layout);

    /// Of a file in strips: rows from a row of the file on, at least one, that stand in one strip.
    /// Rows behind end need not be decoded.
    [[nodiscard]] std::optional<TiffRows> RowsFrom(std::uint32_t row, std::uint32_t end);
    /// How many rows from a row of the file on, up to end, DecodeInto gives at once; 0 where a
    /// strip has to be decoded row by row.
    [[nodiscard]] std::uint32_t RowsAtOnce(std::uint32_t row, std::uint32_t end) const;
    /// Those rows, of files of one plane, into memory of the caller's.
    [[nodiscard]] bool DecodeInto(std::uint32_t row, std::uint32_t count, std::uint8_t* out);
    /// The tile that begins at a column and row of the file.
    [[nodiscard]] std::optional<TiffRows> TileAt(std::uint32_t column, std::uint32_t row);

  private:
    struct Plane {
        std::unique_ptr<std::uint8_t[]> bytes;
        std::uint64_t size = 0;
    };

    [[nodiscard]] bool Reserve(std::uint64_t bytes_in_plane, std::string_view complaint);
    [[nodiscard]] TiffRows Decoded(std::uint32_t count) const;
    [[nodiscard]] std::optional<TiffRows> StoredRows(std::uint32_t row, std::uint32_t end);
    [[nodiscard]] bool ReadStored(std::uint32_t row, int plane, std::span<std::uint8_t> out);
    [[nodiscard]] bool IsDecodedWhole(std::uint32_t top) const;
    [[nodiscard]] std::optional<TiffRows> WholeStrip(std::uint32_t top, std::uint32_t end);
    [[nodiscard]] std::optional<TiffRows> ScannedRows(std::uint32_t row, std::uint32_t end);
    [[nodiscard]] std::optional<TiffRows> ColorsByCodec(std::uint32_t column, std::uint32_t row);
    [[nodiscard]] bool HasStoredRows() const;

    TiffInput& file_;
    const TiffLayout& layout_;
    std::array<Plane, 3> planes_;
    bool stored_rows_;
    std::uint32_t next_scanned_row_ = 0;
};

}  // namespace rastrel
