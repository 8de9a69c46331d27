// Colour reduction of a photograph of two million colours, whole and in part, against the algorithm
// in plain form and, where its development files are, leptonica's median cut without dithering.

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

#include "core/raster_image.h"
#include "formats/quantize/conv24to8.h"
#include "scenes.h"
#include "support/plain_quantizer.h"
#if RASTREL_BENCH_LEPTONICA
#include <leptonica/allheaders.h>
#endif

namespace rastrel_bench {
namespace {

constexpr int kColors = 255;

/// The upper left of the photograph.
std::vector<std::uint8_t> PartOfPhotograph(int side) {
    std::vector<std::uint8_t> pixels;
    for (int y = 0; y < side; ++y) {
        const auto row = Photograph().begin() + std::ptrdiff_t{3} * kSceneSide * y;
        pixels.insert(pixels.end(), row, row + std::ptrdiff_t{3} * side);
    }
    return pixels;
}

void SetBytes(benchmark::State& state, int side) {
    state.SetBytesProcessed(state.iterations() * std::int64_t{3} * side * side);
}

void ReduceByLibrary(benchmark::State& state, int side) {
    const std::vector<std::uint8_t> pixels = PartOfPhotograph(side);
    rastrel::RasterImage image;
    if (!image.Create(side, side, 24, -1)) state.SkipWithError("no memory");
    const std::size_t row_bytes = static_cast<std::size_t>(side) * 3;
    for (int y = 0; y < side; ++y)
        std::memcpy(image.PictureRow(y).data(), &pixels[row_bytes * static_cast<std::size_t>(y)],
                    row_bytes);
    std::string status;
    for (auto _ : state)
        benchmark::DoNotOptimize(rastrel::Conv24to8(image, kColors, status));
    SetBytes(state, side);
}

void ReduceInPlainForm(benchmark::State& state, int side) {
    const std::vector<std::uint8_t> pixels = PartOfPhotograph(side);
    for (auto _ : state)
        benchmark::DoNotOptimize(rastrel_test::ReducePlainly(pixels, kColors));
    SetBytes(state, side);
}

#if RASTREL_BENCH_LEPTONICA

void ReduceByLeptonica(benchmark::State& state, int side) {
    const std::vector<std::uint8_t> pixels = PartOfPhotograph(side);
    PIX* pix = pixCreate(side, side, 32);
    l_uint32* words = pixGetData(pix);
    for (std::size_t at = 0; at < pixels.size(); at += 3)
        composeRGBPixel(pixels[at + 2], pixels[at + 1], pixels[at], words + at / 3);
    for (auto _ : state) {
        // Five bits a component as here, every pixel counted.
        PIX* reduced = pixMedianCutQuantGeneral(pix, 0, 8, kColors, 5, 1, 0);
        if (reduced == nullptr) state.SkipWithError("reduction failed");
        pixDestroy(&reduced);
    }
    pixDestroy(&pix);
    SetBytes(state, side);
}

#endif

[[maybe_unused]] const bool registered = [] {
    for (const int side : {kSceneSide, 300}) {
        const auto add = [side](const std::string& form, auto run) {
            return benchmark::RegisterBenchmark(
                       ("quantize_" + std::to_string(side) + "/" + form).c_str(), run, side)
                ->Unit(benchmark::kMillisecond)
                ->UseRealTime();
        };
        add("rastrel", ReduceByLibrary);
        auto* plain = add("plain form", ReduceInPlainForm);
        if (side == kSceneSide) plain->Iterations(1);
#if RASTREL_BENCH_LEPTONICA
        add("pixMedianCutQuant", ReduceByLeptonica);
#endif
    }
    return true;
}();

}  // namespace
}  // namespace rastrel_bench
