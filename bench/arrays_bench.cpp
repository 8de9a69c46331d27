// Typed arrays of 4096 x 4096 samples: the exported functions against the plain form of the same
// formula and against memcpy of the bytes read and written. The caches are emptied before each run.

#include <benchmark/benchmark.h>
#include <hwy/targets.h>

#include <cmath>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "arrays.h"
#include "process/hypsometric_plain.h"
#include "process/smoothing_plain.h"
#include "process/statistics_plain.h"
#include "process/stretch_plain.h"
#include "process/terrain_plain.h"
#include "support.h"

namespace rastrel_bench {
namespace {

using namespace rastrel;

const std::vector<std::uint8_t>& Shading() {
    static const std::vector<std::uint8_t> shading = [] {
        std::vector<std::uint8_t> shades(kCells);
        Rastrel_HillshadingShort(shades.data(), Ground<std::int16_t>().data(), kSide, kSide, 45,
                                 315, kScale);
        return shades;
    }();
    return shading;
}

std::vector<std::uint32_t> Palette() {
    std::vector<std::uint32_t> palette(256);
    for (std::uint32_t i = 0; i < 256; ++i)
        palette[i] = i | (255 - i) << 8 | (i * 37 & 255) << 16;
    return palette;
}

/// memcpy of half of the bytes that an operation reads and writes: the same traffic.
void Copy(benchmark::State& state, std::size_t read, std::size_t written) {
    const std::size_t bytes = (read + written) * kCells / 2;
    const std::vector<std::uint8_t> from(bytes, 3);
    std::vector<std::uint8_t> to(bytes, 4);
    RunCold(state, [&] { std::memcpy(to.data(), from.data(), bytes); });
}

/// Makes the library use one set of instructions until it ends.
class ChosenTarget {
  public:
    explicit ChosenTarget(std::int64_t target) { hwy::GetChosenTarget().Update(target); }
    ChosenTarget(const ChosenTarget&) = delete;
    ChosenTarget& operator=(const ChosenTarget&) = delete;
    ~ChosenTarget() { hwy::GetChosenTarget().Update(hwy::SupportedTargets()); }
};

/// The library's form, with the best instructions that there are and with older ones alone.
template <class Run>
void AddLibrary(const std::string& subject, Run run) {
    AddOne(subject + "/rastrel", run);
    const std::pair<const char*, std::int64_t> targets[] = {{"/rastrel, AVX2", HWY_AVX2},
                                                            {"/rastrel, SSE4", HWY_SSE4}};
    for (const auto& [name, target] : targets) {
        if ((hwy::SupportedTargets() & target) == 0) continue;
        AddOne(subject + name, [run, target = target](benchmark::State& state) {
            const ChosenTarget chosen(target);
            run(state);
        });
    }
}

/// The library's form, the plain one, and the copy of one byte written for each sample read.
template <class Sample, class Fast, class Plain>
void AddCellwise(const std::string& subject, Fast fast, Plain plain) {
    AddLibrary(subject, [=](benchmark::State& state) {
        std::vector<std::uint8_t> out(kCells);
        const Sample* ground = Ground<Sample>().data();
        RunCold(state, [&] { fast(out.data(), ground); });
    });
    AddSlow(subject + "/plain", [=](benchmark::State& state) {
        std::vector<std::uint8_t> out(kCells);
        const Grid<Sample> grid(Ground<Sample>().data(), kSide, kSide);
        RunCold(state, [&] {
            ForEachInnerRow(grid, [&](std::size_t row, const ThreeRows<Sample>& rows) {
                for (std::size_t column = 1; column + 1 < grid.columns; ++column)
                    out[row * grid.columns + column] = plain(rows.At(column));
            });
        });
    });
    AddOne(subject + "/memcpy", [](benchmark::State& state) { Copy(state, sizeof(Sample), 1); });
}

/// The formula with the system's sine, cosine and arctangents.
std::uint8_t SystemHillshade(const Gradient& gradient, const Light& light) {
    const double slope = std::atan(std::sqrt(gradient.x * gradient.x + gradient.y * gradient.y));
    const double aspect = std::atan2(-gradient.x, -gradient.y);
    const double value = (light.sin_altitude * std::cos(slope) +
                          light.cos_altitude * std::sin(slope) * std::cos(aspect - light.azimuth)) *
                             255 +
                         0.4999999999999;
    return value >= 1 ? static_cast<std::uint8_t>(value) : 0;
}

template <class Sample, class Hillshade, class Slope, class Aspect>
void AddTerrain(const std::string& type, Hillshade hillshade, Slope slope, Aspect aspect) {
    static const Light light(45, 315);
    AddCellwise<Sample>(
        "hillshade_" + type,
        [=](std::uint8_t* out, const Sample* in) {
            hillshade(out, in, kSide, kSide, 45, 315, kScale);
        },
        [](const ThreeRows<Sample>& at) {
            return plain::Hillshade(plain::GradientAt(at, kScale), light);
        });
    AddSlow("hillshade_" + type + "/plain, system's functions", [](benchmark::State& state) {
        std::vector<std::uint8_t> out(kCells);
        const Grid<Sample> grid(Ground<Sample>().data(), kSide, kSide);
        RunCold(state, [&] {
            ForEachInnerRow(grid, [&](std::size_t row, const ThreeRows<Sample>& rows) {
                for (std::size_t column = 1; column + 1 < grid.columns; ++column)
                    out[row * grid.columns + column] =
                        SystemHillshade(plain::GradientAt(rows.At(column), kScale), light);
            });
        });
    });
    AddCellwise<Sample>(
        "slope_" + type,
        [=](std::uint8_t* out, const Sample* in) { slope(out, in, kSide, kSide, kScale); },
        [](const ThreeRows<Sample>& at) { return plain::Slope(plain::GradientAt(at, kScale)); });
    AddCellwise<Sample>(
        "aspect_" + type,
        [=](std::uint8_t* out, const Sample* in) { aspect(out, in, kSide, kSide, kScale); },
        [](const ThreeRows<Sample>& at) {
            return plain::Aspect(plain::GradientAt(at, kScale)).value_or(9);
        });
}

template <class Sample, class Get>
void AddStatistics(const std::string& type, Get get) {
    AddLibrary("statistics_" + type, [=](benchmark::State& state) {
        const Sample* ground = Ground<Sample>().data();
        RunCold(state, [&] {
            Statistics s;
            get(ground, kSide, kSide, 1, &s.minimum, &s.mean, &s.maximum, &s.deviation);
            benchmark::DoNotOptimize(s);
        });
    });
    AddSlow("statistics_" + type + "/plain", [](benchmark::State& state) {
        const Grid<Sample> grid(Ground<Sample>().data(), kSide, kSide);
        RunCold(state, [&] { benchmark::DoNotOptimize(plain::StatisticsOf(grid, 1)); });
    });
    AddOne("statistics_" + type + "/memcpy",
           [](benchmark::State& state) { Copy(state, sizeof(Sample), 0); });
}

/// The whole call, and the pass that writes with the bounds given.
template <class Sample, class Run>
void AddStretch(const std::string& type, Run run) {
    AddLibrary("stretch_" + type, [=](benchmark::State& state) {
        std::vector<std::uint8_t> out(kCells);
        const Sample* ground = Ground<Sample>().data();
        RunCold(state, [&] { run(out.data(), ground, kSide, kSide, 2.0); });
    });
    AddSlow("stretch_" + type + "/plain", [](benchmark::State& state) {
        std::vector<std::uint8_t> out(kCells);
        const Grid<Sample> grid(Ground<Sample>().data(), kSide, kSide);
        RunCold(state, [&] {
            const Statistics s = plain::StatisticsOf(grid, 1);
            plain::Stretch(grid.samples, kCells,
                           {s.mean - 2 * s.deviation, s.mean + 2 * s.deviation}, out.data());
        });
    });
    AddOne("stretch_" + type + "/memcpy",
           [](benchmark::State& state) { Copy(state, 2 * sizeof(Sample), 1); });
}

template <class Sample, class Run>
void AddSmoothing(const std::string& type, Run run) {
    AddLibrary("smooth_" + type, [=](benchmark::State& state) {
        std::vector<Sample> out(kCells);
        const Sample* ground = Ground<Sample>().data();
        RunCold(state, [&] { run(out.data(), ground, kSide, kSide); });
    });
    AddSlow("smooth_" + type + "/plain", [](benchmark::State& state) {
        std::vector<Sample> out(kCells);
        const Grid<Sample> grid(Ground<Sample>().data(), kSide, kSide);
        RunCold(state, [&] {
            ForEachInnerRow(grid, [&](std::size_t row, const ThreeRows<Sample>& rows) {
                for (std::size_t column = 1; column + 1 < grid.columns; ++column)
                    out[row * grid.columns + column] = plain::Smooth(rows.At(column));
            });
        });
    });
    AddOne("smooth_" + type + "/memcpy",
           [](benchmark::State& state) { Copy(state, sizeof(Sample), sizeof(Sample)); });
}

void AddIpsometry() {
    AddLibrary("ipsometry", [](benchmark::State& state) {
        const auto palette = Palette();
        std::vector<std::uint8_t> out(kCells * 3);
        const std::uint8_t* ground = Ground<std::uint8_t>().data();
        const std::uint8_t* shading = Shading().data();
        RunCold(state, [&] {
            Rastrel_Ipsometry(out.data(), ground, shading, 0.5, kSide, kSide, palette.data());
        });
    });
    AddSlow("ipsometry/plain", [](benchmark::State& state) {
        const auto palette = Palette();
        const Blend blend(0.5);
        std::vector<std::uint8_t> out(kCells * 3);
        const std::uint8_t* ground = Ground<std::uint8_t>().data();
        const std::uint8_t* shading = Shading().data();
        RunCold(state, [&] {
            for (std::size_t i = 0; i < kCells; ++i) {
                const BgrPixel pixel =
                    plain::HypsometricColor(palette[ground[i]], shading[i], blend);
                std::memcpy(&out[3 * i], pixel.data(), 3);
            }
        });
    });
    AddOne("ipsometry/memcpy", [](benchmark::State& state) { Copy(state, 2, 3); });
}

void AddMasks() {
    AddLibrary("mask", [](benchmark::State& state) {
        std::vector<std::uint8_t> out(kCells);
        RunCold(state, [&] {
            Rastrel_Mask(out.data(), Ground<std::uint8_t>().data(), Shading().data(), kSide, kSide);
        });
    });
    AddOne("mask/memcpy", [](benchmark::State& state) { Copy(state, 2, 1); });
    AddLibrary("mask_24", [](benchmark::State& state) {
        const std::vector<std::uint8_t> in(kCells * 3, 9);
        std::vector<std::uint8_t> out(kCells * 3);
        RunCold(state, [&] {
            Rastrel_Mask24(out.data(), in.data(), Shading().data(), kSide, kSide, 0x123456, 1);
        });
    });
    AddOne("mask_24/memcpy", [](benchmark::State& state) { Copy(state, 4, 3); });
}

[[maybe_unused]] const bool kAdded = [] {
    AddTerrain<std::uint8_t>("byte", Rastrel_HillshadingByte, Rastrel_SlopeByte,
                             Rastrel_AspectByte);
    AddTerrain<std::int16_t>("short", Rastrel_HillshadingShort, Rastrel_SlopeShort,
                             Rastrel_AspectShort);
    AddTerrain<std::int32_t>("int", Rastrel_HillshadingInt, Rastrel_SlopeInt, Rastrel_AspectInt);
    AddTerrain<float>("float", Rastrel_HillshadingFloat, Rastrel_SlopeFloat, Rastrel_AspectFloat);
    AddStatistics<std::uint8_t>("byte", Rastrel_StatisticsExByte);
    AddStatistics<std::int16_t>("short", Rastrel_StatisticsExShort);
    AddStatistics<std::int32_t>("int", Rastrel_StatisticsExInt);
    AddStatistics<float>("float", Rastrel_StatisticsExFloat);
    AddStretch<std::uint8_t>("byte", Rastrel_LinearStretchByte);
    AddStretch<std::int16_t>("short", Rastrel_LinearStretchShort);
    AddStretch<std::int32_t>("int", Rastrel_LinearStretchInt);
    AddStretch<float>("float", Rastrel_LinearStretchFloat);
    AddSmoothing<std::uint8_t>("byte", Rastrel_Convolute3x3Byte);
    AddSmoothing<std::int16_t>("short", Rastrel_Convolute3x3Short);
    AddSmoothing<std::int32_t>("int", Rastrel_Convolute3x3Int);
    AddSmoothing<float>("float", Rastrel_Convolute3x3Float);
    AddIpsometry();
    AddMasks();
    return true;
}();

}  // namespace
}  // namespace rastrel_bench
