#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "core/checked_size.h"
#include "core/pixel_rows.h"
#include "formats/plausibility.h"
#include "formats/raw/raw_pixels.h"

namespace rastrel {

namespace {

/// What is read at a time, so that it is still in the second-level cache when it is taken apart.
constexpr std::size_t kChunkBytes = std::size_t{192} << 10;
/// Rows at least as long are read straight into place: a call for each costs less than a copy.
constexpr std::size_t kLongRowBytes = std::size_t{64} << 10;

/// A file's samples as planes: runs of columns that stand side by side in every row. Pixels with
/// their bands side by side make one plane.
struct Planes {
    std::size_t count = 1;
    std::size_t pixel_bytes = 1;   ///< of one plane
    std::uint64_t row_step = 0;    ///< from a row of a plane to its next
    std::uint64_t plane_step = 0;  ///< from a plane to the next
};

Planes PlanesOf(const RawHeader& header, RawLayout layout) {
    const auto width = static_cast<std::uint64_t>(header.width);
    if (header.bits == 8) return {1, 1, width, 0};
    switch (layout) {
        case RawLayout::kBil:
            return {3, 1, 3 * width, width};
        case RawLayout::kBip:
            return {1, 3, 3 * width, 0};
        default:
            return {3, 1, width, width * static_cast<std::uint64_t>(header.height)};
    }
}

/// Reads kept pixels into the rows of a raster of their size.
class RawPixelReader {
  public:
    RawPixelReader(ByteSource& source, const Planes& planes, int bits)
        : source_(source), planes_(planes), target_bytes_(static_cast<std::size_t>(bits / 8)) {}

    /// Whole rows, several at a time.
    void ReadRows(const RasterImage& target, int first_row);
    /// Row by row, only the columns that are needed.
    void ReadSpans(const RasterImage& target, Rect part, int reduction);

  private:
    using PlanePointers = std::array<const std::uint8_t*, 3>;

    void ReadAt(std::uint64_t position, std::span<std::uint8_t> out);
    /// Makes pixels of what was read of each plane.
    void Convert(const PlanePointers& planes, std::size_t count, std::span<std::uint8_t> out) const;
    void ReadSpan(int row, std::uint64_t column, std::span<std::uint8_t> out);

    ByteSource& source_;
    Planes planes_;
    std::size_t target_bytes_;
    std::vector<std::uint8_t> buffer_;
};

void RawPixelReader::ReadRows(const RasterImage& target, int first_row) {
    const auto width = static_cast<std::size_t>(target.Width());
    const auto row_step = static_cast<std::size_t>(planes_.row_step);
    const std::size_t row_bytes = width * target_bytes_;
    const int rows_at_once = static_cast<int>(std::max<std::size_t>(kChunkBytes / row_bytes, 1));
    const bool is_row_by_row = planes_.plane_step < planes_.row_step;
    buffer_.resize(static_cast<std::size_t>(rows_at_once) * row_bytes);
    for (int done = 0; done < target.Height(); done += rows_at_once) {
        const int rows = std::min(rows_at_once, target.Height() - done);
        const std::size_t chunk_bytes = static_cast<std::size_t>(rows) * row_step;
        const std::uint64_t start = static_cast<std::uint64_t>(first_row + done) * planes_.row_step;
        const std::size_t reads = is_row_by_row ? 1 : planes_.count;
        for (std::size_t i = 0; i < reads; ++i)
            ReadAt(start + i * planes_.plane_step,
                   std::span(buffer_).subspan(i * chunk_bytes, chunk_bytes));
        const std::size_t buffer_plane_step =
            is_row_by_row ? static_cast<std::size_t>(planes_.plane_step) : chunk_bytes;
        // In the order of memory, which is from the last row to the first.
        for (int row = rows - 1; row >= 0; --row) {
            PlanePointers planes = {};
            for (std::size_t i = 0; i < planes_.count; ++i)
                planes[i] = buffer_.data() + static_cast<std::size_t>(row) * row_step +
                            i * buffer_plane_step;
            Convert(planes, width, target.PictureRow(done + row).first(row_bytes));
        }
    }
}

void RawPixelReader::ReadSpans(const RasterImage& target, Rect part, int reduction) {
    const auto step = static_cast<std::size_t>(reduction);
    const auto width = static_cast<std::size_t>(target.Width());
    // Kept pixels a span; the span ends with the last of them.
    const std::size_t most_kept = (kChunkBytes / 3 - 1) / step + 1;
    std::vector<std::uint8_t> pixels;
    for (int y = 0; y < target.Height(); ++y) {
        const auto row = target.PictureRow(y);
        const int file_row = part.y + y * reduction;
        for (std::size_t x = 0; x < width; x += most_kept) {
            const std::size_t kept = std::min(most_kept, width - x);
            const auto out = row.subspan(x * target_bytes_, kept * target_bytes_);
            const std::uint64_t column = static_cast<std::uint64_t>(part.x) + x * step;
            if (step == 1) {
                ReadSpan(file_row, column, out);
                continue;
            }
            pixels.resize(((kept - 1) * step + 1) * target_bytes_);
            ReadSpan(file_row, column, pixels);
            for (std::size_t i = 0; i < kept; ++i)
                std::copy_n(pixels.data() + i * step * target_bytes_, target_bytes_,
                            out.data() + i * target_bytes_);
        }
    }
}

void RawPixelReader::ReadSpan(int row, std::uint64_t column, std::span<std::uint8_t> out) {
    const std::uint64_t start =
        static_cast<std::uint64_t>(row) * planes_.row_step + column * planes_.pixel_bytes;
    if (target_bytes_ == 1) {
        ReadAt(start, out);
        return;
    }
    buffer_.resize(out.size());
    const std::size_t plane_bytes = out.size() / planes_.count;
    PlanePointers planes = {};
    for (std::size_t i = 0; i < planes_.count; ++i) {
        const auto plane = std::span(buffer_).subspan(i * plane_bytes, plane_bytes);
        ReadAt(start + i * planes_.plane_step, plane);
        planes[i] = plane.data();
    }
    Convert(planes, out.size() / target_bytes_, out);
}

void RawPixelReader::Convert(const PlanePointers& planes, std::size_t count,
                             std::span<std::uint8_t> out) const {
    if (target_bytes_ == 1)
        std::copy_n(planes[0], count, out.begin());
    else if (planes_.count == 1)
        SwapRedBlue24({planes[0], 3 * count}, out);
    else
        Bgr24FromPlanes(planes[0], {planes[1], count}, planes[2], out);
}

void RawPixelReader::ReadAt(std::uint64_t position, std::span<std::uint8_t> out) {
    source_.Seek(position);
    const std::size_t got = source_.Read(out);
    std::fill(out.begin() + static_cast<std::ptrdiff_t>(got), out.end(), std::uint8_t{0});
}

/// Whether the file is long enough for what its header makes one take memory for.
bool IsPlausible(const ByteSource& source, const RawHeader& header) {
    CheckedSize size;
    const std::uint64_t row_bytes = size.Mul(header.width, header.bits / 8);
    const std::uint64_t promised = size.Mul(row_bytes, header.height);
    return size.Ok() && promised <= source.Size() + kMostMissingBytes;
}

/// How many of length places are kept when every step-th is.
int KeptOf(int length, int step) {
    return (length - 1) / step + 1;
}

}  // namespace

DibBlock ReadRawPixels(ByteSource& source, const RawHeader& header, RawLayout layout, Rect part,
                       int reduction) {
    if ((header.bits != 8 && header.bits != 24) || !IsPlausible(source, header)) return {};
    DibBlock block = DibBlock::Create(KeptOf(part.width, reduction), KeptOf(part.height, reduction),
                                      header.bits);
    if (!block) return {};
    RasterImage target;
    target.ReplaceBlock(std::move(block));
    RawPixelReader reader(source, PlanesOf(header, layout), header.bits);
    const std::size_t row_bytes =
        static_cast<std::size_t>(target.Width()) * static_cast<std::size_t>(header.bits / 8);
    const bool is_whole_rows = target.Width() == header.width && reduction == 1;
    const std::size_t longest = header.bits == 8 ? kLongRowBytes : kChunkBytes;
    if (is_whole_rows && row_bytes < longest)
        reader.ReadRows(target, part.y);
    else
        reader.ReadSpans(target, part, reduction);
    return target.DetachBlock();
}

}  // namespace rastrel
