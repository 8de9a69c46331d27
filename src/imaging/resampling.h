#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace rastrel {

/// How a new pixel's value is found from the old ones.
enum class Resampling {
    kNearest,   ///< the pixel that holds the new one's centre
    kBilinear,  ///< between the two nearest of each row and column
    kBicubic,   ///< the cubic convolution through the four nearest
    kArea,      ///< the average over the area that the new pixel covers
};

/// The weights of the four pixels around a place, which lies fraction (0..1) behind the second:
/// weight i is ((cubic * fraction + square) * fraction + linear) * fraction + constant, of i.
/// R. G. Keys, "Cubic Convolution Interpolation for Digital Image Processing" (1981), a = -1/2.
struct CubicConvolution {
    static constexpr float kCubic[4] = {-0.5F, 1.5F, -1.5F, 0.5F};
    static constexpr float kSquare[4] = {1, -2.5F, 2, -0.5F};
    static constexpr float kLinear[4] = {-0.5F, 0, 0.5F, 0};
    static constexpr float kConstant[4] = {0, 1, 0, 0};

    template <class Float>
    [[nodiscard]] static std::array<Float, 4> WeightsAt(Float fraction) {
        std::array<Float, 4> weights = {};
        for (std::size_t i = 0; i < weights.size(); ++i)
            weights[i] = ((kCubic[i] * fraction + kSquare[i]) * fraction + kLinear[i]) * fraction +
                         kConstant[i];
        return weights;
    }
};

/// For every new row, or column, the old ones that it is made of: a window of equally many
/// neighbours, all inside the image, and their weights, whose sum is 1. Pixel centres are aligned:
/// the centre of new pixel i lies at (i + 0.5) * old / new - 0.5, and the image's edge pixels go on
/// outside it.
class ResamplingTaps {
  public:
    /// Lengths of at least 1, and a way that has weights: any but the nearest.
    ResamplingTaps(int old_length, int new_length, Resampling way);

    [[nodiscard]] std::size_t Count() const { return count_; }
    [[nodiscard]] std::size_t Length() const { return first_.size(); }
    /// The first old pixel of each window.
    [[nodiscard]] std::span<const std::int32_t> First() const { return first_; }
    /// Count() weights for each new pixel.
    [[nodiscard]] std::span<const float> Weights() const { return weights_; }
    [[nodiscard]] std::span<const float> WeightsOf(int i) const {
        return {weights_.data() + static_cast<std::size_t>(i) * count_, count_};
    }

  private:
    std::size_t count_;
    std::vector<std::int32_t> first_;
    std::vector<float> weights_;
};

/// The old pixel that holds the centre of each new one.
[[nodiscard]] std::vector<std::int32_t> NearestPixels(int old_length, int new_length);

}  // namespace rastrel
