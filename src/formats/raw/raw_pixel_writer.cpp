#include <algorithm>
#include <span>
#include <vector>

#include "core/pixel_rows.h"
#include "formats/raw/raw_pixels.h"

namespace rastrel {

namespace {

/// What is gathered for one call of the sink, as far as it still is in the second-level cache then.
constexpr std::size_t kChunkBytes = std::size_t{192} << 10;

/// A row of a file: runs of all columns, one after the other, with bytes for each pixel.
struct FileRow {
    std::size_t runs = 1;
    std::size_t pixel_bytes = 1;
};

/// Writes rows of which convert(row, run, first column, out) makes the pieces.
template <class Convert>
class RowWriter {
  public:
    RowWriter(ByteSink& sink, const RasterImage& raster, const FileRow& file_row, Convert convert)
        : sink_(sink),
          raster_(raster),
          file_row_(file_row),
          run_bytes_(static_cast<std::size_t>(raster.Width()) * file_row.pixel_bytes),
          convert_(convert) {}

    [[nodiscard]] bool Write() {
        const std::size_t row_bytes = file_row_.runs * run_bytes_;
        if (row_bytes > kChunkBytes) return WriteInSpans();
        const int rows_at_once = static_cast<int>(kChunkBytes / row_bytes);
        chunk_.resize(static_cast<std::size_t>(rows_at_once) * row_bytes);
        for (int y = 0; y < raster_.Height(); y += rows_at_once) {
            const int rows = std::min(rows_at_once, raster_.Height() - y);
            // From the last to the first: the bitmap stands bottom-up, and is read faster in the
            // order of memory.
            for (int row = rows - 1; row >= 0; --row)
                ConvertRow(y + row, static_cast<std::size_t>(row) * row_bytes);
            if (!sink_.Write(std::span(chunk_).first(static_cast<std::size_t>(rows) * row_bytes)))
                return false;
        }
        return true;
    }

  private:
    void ConvertRow(int y, std::size_t at) {
        for (std::size_t run = 0; run < file_row_.runs; ++run)
            convert_(raster_.PictureRow(y), run, std::size_t{0},
                     std::span(chunk_).subspan(at + run * run_bytes_, run_bytes_));
    }
    /// Rows longer than a chunk, piece by piece.
    [[nodiscard]] bool WriteInSpans() {
        chunk_.resize(kChunkBytes);
        const auto width = static_cast<std::size_t>(raster_.Width());
        const std::size_t most = kChunkBytes / file_row_.pixel_bytes;
        for (int y = 0; y < raster_.Height(); ++y) {
            for (std::size_t run = 0; run < file_row_.runs; ++run) {
                for (std::size_t x = 0; x < width; x += most) {
                    const std::size_t count = std::min(most, width - x);
                    const auto out = std::span(chunk_).first(count * file_row_.pixel_bytes);
                    convert_(raster_.PictureRow(y), run, x, out);
                    if (!sink_.Write(out)) return false;
                }
            }
        }
        return true;
    }

    ByteSink& sink_;
    const RasterImage& raster_;
    FileRow file_row_;
    std::size_t run_bytes_;
    Convert convert_;
    std::vector<std::uint8_t> chunk_;
};

using Bytes = std::span<const std::uint8_t>;
using Output = std::span<std::uint8_t>;

bool WriteIndices(ByteSink& sink, const RasterImage& raster) {
    const int bits = raster.Bits();
    const auto unpack = [bits](Bytes row, std::size_t /*run*/, std::size_t x, Output out) {
        UnpackIndices(row, bits, static_cast<int>(x), out);
    };
    return RowWriter(sink, raster, {.runs = 1, .pixel_bytes = 1}, unpack).Write();
}

bool WritePixels(ByteSink& sink, const RasterImage& raster) {
    const auto swap = [](Bytes row, std::size_t /*run*/, std::size_t x, Output out) {
        SwapRedBlue24(row.subspan(3 * x, out.size()), out);
    };
    return RowWriter(sink, raster, {.runs = 1, .pixel_bytes = 3}, swap).Write();
}

/// Bands from first_band on, counted as in the file: red, green, blue.
bool WriteBands(ByteSink& sink, const RasterImage& raster, std::size_t first_band,
                std::size_t bands) {
    const auto take = [first_band](Bytes row, std::size_t run, std::size_t x, Output out) {
        TakeChannel(row.subspan(3 * x, 3 * out.size()), 2 - first_band - run, out);
    };
    return RowWriter(sink, raster, {.runs = bands, .pixel_bytes = 1}, take).Write();
}

}  // namespace

bool HasRawPixels(const RasterImage& raster) {
    const int bits = raster.Bits();
    return raster.HasPlainRows() && (bits == 1 || bits == 4 || bits == 8 || bits == 24);
}

bool WriteRawPixels(ByteSink& sink, const RasterImage& raster, RawLayout layout) {
    if (!HasRawPixels(raster)) return false;
    if (raster.Bits() != 24) return WriteIndices(sink, raster);
    switch (layout) {
        case RawLayout::kBil:
            return WriteBands(sink, raster, 0, 3);
        case RawLayout::kBip:
            return WritePixels(sink, raster);
        default:
            return WriteBands(sink, raster, 0, 1) && WriteBands(sink, raster, 1, 1) &&
                   WriteBands(sink, raster, 2, 1);
    }
}

}  // namespace rastrel
