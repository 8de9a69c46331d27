#include "display/surface/surface_device.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <span>
#include <vector>

#include "core/pixel_rows.h"
#include "display/surface/run_lengths.h"
#include "display/surface/sampling.h"
#include "display/surface/surface_rows.h"

namespace rastrel {

namespace {

constexpr int kSurfacePixelBytes = 4;

/// Makes surface pixels of the same columns of any stored row.
class RowSampler {
  public:
    RowSampler(const DevicePicture& picture, const Samples& columns)
        : raster_(picture.raster),
          bits_(picture.raster.Bits()),
          is_in_step_(columns.is_in_step),
          colors_(picture.colors) {
        const auto [least, most] = std::ranges::minmax(columns.sources);
        first_ = least;
        span_ = static_cast<std::size_t>(most - least) + 1;
        if (bits_ < 8) unpacked_.resize(span_);
        // One byte more: 24-bit pixels are read with the byte behind them.
        if (bits_ == 16) unpacked_.resize(span_ * 3 + 1);
        if (!is_in_step_) ChooseOffsets(columns);
    }

    void Make(int stored_row, std::span<std::uint8_t> out) {
        const std::uint8_t* row = FirstPixel(raster_.Row(stored_row));
        if (bits_ == 32) {
            if (is_in_step_)
                std::memcpy(out.data(), row, out.size());
            else
                ChooseFrom32(row, offsets_, out);
        } else if (bits_ > 8) {
            if (is_in_step_)
                BgrxFrom24(row, out);
            else
                ChooseFrom24(row, offsets_, groups_, out);
        } else {
            if (is_in_step_)
                BgrxFromIndices(row, colors_, out);
            else
                ChooseFromIndices(row, offsets_, groups_, colors_, out);
        }
    }

  private:
    void ChooseOffsets(const Samples& columns) {
        const std::uint32_t bytes = bits_ <= 8 ? 1 : bits_ == 32 ? 4 : 3;
        offsets_.reserve(columns.sources.size());
        for (const int source : columns.sources)
            offsets_.push_back(static_cast<std::uint32_t>(source - first_) * bytes);
        if (bits_ <= 8) groups_ = GroupIndices(offsets_, span_);
        if (bits_ == 16 || bits_ == 24) groups_ = Group24(offsets_, span_ * 3);
    }

    /// The leftmost of the pixels, in whole bytes: indices, 24 or 32 bits.
    const std::uint8_t* FirstPixel(std::span<const std::uint8_t> row) {
        const auto first = static_cast<std::size_t>(first_);
        if (bits_ < 8) {
            UnpackIndices(row, bits_, first_, unpacked_);
            return unpacked_.data();
        }
        if (bits_ == 16) {
            Bgr24From16(row.subspan(first * 2, span_ * 2), unpacked_);
            return unpacked_.data();
        }
        return row.subspan(first * static_cast<std::size_t>(bits_ / 8)).data();
    }

    const RasterImage& raster_;
    int bits_;
    bool is_in_step_;
    SurfaceColors colors_;
    int first_ = 0;
    std::size_t span_ = 0;  ///< pixels from the leftmost to the rightmost
    std::vector<std::uint32_t> offsets_;
    ChosenBytes groups_;
    std::vector<std::uint8_t> unpacked_;
};

std::span<std::uint8_t> SurfaceRun(const RastrelSurface& surface, int x, int y, std::size_t count) {
    std::uint8_t* row = surface.pixels + std::ptrdiff_t{y} * surface.stride;
    return {row + std::ptrdiff_t{x} * kSurfacePixelBytes, count * kSurfacePixelBytes};
}

/// Rows of surfaces that are larger than the caches go past them.
void CopyRows(const RastrelSurface& surface, const Samples& columns, const Samples& rows,
              RowSampler& sampler) {
    const std::size_t row_bytes = columns.sources.size() * kSurfacePixelBytes;
    const bool streams = row_bytes * rows.sources.size() >= kStreamedFrom;
    std::vector<std::uint8_t> streamed(streams ? row_bytes : 0);
    std::span<const std::uint8_t> made;
    for (std::size_t i = 0; i < rows.sources.size(); ++i) {
        const auto out = SurfaceRun(surface, columns.first, rows.first + static_cast<int>(i),
                                    columns.sources.size());
        const bool is_new = i == 0 || rows.sources[i] != rows.sources[i - 1];
        if (streams) {
            if (is_new) sampler.Make(rows.sources[i], streamed);
            StreamCopy(streamed, out.data());
        } else if (is_new) {
            sampler.Make(rows.sources[i], out);
        } else {
            std::memcpy(out.data(), made.data(), out.size());
        }
        made = out;
    }
}

template <class Combine>
void CombineRows(const RastrelSurface& surface, const Samples& columns, const Samples& rows,
                 RowSampler& sampler, Combine combine) {
    std::vector<std::uint8_t> made(columns.sources.size() * kSurfacePixelBytes);
    for (std::size_t i = 0; i < rows.sources.size(); ++i) {
        if (i == 0 || rows.sources[i] != rows.sources[i - 1]) sampler.Make(rows.sources[i], made);
        combine(made, SurfaceRun(surface, columns.first, rows.first + static_cast<int>(i),
                                 columns.sources.size()));
    }
}

}  // namespace

bool SurfaceDevice::IsSound(const RastrelSurface& surface) {
    return surface.pixels != nullptr && surface.width > 0 && surface.height > 0 &&
           surface.stride / kSurfacePixelBytes >= surface.width;
}

const RasterImage* SurfaceDevice::WithPlainRows(const RasterImage& raster) {
    if (raster.HasPlainRows()) return &raster;
    if (coded_ != &raster) {
        if (!DecodeRunLengths(raster, decoded_)) return nullptr;
        coded_ = &raster;
    }
    return &decoded_;
}

bool SurfaceDevice::SetPixels(const DevicePicture& picture, Rect destination, int source_x,
                              int source_y) {
    return StretchPixels(picture, destination,
                         {source_x, source_y, destination.width, destination.height},
                         RasterOperation::kCopy);
}

bool SurfaceDevice::StretchPixels(const DevicePicture& picture, Rect destination, Rect source,
                                  RasterOperation operation) {
    if (!IsSound(surface_)) return false;
    const RasterImage* plain = WithPlainRows(picture.raster);
    if (plain == nullptr) return false;
    const RasterImage& raster = *plain;
    const Samples columns = ChooseSamples({destination.x, destination.width}, surface_.width,
                                          {source.x, source.width}, raster.Width(), false);
    // A source's y goes up where the surface's goes down.
    const Samples rows = ChooseSamples({destination.y, destination.height}, surface_.height,
                                       {source.y, source.height}, raster.Height(), true);
    if (columns.IsEmpty() || rows.IsEmpty()) return true;
    RowSampler sampler({raster, picture.colors}, columns);
    switch (operation) {
        case RasterOperation::kCopy:
            CopyRows(surface_, columns, rows, sampler);
            break;
        case RasterOperation::kAnd:
            CombineRows(surface_, columns, rows, sampler, AndBytes);
            break;
        case RasterOperation::kOr:
            CombineRows(surface_, columns, rows, sampler, OrBytes);
            break;
    }
    return true;
}

}  // namespace rastrel
