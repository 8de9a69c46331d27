#include "imaging/cell_pixels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <optional>

#include "core/cell_grid.h"
#include "core/pixel_reader.h"
#include "imaging/shown_rows.h"

namespace rastrel {

namespace {

constexpr std::size_t kMostFound = CellPixels::kMostCells + simd::kCellPadding;

/// The same expression as the kernels'.
double CoordinateAt(const simd::CellRow& cells, const simd::CoordinateLine& line, int column) {
    const double x = cells.x_min + (column + 0.5) * cells.cell_size;
    return line.coefficient * x + line.constant + line.origin;
}

/// The pixels of the used part of a picture, addressed by their places in the whole: where they
/// stand in the image or in a copy.
class PixelPlane {
  public:
    /// The pixels as they are stored, or as they are shown, when they are stored like that.
    PixelPlane(const RasterImage& stored, const Rect& used, std::size_t pixel_bytes)
        : PixelPlane(stored, used, pixel_bytes, used.x, used.y) {}
    /// A copy of the used part.
    PixelPlane(std::unique_ptr<RasterImage> copy, const Rect& used, std::size_t pixel_bytes)
        : PixelPlane(*copy, used, pixel_bytes, 0, 0) {
        copy_ = std::move(copy);
    }

    [[nodiscard]] const Rect& Used() const { return used_; }
    [[nodiscard]] std::size_t PixelBytes() const { return pixel_bytes_; }
    [[nodiscard]] const simd::PixelSteps& Steps() const { return steps_; }
    /// What the steps lead from: the used part's upper-left pixel.
    [[nodiscard]] const std::uint8_t* Origin() const { return origin_; }
    [[nodiscard]] const std::uint8_t* At(int x, int y) const {
        return origin_ + std::ptrdiff_t{y - used_.y} * steps_.row +
               std::ptrdiff_t{x - used_.x} * steps_.column;
    }

  private:
    PixelPlane(const RasterImage& image, const Rect& used, std::size_t pixel_bytes, int x, int y)
        : used_(used),
          pixel_bytes_(pixel_bytes),
          origin_(image.PictureRow(y).data() + static_cast<std::size_t>(x) * pixel_bytes) {
        steps_.column = static_cast<std::int32_t>(pixel_bytes);
        steps_.row = -image.EffectiveWidth();
        steps_.base = static_cast<std::int32_t>(
            -(std::int64_t{used.x} * steps_.column + std::int64_t{used.y} * steps_.row));
    }

    Rect used_;
    std::size_t pixel_bytes_;
    const std::uint8_t* origin_;
    simd::PixelSteps steps_;
    std::unique_ptr<RasterImage> copy_;
};

/// An image for a copy of the used part; null without memory.
std::unique_ptr<RasterImage> MakeCopy(const Rect& used, std::size_t pixel_bytes) {
    auto copy = std::make_unique<RasterImage>();
    const int bits = static_cast<int>(8 * pixel_bytes);
    return copy->Create(used.width, used.height, bits, -1) ? std::move(copy) : nullptr;
}

std::optional<PixelPlane> StoredPlane(const RasterImage& source, const Rect& used) {
    if (source.Bits() >= 8)
        return PixelPlane(source, used, static_cast<std::size_t>(source.Bits() / 8));
    auto copy = MakeCopy(used, 1);
    if (!copy) return std::nullopt;
    PixelReader reader(source, PixelForm::kValues);
    for (int y = 0; y < used.height; ++y)
        reader.Read(used.x, used.y + y,
                    copy->PictureRow(y).first(static_cast<std::size_t>(used.width)));
    return PixelPlane(std::move(copy), used, 1);
}

std::optional<PixelPlane> ShownPlane(const RasterImage& source, const Rect& used) {
    ShownRows rows(source, used);
    if (rows.AreStored()) return PixelPlane(source, used, rows.Channels());
    auto copy = MakeCopy(used, rows.Channels());
    if (!copy) return std::nullopt;
    for (int y = 0; y < used.height; ++y)
        std::copy_n(rows.Row(y), rows.Samples(), copy->PictureRow(y).begin());
    return PixelPlane(std::move(copy), used, rows.Channels());
}

template <std::size_t kBytes>
void CopyPixels(const std::uint8_t* origin, const std::int32_t* offsets, std::size_t count,
                std::uint8_t* out) {
    // Three bytes are quicker copied as four, of which the last is the next pixel's; every block
    // has more bytes behind its last pixel.
    constexpr std::size_t kCopied = kBytes == 3 ? 4 : kBytes;
    for (std::size_t i = 0; i + 1 < count; ++i, out += kBytes)
        std::memcpy(out, origin + offsets[i], kCopied);
    std::memcpy(out, origin + offsets[count - 1], kBytes);
}

class NearestCells : public CellPixels {
  public:
    explicit NearestCells(PixelPlane plane) : plane_(std::move(plane)) {}

    void Find(const simd::CellRow& cells, CellRun run, std::uint8_t* out) override {
        const auto count = static_cast<std::size_t>(run.end - run.first);
        simd::FindNearest(cells, plane_.Steps(), kNearestPixelShift, run.first, count,
                          offsets_.data());
        switch (plane_.PixelBytes()) {
            case 1:
                CopyPixels<1>(plane_.Origin(), offsets_.data(), count, out);
                break;
            case 2:
                CopyPixels<2>(plane_.Origin(), offsets_.data(), count, out);
                break;
            case 3:
                CopyPixels<3>(plane_.Origin(), offsets_.data(), count, out);
                break;
            default:
                CopyPixels<4>(plane_.Origin(), offsets_.data(), count, out);
                break;
        }
    }

  private:
    PixelPlane plane_;
    std::array<std::int32_t, kMostFound> offsets_ = {};
};

/// A place between pixels along an axis: the pixel at or before it, and how far behind that it is.
struct Between {
    int before;
    double fraction;

    Between(double place, int first, int length) {
        const double inside = std::clamp<double>(place, first, first + length - 1);
        before = static_cast<int>(inside);
        fraction = inside - before;
    }
};

class SmoothCells : public CellPixels {
  public:
    SmoothCells(PixelPlane plane, Resampling way) : plane_(std::move(plane)), way_(way) {}

    void Find(const simd::CellRow& cells, CellRun run, std::uint8_t* out) override {
        const CellRun whole = RunOfWholeSquares(cells, run);
        FindSingly(cells, {run.first, whole.first}, out);
        if (!whole.IsEmpty()) FindInSquares(cells, whole, out + BytesOf(whole.first - run.first));
        FindSingly(cells, {whole.end, run.end}, out + BytesOf(whole.end - run.first));
    }

  private:
    [[nodiscard]] std::size_t BytesOf(int cells) const {
        return static_cast<std::size_t>(cells) * plane_.PixelBytes();
    }

    /// The cells all of whose pixels are used ones, where they can be found many at a time; empty
    /// at the end of the run if none can.
    [[nodiscard]] CellRun RunOfWholeSquares(const simd::CellRow& cells, CellRun run) const {
        if (plane_.PixelBytes() != 3) return {run.end, run.end};
        const Rect& used = plane_.Used();
        const int around = way_ == Resampling::kBicubic ? 1 : 0;
        const auto within = [&](const simd::CoordinateLine& line, int first, int length) {
            run = RunWithin(cells, line, run, 0, first + around, first + length - 1 - around);
        };
        const int end = run.end;
        within(cells.x, used.x, used.width);
        within(cells.y, used.y, used.height);
        return run.IsEmpty() ? CellRun{end, end} : run;
    }

    void FindInSquares(const simd::CellRow& cells, CellRun run, std::uint8_t* out) {
        const auto count = static_cast<std::size_t>(run.end - run.first);
        simd::FindSquares(cells, plane_.Steps(), run.first, count, offsets_.data(), right_.data(),
                          down_.data());
        const simd::PixelSquares squares{plane_.Origin(), plane_.Steps().row, offsets_.data(),
                                         right_.data(), down_.data()};
        if (way_ == Resampling::kBicubic)
            simd::InterpolateCubic(squares, count, out);
        else
            simd::Interpolate(squares, count, out);
    }

    void FindSingly(const simd::CellRow& cells, CellRun run, std::uint8_t* out) const {
        const Rect& used = plane_.Used();
        for (int i = run.first; i < run.end; ++i, out += plane_.PixelBytes()) {
            const Between x(CoordinateAt(cells, cells.x, i), used.x, used.width);
            const Between y(CoordinateAt(cells, cells.y, i), used.y, used.height);
            const Sums sums = way_ == Resampling::kBilinear ? BilinearAt(x, y) : BicubicAt(x, y);
            StoreShownRow(std::span(sums).first(plane_.PixelBytes()), plane_.PixelBytes(),
                          {out, plane_.PixelBytes()});
        }
    }

    /// A pixel's samples, to be added up.
    using Sums = std::array<float, 4>;

    /// Places outside the used part stand for its edge.
    [[nodiscard]] Sums SamplesAt(int x, int y) const {
        const Rect& used = plane_.Used();
        Sums samples = {};
        LoadShownRow(plane_.At(std::clamp(x, used.x, used.x + used.width - 1),
                               std::clamp(y, used.y, used.y + used.height - 1)),
                     plane_.PixelBytes(), std::span(samples).first(plane_.PixelBytes()));
        return samples;
    }

    /// In the kernel's order: first downward, then to the right.
    [[nodiscard]] Sums BilinearAt(const Between& x, const Between& y) const {
        const auto between = [](const Sums& from, const Sums& to, double fraction) {
            Sums sums;
            for (std::size_t c = 0; c < sums.size(); ++c)
                sums[c] = from[c] + (to[c] - from[c]) * static_cast<float>(fraction);
            return sums;
        };
        const auto down = [&](int column) {
            return between(SamplesAt(column, y.before), SamplesAt(column, y.before + 1),
                           y.fraction);
        };
        return between(down(x.before), down(x.before + 1), x.fraction);
    }

    /// In the kernel's order: first to the right, then downward.
    [[nodiscard]] Sums BicubicAt(const Between& x, const Between& y) const {
        const auto weigh = [](double fraction, const auto& samples_of) {
            const auto weights = CubicConvolution::WeightsAt(static_cast<float>(fraction));
            Sums sums = {};
            for (int i = 0; i < 4; ++i) {
                const Sums samples = samples_of(i - 1);
                for (std::size_t c = 0; c < sums.size(); ++c)
                    sums[c] += samples[c] * weights[static_cast<std::size_t>(i)];
            }
            return sums;
        };
        return weigh(y.fraction, [&](int j) {
            return weigh(x.fraction, [&](int i) { return SamplesAt(x.before + i, y.before + j); });
        });
    }

    PixelPlane plane_;
    Resampling way_;
    std::array<std::int32_t, kMostFound> offsets_ = {};
    std::array<float, kMostFound> right_ = {};
    std::array<float, kMostFound> down_ = {};
};

/// The first cell of a run for which is_past holds, as it does for all after it.
template <class IsPast>
int FirstWhere(CellRun run, IsPast is_past) {
    while (run.first < run.end) {
        const int middle = run.first + (run.end - run.first) / 2;
        if (is_past(middle))
            run.end = middle;
        else
            run.first = middle + 1;
    }
    return run.first;
}

}  // namespace

CellRun RunWithin(const simd::CellRow& cells, const simd::CoordinateLine& line, CellRun among,
                  double shift, double from, double to) {
    const auto is_from_on = [&](int i) { return CoordinateAt(cells, line, i) + shift >= from; };
    const auto is_before_to = [&](int i) { return CoordinateAt(cells, line, i) + shift < to; };
    CellRun within;
    if (line.coefficient >= 0) {
        within.first = FirstWhere(among, is_from_on);
        within.end = FirstWhere({within.first, among.end}, [&](int i) { return !is_before_to(i); });
    } else {
        within.first = FirstWhere(among, is_before_to);
        within.end = FirstWhere({within.first, among.end}, [&](int i) { return !is_from_on(i); });
    }
    return within;
}

std::unique_ptr<CellPixels> MakeNearestCells(const RasterImage& source, const Rect& used) {
    auto plane = StoredPlane(source, used);
    return plane ? std::make_unique<NearestCells>(*std::move(plane)) : nullptr;
}

std::unique_ptr<CellPixels> MakeSmoothCells(const RasterImage& source, const Rect& used,
                                            Resampling way) {
    auto plane = ShownPlane(source, used);
    return plane ? std::make_unique<SmoothCells>(*std::move(plane), way) : nullptr;
}

}  // namespace rastrel
