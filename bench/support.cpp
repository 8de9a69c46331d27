#include "support.h"

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

std::unique_ptr<std::uint8_t[]> FreshBuffer(std::size_t bytes) {
    return std::unique_ptr<std::uint8_t[]>(new std::uint8_t[bytes]);
}

std::string TemporaryPath(const std::string& name) {
    return (std::filesystem::temp_directory_path() / name).string();
}

}  // namespace rastrel_bench
