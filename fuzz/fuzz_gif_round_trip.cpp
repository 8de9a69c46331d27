// Any pixels can be written, and come back as they were.

#include <algorithm>
#include <cstddef>
#include <vector>

#include "formats/gif/gif_image.h"
#include "read_and_use.h"

namespace {

/// A few bytes make many pixels: the upper half of each tells how often its value is repeated.
std::vector<std::uint8_t> ManyPixels(std::span<const std::uint8_t> bytes) {
    constexpr std::size_t kMostPixels = std::size_t{1} << 15;
    std::vector<std::uint8_t> pixels;
    for (std::size_t round = 0; pixels.size() < kMostPixels && round < 200; ++round) {
        for (const std::uint8_t byte : bytes) {
            const std::size_t count = round == 0 ? 1 : 1 + (byte >> 4) * round;
            const auto value = static_cast<std::uint8_t>(byte * (round | 1));
            pixels.insert(pixels.end(), count, value);
            if (pixels.size() >= kMostPixels) break;
        }
    }
    return pixels;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace rastrel;
    if (size < 3) return 0;
    const int width = 1 + data[0] + 256 * (data[1] & 15);
    constexpr int kDepths[] = {1, 4, 8, 8};
    const int bits = kDepths[data[1] >> 6];
    const auto pixels = ManyPixels({data + 2, size - 2});
    const int height =
        std::max(1, static_cast<int>(pixels.size() / static_cast<std::size_t>(width)));
    GifImage image;
    rastrel_fuzz::Require(image.Create(width, height, bits, -1));
    for (std::size_t at = 0; at < pixels.size(); ++at) {
        const auto row = static_cast<int>(at / static_cast<std::size_t>(width));
        const auto column = static_cast<int>(at % static_cast<std::size_t>(width));
        image.SetIndex(column, row, pixels[at]);
    }
    MemorySink sink;
    rastrel_fuzz::Require(image.WriteTo(sink));
    MemorySource source(sink.Bytes());
    GifImage again;
    rastrel_fuzz::Require(again.ReadFrom(source) && again.PixelSize() == image.PixelSize());
    rastrel_fuzz::Require(WidenTo8Bits(image));
    for (int y = 0; y < height; ++y) {
        const auto used = static_cast<std::size_t>(width);
        rastrel_fuzz::Require(
            std::ranges::equal(image.Row(y).first(used), again.Row(y).first(used)));
    }
    return 0;
}
