#include "imaging/resampling.h"

#include <algorithm>

namespace rastrel {

namespace {

/// New pixels as multiples of old ones: whole numbers, so that no rounding moves a centre or edge.
struct Scale {
    std::int64_t old_length;
    std::int64_t new_length;

    /// Twice new_length times the place of a new pixel's centre, old centres at whole numbers.
    [[nodiscard]] std::int64_t Center(std::int64_t i) const {
        return (2 * i + 1) * old_length - new_length;
    }
};

/// One window: old pixels from first on; those outside the image stand for its edge.
struct Window {
    std::int64_t first = 0;
    std::vector<double> weights;
};

/// Puts into the window the pixels around a centre.
void Interpolate(const Scale& scale, std::int64_t i, Resampling way, Window& window) {
    const std::int64_t center =
        std::clamp<std::int64_t>(scale.Center(i), 0, 2 * scale.new_length * (scale.old_length - 1));
    const std::int64_t before = center / (2 * scale.new_length);
    const double fraction = static_cast<double>(center % (2 * scale.new_length)) /
                            static_cast<double>(2 * scale.new_length);
    if (way == Resampling::kBilinear) {
        window.first = before;
        window.weights = {1 - fraction, fraction};
        return;
    }
    const auto weights = CubicConvolution::WeightsAt(fraction);
    window.first = before - 1;
    window.weights.assign(weights.begin(), weights.end());
}

/// Puts into the window the pixels that a new one covers, each by its part of the whole.
void Cover(const Scale& scale, std::int64_t i, Window& window) {
    // In units of which an old pixel has new_length and a new pixel old_length.
    const std::int64_t begin = i * scale.old_length;
    const std::int64_t end = begin + scale.old_length;
    window.first = begin / scale.new_length;
    window.weights.clear();
    for (std::int64_t at = window.first * scale.new_length; at < end; at += scale.new_length) {
        const std::int64_t covered = std::min(at + scale.new_length, end) - std::max(at, begin);
        window.weights.push_back(static_cast<double>(covered) /
                                 static_cast<double>(scale.old_length));
    }
}

std::size_t MostTaps(int old_length, int new_length, Resampling way) {
    const auto length = static_cast<std::size_t>(old_length);
    switch (way) {
        case Resampling::kArea:
            return std::min(length, length / static_cast<std::size_t>(new_length) + 2);
        case Resampling::kBicubic:
            return std::min<std::size_t>(length, 4);
        default:
            return std::min<std::size_t>(length, 2);
    }
}

}  // namespace

ResamplingTaps::ResamplingTaps(int old_length, int new_length, Resampling way)
    : count_(MostTaps(old_length, new_length, way)),
      first_(static_cast<std::size_t>(new_length)),
      weights_(first_.size() * count_) {
    const Scale scale{old_length, new_length};
    const auto count = static_cast<std::int64_t>(count_);
    Window window;
    for (std::size_t i = 0; i < first_.size(); ++i) {
        const auto at = static_cast<std::int64_t>(i);
        if (way == Resampling::kArea)
            Cover(scale, at, window);
        else
            Interpolate(scale, at, way, window);
        const std::int64_t first =
            std::clamp<std::int64_t>(window.first, 0, scale.old_length - count);
        first_[i] = static_cast<std::int32_t>(first);
        std::vector<double> inside(count_);
        for (std::size_t k = 0; k < window.weights.size(); ++k) {
            const std::int64_t pixel = std::clamp<std::int64_t>(
                window.first + static_cast<std::int64_t>(k), 0, scale.old_length - 1);
            inside[static_cast<std::size_t>(pixel - first)] += window.weights[k];
        }
        std::transform(inside.begin(), inside.end(),
                       weights_.begin() + static_cast<std::ptrdiff_t>(i * count_),
                       [](double weight) { return static_cast<float>(weight); });
    }
}

std::vector<std::int32_t> NearestPixels(int old_length, int new_length) {
    std::vector<std::int32_t> nearest(static_cast<std::size_t>(new_length));
    for (std::size_t i = 0; i < nearest.size(); ++i) {
        const auto center = (2 * static_cast<std::int64_t>(i) + 1) * old_length;
        nearest[i] = static_cast<std::int32_t>(center / (2 * std::int64_t{new_length}));
    }
    return nearest;
}

}  // namespace rastrel
