// Compositing of images of 4096 x 4096 pixels of 24 bits, against memcpy of the bytes read and
// written and the same rule pixel by pixel.

#include <benchmark/benchmark.h>

#include <cstring>

#include "support.h"

namespace rastrel_bench {
namespace {

constexpr int kSide = 4096;
constexpr std::size_t kBytes = std::size_t{kSide} * kSide * 3;

/// Two images of different ground that all runs share.
struct Pair {
    static Pair& Get() {
        static Pair pair;
        return pair;
    }
    BenchImage first{kSide, kSide, 24};
    BenchImage second{kSide, kSide, 24};

  private:
    Pair() {
        FillWithGround(first.Handle());
        FillWithGround(second.Handle());
        // Not the first one's pixels: the key and the mask must not be the same everywhere.
        Rastrel_Luminance(second.Handle(), 0, 0, 0, 0, 77);
    }
};

using Call = int (*)(int first, int second);

void Run(benchmark::State& state, Call call) {
    const Pair& pair = Pair::Get();
    for (auto _ : state) {
        if (call(pair.first.Handle(), pair.second.Handle()) != 1)
            state.SkipWithError("the call failed");
    }
}

/// memcpy of half of the bytes that an operation reads and writes.
void Copy(benchmark::State& state, std::size_t images) {
    const std::size_t bytes = kBytes * images / 2;
    const auto from = FreshBuffer(bytes);
    const auto to = FreshBuffer(bytes);
    std::memset(from.get(), 1, bytes);
    std::memset(to.get(), 2, bytes);
    for (auto _ : state) {
        std::memcpy(to.get(), from.get(), bytes);
        benchmark::ClobberMemory();
    }
}

/// A tenth of a blend, told pixel by pixel through the interface.
void BlendPixels(benchmark::State& state) {
    const Pair& pair = Pair::Get();
    for (auto _ : state) {
        for (int y = 0; y < kSide / 10; ++y) {
            for (int x = 0; x < kSide; ++x) {
                std::uint8_t a[3];
                std::uint8_t b[3];
                Rastrel_GetRGB(pair.first.Handle(), x, y, &a[0], &a[1], &a[2]);
                Rastrel_GetRGB(pair.second.Handle(), x, y, &b[0], &b[1], &b[2]);
                for (int i = 0; i < 3; ++i)
                    a[i] = static_cast<std::uint8_t>(a[i] * (1 - 0.3) + b[i] * 0.3);
                Rastrel_SetRGB(pair.first.Handle(), x, y, a[0], a[1], a[2]);
            }
        }
    }
}

[[maybe_unused]] const bool registered = [] {
    const auto add = [](const std::string& name, Call call) {
        benchmark::RegisterBenchmark((name + "/rastrel").c_str(), Run, call)->UseRealTime();
    };
    const auto add_copy = [](const std::string& name, std::size_t images) {
        benchmark::RegisterBenchmark((name + "/memcpy").c_str(), Copy, images)->UseRealTime();
    };
    add("luminance", [](int first, int) { return Rastrel_Luminance(first, 0, 0, 0, 0, 1); });
    add_copy("luminance", 2);
    add("luminance_key", [](int first, int) { return Rastrel_Luminance(first, 1, 9, 9, 9, -1); });
    add_copy("luminance_key", 2);
    add("apply_mask",
        [](int first, int second) { return Rastrel_ApplyMask(first, second, 0, 9, 9, 9); });
    add_copy("apply_mask", 3);
    add("fusion",
        [](int first, int second) { return Rastrel_Fusion(first, second, 0, 0, 0, 0, 0.3); });
    add_copy("fusion", 3);
    benchmark::RegisterBenchmark("fusion/a tenth of it, pixel by pixel", BlendPixels)
        ->UseRealTime();
    add("fusion_key",
        [](int first, int second) { return Rastrel_Fusion(first, second, 1, 80, 80, 80, 0.3); });
    add_copy("fusion_key", 3);
    add("fusion_multiply",
        [](int first, int second) { return Rastrel_FusionEx(first, second, 0, 0, 0, 0, 0.3, 1); });
    add_copy("fusion_multiply", 3);
    add("fusion_overlay",
        [](int first, int second) { return Rastrel_FusionEx(first, second, 0, 0, 0, 0, 0.3, 3); });
    add_copy("fusion_overlay", 3);
    return true;
}();

}  // namespace
}  // namespace rastrel_bench
