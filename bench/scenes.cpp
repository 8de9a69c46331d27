#include "scenes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "support.h"

namespace rastrel_bench {

namespace {

constexpr std::size_t kSide = kSceneSide;
constexpr std::size_t kScenePixels = kSide * kSide;

const std::vector<float>& Heights() {
    static const std::vector<float> heights = FractalHeights(kSceneSide);
    return heights;
}

std::uint8_t Level(float value) {
    return static_cast<std::uint8_t>(std::clamp(value, 0.0f, 255.0f));
}

std::vector<std::uint8_t> MakePhotograph() {
    const std::vector<float>& heights = Heights();
    std::vector<std::uint8_t> pixels(3 * kScenePixels);
    std::uint32_t state = 3;
    for (std::size_t at = 0; at < kScenePixels; ++at) {
        state = state * 1664525 + 1013904223;
        const auto grain = [&state](unsigned shift) {
            return static_cast<float>(state >> shift & 31) - 16;
        };
        const float light = 3000 * (heights[(at + kSide + 1) % kScenePixels] - heights[at]);
        const float height = heights[at];
        // What grows there has nothing to do with the height.
        const float wood = heights[(at + kScenePixels / 3 + kSide / 2) % kScenePixels];
        const float dryness = heights[(at + kScenePixels / 5 + kSide / 7) % kScenePixels];
        pixels[3 * at] = Level(70 + 150 * dryness - 60 * wood + light + grain(8));
        pixels[3 * at + 1] = Level(60 + 160 * wood + 30 * height + light + grain(16));
        pixels[3 * at + 2] = Level(40 + 190 * height - 30 * wood + light + grain(24));
    }
    return pixels;
}

std::vector<std::uint8_t> MakeDithered() {
    constexpr std::array<std::array<int, 4>, 4> kThresholds = {
        {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}}};
    const std::vector<std::uint8_t>& photograph = Photograph();
    std::vector<std::uint8_t> indices(kScenePixels);
    for (std::size_t at = 0; at < kScenePixels; ++at) {
        const int threshold = kThresholds[at / kSide % 4][at % 4];
        int index = 0;
        for (std::size_t part = 0; part < 3; ++part)
            index = index * 6 + (photograph[3 * at + part] * 5 + threshold * 16) / 256;
        indices[at] = static_cast<std::uint8_t>(index);
    }
    return indices;
}

std::vector<std::uint8_t> MakeMap() {
    const std::vector<float>& heights = Heights();
    std::vector<std::uint8_t> indices(kScenePixels);
    for (std::size_t at = 0; at < kScenePixels; ++at) {
        const bool is_line = at % kSide % 512 == 0 || at / kSide % 512 == 0;
        indices[at] = is_line ? 11 : static_cast<std::uint8_t>(std::ceil(heights[at] * 10));
    }
    return indices;
}

}  // namespace

const std::vector<std::uint8_t>& Photograph() {
    static const std::vector<std::uint8_t> pixels = MakePhotograph();
    return pixels;
}

const std::vector<std::uint8_t>& DitheredPhotograph() {
    static const std::vector<std::uint8_t> indices = MakeDithered();
    return indices;
}

const std::vector<std::uint8_t>& FlatMap() {
    static const std::vector<std::uint8_t> indices = MakeMap();
    return indices;
}

}  // namespace rastrel_bench
