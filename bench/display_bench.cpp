// Drawing on a surface in memory, against memcpy of the bytes that are read and written: of the
// source the pixels that are shown, of the surface the pixels that are drawn. pixman, where it is
// installed, scales by its own nearest filter.

#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>
#include <cstring>

#include "support.h"
#include "system_files.h"

#if RASTREL_BENCH_PIXMAN
#include <pixman.h>
#endif

namespace rastrel_bench {
namespace {

constexpr int kSide = 4096;
constexpr int kScreenWidth = 1920;
constexpr int kScreenHeight = 1080;

/// A surface with pixels of its own.
class BenchSurface {
  public:
    BenchSurface(int width, int height)
        : pixels_(
              FreshBuffer(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4)),
          surface_{width, height, width * 4, pixels_.get()} {
        std::memset(pixels_.get(), 1, Bytes());
    }
    [[nodiscard]] RastrelDC Get() { return &surface_; }
    [[nodiscard]] std::uint8_t* Pixels() { return pixels_.get(); }
    [[nodiscard]] std::size_t Bytes() const {
        return static_cast<std::size_t>(surface_.stride) *
               static_cast<std::size_t>(surface_.height);
    }

  private:
    std::unique_ptr<std::uint8_t[]> pixels_;
    RastrelSurface surface_;
};

void SetColors(int handle) {
    std::array<std::uint8_t, 256> red = {};
    std::array<std::uint8_t, 256> green = {};
    std::array<std::uint8_t, 256> blue = {};
    for (std::size_t i = 0; i < red.size(); ++i) {
        red[i] = static_cast<std::uint8_t>(i);
        green[i] = static_cast<std::uint8_t>(255 - i);
        blue[i] = static_cast<std::uint8_t>(i * 7);
    }
    Rastrel_SetPalette(handle, 256, red.data(), green.data(), blue.data());
}

/// A square image, with colours of its own up to 8 bits.
class Ground {
  public:
    Ground(int side, int bits) : image_(side, side, bits) {
        FillWithGround(image_.Handle());
        if (bits <= 8) SetColors(image_.Handle());
    }
    [[nodiscard]] int Handle() const { return image_.Handle(); }

  private:
    BenchImage image_;
};

/// The image as GIF files give it, with a transparent index.
void MakeTransparent(int handle) {
    // The control extension goes behind the header and the global table of 256 colours.
    constexpr std::size_t kBehindTable = 13 + std::size_t{3} * 256;
    constexpr std::array<std::uint8_t, 8> kControl = {0x21, 0xf9, 4, 1, 0, 0, 16, 0};
    const std::string name = TemporaryPath("rastrel-bench-transparent.gif");
    Rastrel_Save(handle, name.c_str(), RASTREL_TYPE_GIF);
    std::vector<std::uint8_t> bytes(FileSize(name));
    if (!ReadWhole(name, bytes.data(), bytes.size())) return;
    bytes.insert(bytes.begin() + kBehindTable, kControl.begin(), kControl.end());
    if (!WriteWhole(name, bytes.data(), bytes.size())) return;
    Rastrel_Read(handle, name.c_str(), RASTREL_TYPE_GIF);
    std::remove(name.c_str());
}

void Draw(benchmark::State& state, int side, int bits) {
    const Ground image(side, bits);
    BenchSurface surface(side, side);
    for (auto _ : state)
        Rastrel_Draw(image.Handle(), surface.Get(), 0, 0, -1, -1, 0, 0);
}

void StretchOnScreen(benchmark::State& state, int handle) {
    BenchSurface surface(kScreenWidth, kScreenHeight);
    for (auto _ : state) {
        Rastrel_Stretch(handle, surface.Get(), 0, 0, kScreenWidth, kScreenHeight, 0, 0, kSide,
                        kSide);
    }
}

void Stretch(benchmark::State& state, int bits) {
    const Ground image(kSide, bits);
    StretchOnScreen(state, image.Handle());
}

void StretchTransparent(benchmark::State& state) {
    const Ground image(kSide, 8);
    MakeTransparent(image.Handle());
    StretchOnScreen(state, image.Handle());
}

/// memcpy of n bytes reads n and writes n.
void Copy(benchmark::State& state, std::size_t pixels, int bits) {
    const std::size_t bytes = pixels * (static_cast<std::size_t>(bits) / 8 + 4) / 2;
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

constexpr std::size_t kScreenPixels = std::size_t{kScreenWidth} * kScreenHeight;
constexpr std::size_t kSquarePixels = std::size_t{kSide} * kSide;
constexpr int kWindowSide = 1440;
constexpr std::size_t kWindowPixels = std::size_t{kWindowSide} * kWindowSide;

#if RASTREL_BENCH_PIXMAN
using PixmanImage = std::unique_ptr<pixman_image_t, decltype(&pixman_image_unref)>;

void StretchByPixman(benchmark::State& state, int bits) {
    const Ground image(kSide, bits);
    BenchSurface surface(kScreenWidth, kScreenHeight);
    pixman_indexed_t palette = {};
    for (std::uint32_t i = 0; i < 256; ++i)
        palette.rgba[i] = 0xff000000 | i << 16 | (255 - i) << 8 | (i * 7 & 255);
    const PixmanImage source(
        pixman_image_create_bits(
            bits == 8 ? PIXMAN_c8 : PIXMAN_r8g8b8, kSide, kSide,
            reinterpret_cast<std::uint32_t*>(Rastrel_GetRawImage(image.Handle())),
            Rastrel_GetEffWidth(image.Handle())),
        pixman_image_unref);
    if (bits == 8) pixman_image_set_indexed(source.get(), &palette);
    const PixmanImage screen(
        pixman_image_create_bits(PIXMAN_x8r8g8b8, kScreenWidth, kScreenHeight,
                                 reinterpret_cast<std::uint32_t*>(surface.Pixels()),
                                 kScreenWidth * 4),
        pixman_image_unref);
    pixman_transform_t scale;
    pixman_transform_init_scale(&scale, pixman_double_to_fixed(double{kSide} / kScreenWidth),
                                pixman_double_to_fixed(double{kSide} / kScreenHeight));
    pixman_image_set_transform(source.get(), &scale);
    pixman_image_set_filter(source.get(), PIXMAN_FILTER_NEAREST, nullptr, 0);
    for (auto _ : state) {
        pixman_image_composite32(PIXMAN_OP_SRC, source.get(), nullptr, screen.get(), 0, 0, 0, 0, 0,
                                 0, kScreenWidth, kScreenHeight);
    }
}
BENCHMARK_CAPTURE(StretchByPixman, , 8)->Name("display_stretch_8/pixman");
BENCHMARK_CAPTURE(StretchByPixman, , 24)->Name("display_stretch_24/pixman");
#endif

BENCHMARK_CAPTURE(Draw, , kSide, 8)->Name("display_draw_8/rastrel");
BENCHMARK_CAPTURE(Copy, , kSquarePixels, 8)->Name("display_draw_8/memcpy");
BENCHMARK_CAPTURE(Draw, , kSide, 24)->Name("display_draw_24/rastrel");
BENCHMARK_CAPTURE(Copy, , kSquarePixels, 24)->Name("display_draw_24/memcpy");
BENCHMARK_CAPTURE(Draw, , kSide, 32)->Name("display_draw_32/rastrel");
BENCHMARK_CAPTURE(Copy, , kSquarePixels, 32)->Name("display_draw_32/memcpy");
BENCHMARK_CAPTURE(Draw, , kWindowSide, 8)->Name("display_draw_window_8/rastrel");
BENCHMARK_CAPTURE(Copy, , kWindowPixels, 8)->Name("display_draw_window_8/memcpy");
BENCHMARK_CAPTURE(Draw, , kWindowSide, 24)->Name("display_draw_window_24/rastrel");
BENCHMARK_CAPTURE(Copy, , kWindowPixels, 24)->Name("display_draw_window_24/memcpy");
BENCHMARK_CAPTURE(Stretch, , 8)->Name("display_stretch_8/rastrel");
BENCHMARK_CAPTURE(Copy, , kScreenPixels, 8)->Name("display_stretch_8/memcpy");
BENCHMARK_CAPTURE(Stretch, , 24)->Name("display_stretch_24/rastrel");
BENCHMARK_CAPTURE(Copy, , kScreenPixels, 24)->Name("display_stretch_24/memcpy");
BENCHMARK(StretchTransparent)->Name("display_stretch_transparent/rastrel");
BENCHMARK_CAPTURE(Stretch, opaque, 8)->Name("display_stretch_transparent/opaque");

}  // namespace
}  // namespace rastrel_bench
