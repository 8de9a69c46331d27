#include "support.h"

#include <algorithm>
#include <filesystem>

namespace rastrel_bench {

void FillWithGround(int handle) {
    std::uint8_t* rows = Rastrel_GetRawImage(handle);
    const auto row_bytes = static_cast<std::size_t>(Rastrel_GetEffWidth(handle));
    const auto height = static_cast<std::size_t>(Rastrel_GetHeight(handle));
    std::uint32_t state = 1;
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < row_bytes; ++x) {
            state = state * 1664525 + 1013904223;
            const std::size_t ground = (x >> 4) + (y >> 3);
            const bool is_rough = ((x >> 9) + (y >> 7)) % 2 == 0;
            const std::uint32_t noise = is_rough ? state >> 28 : 0;
            rows[y * row_bytes + x] = static_cast<std::uint8_t>(ground + noise);
        }
    }
}

std::vector<float> FractalHeights(int side) {
    const auto size = static_cast<std::size_t>(side);
    std::vector<float> heights(size * size);
    std::uint32_t state = 7;
    const auto random = [&state] {
        state = state * 1664525 + 1013904223;
        return static_cast<float>(state >> 8) * 0x1p-24f - 0.5f;
    };
    // Wraps around, so that every cell has its neighbours at every distance.
    const auto at = [&](std::size_t row, std::size_t column) -> float& {
        return heights[row % size * size + column % size];
    };
    float roughness = 1;
    for (std::size_t step = size; step > 1; step /= 2, roughness *= 0.5f) {
        const std::size_t half = step / 2;
        for (std::size_t row = 0; row < size; row += step) {
            for (std::size_t column = 0; column < size; column += step)
                at(row + half, column + half) =
                    (at(row, column) + at(row + step, column) + at(row, column + step) +
                     at(row + step, column + step)) /
                        4 +
                    roughness * random();
        }
        for (std::size_t row = 0; row < size; row += half) {
            for (std::size_t column = row % step == 0 ? half : 0; column < size; column += step)
                at(row, column) = (at(row + half, column) + at(row + size - half, column) +
                                   at(row, column + half) + at(row, column + size - half)) /
                                      4 +
                                  roughness * random();
        }
    }
    std::vector<float> sorted = heights;
    const auto sea = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 10);
    std::nth_element(sorted.begin(), sea, sorted.end());
    const float low = *sea;
    const float high = *std::max_element(heights.begin(), heights.end());
    for (float& height : heights)
        height = std::max(height - low, 0.0f) / (high - low);
    return heights;
}

std::unique_ptr<std::uint8_t[]> FreshBuffer(std::size_t bytes) {
    return std::unique_ptr<std::uint8_t[]>(new std::uint8_t[bytes]);
}

std::string TemporaryPath(const std::string& name) {
    return (std::filesystem::temp_directory_path() / name).string();
}

}  // namespace rastrel_bench
