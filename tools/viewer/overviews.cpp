#include "overviews.h"

#include <algorithm>
#include <cstdint>
#include <new>

namespace rastrel_view {

namespace {

constexpr int kMostSideWithoutOverview = 1024;
constexpr std::size_t kPixelBytes = 3;

int Half(int side) {
    return side / 2 + side % 2;
}

/// The means of 2 x 2 pixels of two rows of width pixels; an odd last column stands for two.
void HalveRows(const std::uint8_t* upper, const std::uint8_t* lower, int width, std::uint8_t* out) {
    const auto pairs = static_cast<std::size_t>(width / 2);
    for (std::size_t i = 0; i < pairs; ++i) {
        for (std::size_t at = 2 * i * kPixelBytes; at < (2 * i + 1) * kPixelBytes; ++at) {
            const int sum =
                upper[at] + upper[at + kPixelBytes] + lower[at] + lower[at + kPixelBytes];
            *out++ = static_cast<std::uint8_t>((sum + 2) / 4);
        }
    }
    if (width % 2 == 0) return;
    for (std::size_t at = 2 * pairs * kPixelBytes; at < (2 * pairs + 1) * kPixelBytes; ++at)
        *out++ = static_cast<std::uint8_t>((upper[at] + lower[at] + 1) / 2);
}

/// The rows of an image of any depth as 24-bit pixels, by bands from the top down.
class BandReader {
  public:
    explicit BandReader(const OwnedImage& image)
        : image_(image),
          height_(image.Height()),
          row_bytes_(static_cast<std::size_t>(image.Width()) * kPixelBytes) {
        constexpr std::size_t kBandBytes = std::size_t{1} << 20;
        rows_ = static_cast<int>(std::max<std::size_t>(kBandBytes / row_bytes_ / 2, 1)) * 2;
        band_.resize(static_cast<std::size_t>(rows_) * row_bytes_);
    }

    /// Rows must be asked for in order; the memory serves until the next call.
    const std::uint8_t* Pair(int row) {
        if (row % rows_ == 0) {
            const int count = std::min(rows_, height_ - row);
            Rastrel_GetImageByte(image_.Handle(), band_.data(), 24, 0, row, image_.Width(), count);
        }
        return &band_[static_cast<std::size_t>(row % rows_) * row_bytes_];
    }
    [[nodiscard]] std::size_t RowBytes() const { return row_bytes_; }

  private:
    const OwnedImage& image_;
    int height_;
    std::size_t row_bytes_;
    int rows_ = 0;
    std::vector<std::uint8_t> band_;
};

bool HalveImage(const OwnedImage& from, const OwnedImage& to, const Progress& progress) {
    constexpr int kRowsBetweenReports = 256;
    const int width = from.Width();
    const int height = from.Height();
    BandReader reader(from);
    for (int row = 0; row < height; row += 2) {
        if (row % kRowsBetweenReports == 0 && !progress(static_cast<double>(row) / height))
            return false;
        const std::uint8_t* upper = reader.Pair(row);
        const std::uint8_t* lower = row + 1 < height ? upper + reader.RowBytes() : upper;
        HalveRows(upper, lower, width, to.PictureRow(row / 2));
    }
    return true;
}

}  // namespace

std::vector<std::unique_ptr<OwnedImage>> MakeOverviews(const OwnedImage& image,
                                                       const Progress& progress) {
    std::vector<std::unique_ptr<OwnedImage>> overviews;
    const OwnedImage* last = &image;
    double before = 0;  // each level is a quarter of the work of the one before
    double share = 0.75;
    while (std::max(last->Width(), last->Height()) > kMostSideWithoutOverview) {
        auto next = OwnedImage::Blank(Half(last->Width()), Half(last->Height()));
        if (!next) return overviews;
        const auto part = [&](double fraction) { return progress(before + share * fraction); };
        try {
            if (!HalveImage(*last, *next, part)) return {};
        } catch (const std::bad_alloc&) {
            return overviews;
        }
        overviews.push_back(std::move(next));
        last = overviews.back().get();
        before += share;
        share /= 4;
    }
    return overviews;
}

}  // namespace rastrel_view
