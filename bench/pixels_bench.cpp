// Conversions and pixel access, against memcpy of the bytes read and written, memset, and the plain
// form of the same work.

#include <benchmark/benchmark.h>

#include <cstring>

#include "support.h"

namespace rastrel_bench {
namespace {

/// memcpy from one buffer into fresh memory: what a conversion that makes a new bitmap cannot
/// avoid. A copy of n bytes reads n and writes n.
void CopyIntoFreshMemory(benchmark::State& state, std::size_t bytes_read,
                         std::size_t bytes_written) {
    const std::size_t bytes = (bytes_read + bytes_written) / 2;
    const auto from = FreshBuffer(bytes);
    std::memset(from.get(), 7, bytes);
    for (auto _ : state) {
        const auto to = FreshBuffer(bytes);
        std::memcpy(to.get(), from.get(), bytes);
        benchmark::DoNotOptimize(to.get());
        benchmark::ClobberMemory();
    }
}

/// The same into memory that is there already.
void CopyIntoUsedMemory(benchmark::State& state, std::size_t bytes_read,
                        std::size_t bytes_written) {
    const std::size_t bytes = (bytes_read + bytes_written) / 2;
    const auto from = FreshBuffer(bytes);
    const auto to = FreshBuffer(bytes);
    std::memset(from.get(), 7, bytes);
    std::memset(to.get(), 7, bytes);
    for (auto _ : state) {
        std::memcpy(to.get(), from.get(), bytes);
        benchmark::DoNotOptimize(to.get());
        benchmark::ClobberMemory();
    }
}

/// A palettised image of 8 bits whose pixels use the whole palette.
void MakeIndexed(int handle, int width, int height) {
    Rastrel_Create(handle, width, height, 8);
    FillWithGround(handle);
    std::uint8_t red[256];
    std::uint8_t green[256];
    std::uint8_t blue[256];
    for (int i = 0; i < 256; ++i) {
        red[i] = static_cast<std::uint8_t>(i);
        green[i] = static_cast<std::uint8_t>(255 - i);
        blue[i] = static_cast<std::uint8_t>(i * 7);
    }
    Rastrel_SetPalette(handle, 256, red, green, blue);
}

void Conv8To24(benchmark::State& state) {
    const BenchImage source;
    MakeIndexed(source.Handle(), kWidth, kHeight);
    const BenchImage image;
    for (auto _ : state) {
        state.PauseTiming();
        Rastrel_Copy(image.Handle(), source.Handle());
        state.ResumeTiming();
        Rastrel_Conv8To24(image.Handle());
    }
}

/// The definition: every pixel looked up and stored alone, into a new block of packed pixels.
void Conv8To24Plain(benchmark::State& state) {
    const BenchImage source;
    MakeIndexed(source.Handle(), kWidth, kHeight);
    const std::uint8_t* rows = Rastrel_GetRawImage(source.Handle());
    const auto row_bytes = static_cast<std::size_t>(Rastrel_GetEffWidth(source.Handle()));
    std::uint8_t colors[3][256];
    Rastrel_GetPalette(source.Handle(), 256, colors[2], colors[1], colors[0]);
    for (auto _ : state) {
        const auto out = FreshBuffer(kPixels * 3);
        std::uint8_t* to = out.get();
        for (std::size_t y = 0; y < kHeight; ++y) {
            for (std::size_t x = 0; x < kWidth; ++x) {
                const std::uint8_t index = rows[y * row_bytes + x];
                for (const auto& channel : colors)
                    *to++ = channel[index];
            }
        }
        benchmark::DoNotOptimize(out.get());
        benchmark::ClobberMemory();
    }
}

void Conv8To24Copy(benchmark::State& state) {
    CopyIntoFreshMemory(state, kPixels, kPixels * 3);
}

void Conv1To8(benchmark::State& state) {
    const BenchImage source(kWidth, kHeight, 1);
    FillWithGround(source.Handle());
    const BenchImage image;
    for (auto _ : state) {
        state.PauseTiming();
        Rastrel_Copy(image.Handle(), source.Handle());
        state.ResumeTiming();
        Rastrel_Conv1To8(image.Handle());
    }
}

void Conv1To8Copy(benchmark::State& state) {
    CopyIntoFreshMemory(state, kPixels / 8, kPixels);
}

void GetImageByte24(benchmark::State& state, int source_bits) {
    const BenchImage image;
    if (source_bits == 8) {
        MakeIndexed(image.Handle(), kWidth, kHeight);
    } else {
        Rastrel_Create(image.Handle(), kWidth, kHeight, source_bits);
        FillWithGround(image.Handle());
    }
    const auto out = FreshBuffer(kPixels * 3);
    std::memset(out.get(), 1, kPixels * 3);
    for (auto _ : state)
        Rastrel_GetImageByte(image.Handle(), out.get(), 24, 0, 0, kWidth, kHeight);
}

void GetImageByte24Copy(benchmark::State& state, int source_bits) {
    CopyIntoUsedMemory(state, kPixels * static_cast<std::size_t>(source_bits) / 8, kPixels * 3);
}

void Fill24(benchmark::State& state) {
    const BenchImage image(kWidth, kHeight, 24);
    Rastrel_Fill(image.Handle(), 1, 2, 3);  // the first touch of memory is another matter
    int shade = 0;
    for (auto _ : state) {
        ++shade;
        Rastrel_Fill(image.Handle(), shade, 100, 200);
    }
}

void Fill8(benchmark::State& state) {
    const BenchImage image(kWidth, kHeight, 8);
    Rastrel_Fill(image.Handle(), 1, 1, 1);
    int shade = 0;
    for (auto _ : state) {
        ++shade;
        Rastrel_Fill(image.Handle(), shade, shade, shade);
    }
}

void MemsetOf(benchmark::State& state, std::size_t bytes) {
    const auto to = FreshBuffer(bytes);
    std::memset(to.get(), 1, bytes);
    int shade = 0;
    for (auto _ : state) {
        std::memset(to.get(), ++shade, bytes);
        benchmark::DoNotOptimize(to.get());
        benchmark::ClobberMemory();
    }
}

void LookUp(benchmark::State& state) {
    const BenchImage image(10, 10, 24);
    for (auto _ : state)
        benchmark::DoNotOptimize(Rastrel_GetImageType(image.Handle()));
}

void GetRgb(benchmark::State& state) {
    const BenchImage image(1000, 10, 24);
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    int x = 0;
    for (auto _ : state) {
        x = x == 999 ? 0 : x + 1;
        benchmark::DoNotOptimize(Rastrel_GetRGB(image.Handle(), x, 3, &red, &green, &blue));
    }
}

BENCHMARK(Conv8To24)->Name("conv_8_to_24/rastrel");
BENCHMARK(Conv8To24Copy)->Name("conv_8_to_24/memcpy into fresh memory");
BENCHMARK(Conv8To24Plain)->Name("conv_8_to_24/pixel by pixel");
BENCHMARK(Conv1To8)->Name("conv_1_to_8/rastrel");
BENCHMARK(Conv1To8Copy)->Name("conv_1_to_8/memcpy into fresh memory");
BENCHMARK_CAPTURE(GetImageByte24, , 8)->Name("get_24_from_8/rastrel");
BENCHMARK_CAPTURE(GetImageByte24Copy, , 8)->Name("get_24_from_8/memcpy");
BENCHMARK_CAPTURE(GetImageByte24, , 24)->Name("get_24_from_24/rastrel");
BENCHMARK_CAPTURE(GetImageByte24Copy, , 24)->Name("get_24_from_24/memcpy");
BENCHMARK_CAPTURE(GetImageByte24, , 32)->Name("get_24_from_32/rastrel");
BENCHMARK_CAPTURE(GetImageByte24Copy, , 32)->Name("get_24_from_32/memcpy");
BENCHMARK(Fill24)->Name("fill_24/rastrel");
BENCHMARK_CAPTURE(MemsetOf, , kPixels * 3)->Name("fill_24/memset");
BENCHMARK(Fill8)->Name("fill_8/rastrel");
BENCHMARK_CAPTURE(MemsetOf, , kPixels)->Name("fill_8/memset");
BENCHMARK(LookUp)->Name("look_up/rastrel");
BENCHMARK(GetRgb)->Name("get_rgb/rastrel");

}  // namespace
}  // namespace rastrel_bench
