#include <algorithm>
#include <span>
#include <vector>

#include "core/pixel_rows.h"
#include "formats/raw/raw_pixels.h"

namespace rastrel {

namespace {

/// Pixels that are converted at a time.
constexpr std::size_t kSpanPixels = std::size_t{64} << 10;
constexpr std::size_t kChunkBytes = 3 * kSpanPixels;

/// Gathers bytes so that the sink gets them in large pieces.
class ChunkSink {
  public:
    explicit ChunkSink(ByteSink& sink) : sink_(sink), chunk_(kChunkBytes) {}

    /// Room for the next bytes, at most kChunkBytes; empty when the sink has failed.
    [[nodiscard]] std::span<std::uint8_t> Next(std::size_t bytes) {
        if (used_ + bytes > chunk_.size() && !Flush()) return {};
        const auto room = std::span(chunk_).subspan(used_, bytes);
        used_ += bytes;
        return room;
    }
    [[nodiscard]] bool Flush() {
        const std::size_t bytes = used_;
        used_ = 0;
        return sink_.Write(std::span(chunk_).first(bytes));
    }

  private:
    ByteSink& sink_;
    std::vector<std::uint8_t> chunk_;
    std::size_t used_ = 0;
};

/// Writes a row from the top in spans, each made by convert(row, first column, out) with bytes for
/// every pixel.
template <class Convert>
bool WriteRow(ChunkSink& sink, const RasterImage& raster, int y, std::size_t pixel_bytes,
              Convert convert) {
    const auto row = raster.PictureRow(y);
    const auto width = static_cast<std::size_t>(raster.Width());
    for (std::size_t x = 0; x < width; x += kSpanPixels) {
        const std::size_t count = std::min(kSpanPixels, width - x);
        const auto out = sink.Next(count * pixel_bytes);
        if (out.empty()) return false;
        convert(row, x, out);
    }
    return true;
}

bool WriteIndices(ChunkSink& sink, const RasterImage& raster, int y) {
    return WriteRow(sink, raster, y, 1, [&](auto row, std::size_t x, auto out) {
        UnpackIndices(row, raster.Bits(), static_cast<int>(x), out);
    });
}

bool WritePixels(ChunkSink& sink, const RasterImage& raster, int y) {
    return WriteRow(sink, raster, y, 3, [](auto row, std::size_t x, auto out) {
        SwapRedBlue24(row.subspan(3 * x, out.size()), out);
    });
}

/// One band of a row, counted as in the file: red, green, blue.
bool WriteBand(ChunkSink& sink, const RasterImage& raster, int y, std::size_t band) {
    return WriteRow(sink, raster, y, 1, [band](auto row, std::size_t x, auto out) {
        TakeChannel(row.subspan(3 * x, 3 * out.size()), 2 - band, out);
    });
}

template <class Write>
bool ForEachRow(const RasterImage& raster, Write write) {
    for (int y = 0; y < raster.Height(); ++y) {
        if (!write(y)) return false;
    }
    return true;
}

}  // namespace

bool HasRawPixels(const RasterImage& raster) {
    const int bits = raster.Bits();
    return raster.HasPlainRows() && (bits == 1 || bits == 4 || bits == 8 || bits == 24);
}

bool WriteRawPixels(ByteSink& sink, const RasterImage& raster, RawLayout layout) {
    if (!HasRawPixels(raster)) return false;
    ChunkSink chunks(sink);
    bool written = true;
    if (raster.Bits() != 24) {
        written = ForEachRow(raster, [&](int y) { return WriteIndices(chunks, raster, y); });
    } else if (layout == RawLayout::kBip) {
        written = ForEachRow(raster, [&](int y) { return WritePixels(chunks, raster, y); });
    } else if (layout == RawLayout::kBil) {
        written = ForEachRow(raster, [&](int y) {
            return WriteBand(chunks, raster, y, 0) && WriteBand(chunks, raster, y, 1) &&
                   WriteBand(chunks, raster, y, 2);
        });
    } else {
        for (std::size_t band = 0; band < 3 && written; ++band)
            written = ForEachRow(raster, [&](int y) { return WriteBand(chunks, raster, y, band); });
    }
    return written && chunks.Flush();
}

}  // namespace rastrel
