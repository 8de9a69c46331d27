#include "imaging/resize.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "core/pixel_reader.h"
#include "imaging/resize_kernels.h"
#include "imaging/shown_rows.h"

namespace rastrel {

namespace {

/// Where the floats of a row may stand, with what kernels touch behind it.
std::vector<float> FloatRow(std::size_t samples) {
    return std::vector<float>(samples + simd::kFloatPadding);
}

/// Makes a resized image's rows, from the top, out of a part of another's.
class SmoothResize {
  public:
    SmoothResize(const RasterImage& source, const Rect& part, Size size, Resampling way)
        : source_(source, part),
          channels_(source_.Channels()),
          part_(part),
          row_taps_(part.height, size.height, way),
          column_taps_(part.width, size.width, way),
          samples_(static_cast<std::size_t>(size.width) * channels_),
          leaves_columns_out_(channels_ == 3 && column_taps_.Count() == 2 &&
                              size.width < part.width),
          source_row_(FloatRow(source_.Samples())),
          out_row_(FloatRow(samples_)) {}

    void To(const RasterImage& result) {
        // Columns are dearer than rows, so the fewer rows they are done for, the better.
        const bool rows_first =
            source_.AreStored() && channels_ != 4 && result.Height() <= part_.height;
        for (int y = 0; y < result.Height(); ++y) {
            const std::span<std::uint8_t> out = result.PictureRow(y).first(samples_);
            if (rows_first)
                MakeRowsFirst(y, out);
            else
                MakeColumnsFirst(y, out);
        }
    }

  private:
    [[nodiscard]] simd::WeighedColumns Columns() const {
        return {column_taps_.First().data(), column_taps_.Weights().data(), column_taps_.Count()};
    }
    void WeighColumns(std::vector<float>& out) const {
        simd::WeighColumns(source_row_.data(), channels_, Columns(), column_taps_.Length(),
                           out.data());
    }

    void MakeRowsFirst(int y, std::span<std::uint8_t> out) {
        std::span<const float> weights = row_taps_.WeightsOf(y);
        int first = row_taps_.First()[static_cast<std::size_t>(y)];
        // Rows without weight stand at the ends of the window.
        for (; weights.front() == 0; ++first)
            weights = weights.subspan(1);
        while (weights.back() == 0)
            weights = weights.first(weights.size() - 1);
        rows_.clear();
        for (std::size_t k = 0; k < weights.size(); ++k)
            rows_.push_back(source_.Row(first + static_cast<int>(k)));
        const simd::WeighedRows<std::uint8_t> rows{rows_.data(), weights.data(), rows_.size()};
        if (leaves_columns_out_ && rows_.size() == 2) {
            const auto next = static_cast<std::size_t>(y) + 1;
            const int next_first = next < row_taps_.Length() ? row_taps_.First()[next] : first;
            const std::uint8_t* next_rows[] = {source_.Row(next_first),
                                               source_.Row(next_first + 1)};
            simd::WeighSquares(rows, next_rows, Columns(), column_taps_.Length(), out.data());
            return;
        }
        simd::WeighRows(rows, source_.Samples(), source_row_.data());
        WeighColumns(out_row_);
        const float* row = out_row_.data();
        const float one = 1;
        simd::WeighRowsToBytes({&row, &one, 1}, out.size(), out.data());
    }

    void MakeColumnsFirst(int y, std::span<std::uint8_t> out) {
        const std::span<const float> weights = row_taps_.WeightsOf(y);
        const int first = row_taps_.First()[static_cast<std::size_t>(y)];
        std::array<const float*, kKeptRows> rows = {};
        if (weights.size() <= kKeptRows && channels_ != 4) {
            for (std::size_t k = 0; k < weights.size(); ++k)
                rows[k] = ResizedRow(first + static_cast<int>(k));
            simd::WeighRowsToBytes({rows.data(), weights.data(), weights.size()}, out.size(),
                                   out.data());
            return;
        }
        std::fill(out_row_.begin(), out_row_.end(), 0.0F);
        for (std::size_t k = 0; k < weights.size(); ++k) {
            if (weights[k] == 0) continue;
            rows[0] = ResizedRow(first + static_cast<int>(k));
            simd::AddWeighedRows({rows.data(), &weights[k], 1}, samples_, out_row_.data());
        }
        StoreShownRow(out_row_, channels_, out);
    }

    /// A row of the source with the new columns. It stays until the fourth row after it is made.
    const float* ResizedRow(int y) {
        KeptRow& kept = kept_[static_cast<std::size_t>(y) % kKeptRows];
        if (kept.y != y) {
            kept.y = y;
            if (kept.samples.empty()) kept.samples = FloatRow(samples_);
            LoadShownRow(source_.Row(y), channels_,
                         std::span(source_row_).first(source_.Samples()));
            WeighColumns(kept.samples);
        }
        return kept.samples.data();
    }

    static constexpr std::size_t kKeptRows = 4;
    struct KeptRow {
        int y = -1;
        std::vector<float> samples;
    };

    ShownRows source_;
    std::size_t channels_;
    Rect part_;
    ResamplingTaps row_taps_;
    ResamplingTaps column_taps_;
    std::size_t samples_;  ///< of a new row
    bool leaves_columns_out_;
    std::vector<const std::uint8_t*> rows_;
    std::vector<float> source_row_;
    std::vector<float> out_row_;
    std::array<KeptRow, kKeptRows> kept_;
};

/// Picks pixels of a row by their places in bytes, meanwhile touching next, where other pixels will
/// be picked.
template <std::size_t kBytes>
void PickPixels(const std::uint8_t* from, const std::uint8_t* next,
                std::span<const std::uint32_t> places, std::uint8_t* out) {
    // Three bytes are quicker copied as four, of which the last is the next pixel's; every block
    // has more bytes behind its last pixel.
    constexpr std::size_t kCopied = kBytes == 3 ? 4 : kBytes;
    constexpr std::size_t kPixelsATouch = 8;
    const std::size_t last = places.size() - 1;
    const std::uint32_t* at = places.data();
    std::size_t i = 0;
    for (; i + kPixelsATouch <= last; i += kPixelsATouch, at += kPixelsATouch) {
        __builtin_prefetch(next + *at);
        for (std::size_t k = 0; k < kPixelsATouch; ++k)
            std::memcpy(out + (i + k) * kBytes, from + at[k], kCopied);
    }
    for (; i < last; ++i, ++at)
        std::memcpy(out + i * kBytes, from + *at, kCopied);
    std::memcpy(out + last * kBytes, from + *at, kBytes);
}

/// Fills an image of the source's depth with the source pixels nearest to its own.
class NearestResize {
  public:
    NearestResize(const RasterImage& source, const Rect& part, Size size)
        : source_(source),
          part_(part),
          rows_(NearestPixels(part.height, size.height)),
          pixel_bytes_(static_cast<std::uint32_t>(std::max(source.Bits(), 8)) / 8) {
        for (const std::int32_t column : NearestPixels(part.width, size.width))
            places_.push_back(static_cast<std::uint32_t>(column) * pixel_bytes_);
        if (source.Bits() >= 8) return;
        indices_.resize(static_cast<std::size_t>(part.width));
        picked_.resize(places_.size());
    }

    void To(const RasterImage& result) {
        for (int y = 0; y < result.Height(); ++y) {
            const auto at = static_cast<std::size_t>(y);
            if (y > 0 && rows_[at] == rows_[at - 1])
                std::ranges::copy(result.PictureRow(y - 1), result.PictureRow(y).begin());
            else
                MakeRow(SourceRow(at), SourceRow(std::min(at + 1, rows_.size() - 1)),
                        result.PictureRow(y));
        }
    }

  private:
    [[nodiscard]] std::span<const std::uint8_t> SourceRow(std::size_t y) const {
        return source_.PictureRow(part_.y + rows_[y]);
    }

    void MakeRow(std::span<const std::uint8_t> from, std::span<const std::uint8_t> next,
                 std::span<std::uint8_t> out) {
        if (source_.Bits() < 8) {
            UnpackIndices(from, source_.Bits(), part_.x, indices_);
            PickPixels<1>(indices_.data(), indices_.data(), places_, picked_.data());
            PackIndices(picked_, source_.Bits(), out);
            return;
        }
        const std::size_t left = static_cast<std::size_t>(part_.x) * pixel_bytes_;
        const std::uint8_t* first = from.data() + left;
        const std::uint8_t* first_next = next.data() + left;
        switch (pixel_bytes_) {
            case 1:
                PickPixels<1>(first, first_next, places_, out.data());
                break;
            case 2:
                PickPixels<2>(first, first_next, places_, out.data());
                break;
            case 3:
                PickPixels<3>(first, first_next, places_, out.data());
                break;
            default:
                PickPixels<4>(first, first_next, places_, out.data());
                break;
        }
    }

    const RasterImage& source_;
    Rect part_;
    std::vector<std::int32_t> rows_;
    std::uint32_t pixel_bytes_;
    std::vector<std::uint32_t> places_;  ///< of the pixels in a row, in bytes
    std::vector<std::uint8_t> indices_;
    std::vector<std::uint8_t> picked_;
};

/// Averaging takes several floats for each sample of a row: no more than this many are worked on,
/// far beyond what any picture has.
constexpr std::int64_t kMostRowSamples = std::int64_t{1} << 28;

bool RowsAreTooLong(const RasterImage& source, const Rect& part, Size size) {
    const std::int64_t longest = std::max({part.width, part.height, size.width, size.height});
    return longest * std::max(source.Bits() / 8, 3) > kMostRowSamples;
}

/// Pixels a metre, which grow as the pixels do.
std::int32_t ScaledResolution(std::int32_t resolution, int old_length, int new_length) {
    const std::int64_t scaled =
        (std::int64_t{resolution} * new_length + old_length / 2) / old_length;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(scaled, 0, kMostBlockBytes));
}

}  // namespace

Resampling BestResampling(const RasterImage& source, Size from, Size to) {
    if (source.Bits() <= 8 && !IsGrey(source)) return Resampling::kNearest;
    const bool reduces = to.width < from.width || to.height < from.height;
    return reduces ? Resampling::kArea : Resampling::kBilinear;
}

bool Resize(const RasterImage& source, const Rect& part, Size size, Resampling way,
            RasterImage& result) {
    if (!source.HasPlainRows() || part.IsEmpty() || size.width < 1 || size.height < 1) return false;
    const bool keeps_pixels = way == Resampling::kNearest;
    if (!keeps_pixels && RowsAreTooLong(source, part, size)) return false;
    if (!(keeps_pixels ? MakeAlike(source, size, result) : MakeSmooth(source, size, result)))
        return false;
    DibHeader header = result.Block().Header();
    const DibHeader old = source.Block().Header();
    header.x_resolution = ScaledResolution(old.x_resolution, part.width, size.width);
    header.y_resolution = ScaledResolution(old.y_resolution, part.height, size.height);
    result.Block().SetHeader(header);
    if (keeps_pixels)
        NearestResize(source, part, size).To(result);
    else
        SmoothResize(source, part, size, way).To(result);
    return true;
}

}  // namespace rastrel
