// Resizing and rectifying 24-bit images of 4096 x 4096 pixels, against OpenCV with one thread,
// which is given the same picture and asked for the same kind of result in fresh memory.

#include <benchmark/benchmark.h>

#include <cstring>

#include "scenes.h"
#include "support.h"

#if RASTREL_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace rastrel_bench {
namespace {

constexpr int kSmallSide = 1500;
constexpr int kBack = 0;  ///< the photograph's colours outside the turned picture

/// The photograph, and a smaller one made of it.
struct Pictures {
    static Pictures& Get() {
        static Pictures pictures;
        return pictures;
    }
    BenchImage large;
    BenchImage small;

    [[nodiscard]] int Of(int side) const {
        return side == kSceneSide ? large.Handle() : small.Handle();
    }

  private:
    Pictures() {
        Rastrel_CreateFromByte24(large.Handle(), Photograph().data(), kSceneSide, kSceneSide);
        Rastrel_Resize(small.Handle(), large.Handle(), kSmallSide, kSmallSide, 3);
    }
};

/// A size before and after, and how.
struct Scaling {
    const char* name;
    int from;
    int to;
    int mode;
};

constexpr Scaling kScalings[] = {
    {"reduce nearest", kSceneSide, kSmallSide, 0},  {"enlarge nearest", kSmallSide, kSceneSide, 0},
    {"reduce bilinear", kSceneSide, kSmallSide, 1}, {"enlarge bilinear", kSmallSide, kSceneSide, 1},
    {"reduce bicubic", kSceneSide, kSmallSide, 2},  {"enlarge bicubic", kSmallSide, kSceneSide, 2},
    {"reduce by area", kSceneSide, kSmallSide, 3},
};

void Resize(benchmark::State& state, Scaling scaling) {
    const int source = Pictures::Get().Of(scaling.from);
    const BenchImage target;
    for (auto _ : state) {
        if (Rastrel_Resize(target.Handle(), source, scaling.to, scaling.to, scaling.mode) != 1)
            state.SkipWithError("the call failed");
    }
}

/// memcpy of half of the bytes that are read and written.
void Copy(benchmark::State& state, std::size_t from_pixels, std::size_t to_pixels) {
    const std::size_t bytes = (from_pixels + to_pixels) * 3 / 2;
    const auto from = FreshBuffer(bytes);
    const auto to = FreshBuffer(bytes);
    std::memset(from.get(), 1, bytes);
    std::memset(to.get(), 2, bytes);
    for (auto _ : state) {
        std::memcpy(to.get(), from.get(), bytes);
        benchmark::ClobberMemory();
    }
}

/// Turned about its middle, seven degrees: the map's axes by the picture's.
constexpr double kCosine = 0.992546151641322;
constexpr double kSine = 0.121869343405147;
constexpr double kMiddle = (kSceneSide - 1) / 2.0;

/// Ties the picture to the map, on which a unit is a pixel and y goes upward.
void SetControlPoints() {
    Rastrel_AffineReset();
    for (const auto& [column, row] : {std::pair{0.0, 0.0}, {4095.0, 0.0}, {0.0, 4095.0}}) {
        const double x = column - kMiddle;
        const double y = row - kMiddle;
        Rastrel_AffineAddControlPoint(column, row, kCosine * x - kSine * y,
                                      -(kSine * x + kCosine * y));
    }
    Rastrel_AffineCalculate();
}

void Rectify(benchmark::State& state, int mode) {
    SetControlPoints();
    const int source = Pictures::Get().Of(kSceneSide);
    const BenchImage target;
    constexpr double kHalf = kSceneSide / 2.0;
    for (auto _ : state) {
        if (Rastrel_AffineTransform(target.Handle(), source, -kHalf, -kHalf, kHalf, kHalf, 1,
                                    mode) != 1)
            state.SkipWithError("the call failed");
    }
}

#if RASTREL_BENCH_OPENCV

cv::Mat MatOf(int handle) {
    const int side = Rastrel_GetWidth(handle);
    return {side, side, CV_8UC3, Rastrel_GetRawImage(handle),
            static_cast<std::size_t>(Rastrel_GetEffWidth(handle))};
}

constexpr int kModes[] = {cv::INTER_NEAREST, cv::INTER_LINEAR, cv::INTER_CUBIC, cv::INTER_AREA};

/// The result in memory of its own every time, or in that of the time before.
void OpenCvResize(benchmark::State& state, Scaling scaling, bool reuses) {
    cv::setNumThreads(1);
    const cv::Mat source = MatOf(Pictures::Get().Of(scaling.from));
    cv::Mat target;
    for (auto _ : state) {
        if (!reuses) target = cv::Mat();
        cv::resize(source, target, {scaling.to, scaling.to}, 0, 0, kModes[scaling.mode]);
    }
}

void OpenCvRectify(benchmark::State& state, int mode, bool reuses) {
    cv::setNumThreads(1);
    const cv::Mat source = MatOf(Pictures::Get().Of(kSceneSide));
    const cv::Matx23d to_source(kCosine, kSine, kMiddle * (1 - kCosine - kSine), -kSine, kCosine,
                                kMiddle * (1 - kCosine + kSine));
    cv::Mat target;
    for (auto _ : state) {
        if (!reuses) target = cv::Mat();
        cv::warpAffine(source, target, to_source, source.size(),
                       kModes[mode] | cv::WARP_INVERSE_MAP, cv::BORDER_CONSTANT,
                       cv::Scalar::all(kBack));
    }
}

#endif

[[maybe_unused]] const bool registered = [] {
    const auto add = [](const std::string& subject, const char* form, auto... run) {
        benchmark::RegisterBenchmark((subject + "/" + form).c_str(), run...)->UseRealTime();
    };
    const auto pixels = [](int side) { return static_cast<std::size_t>(side) * side; };
    for (const Scaling& scaling : kScalings) {
        add(scaling.name, "rastrel", Resize, scaling);
        add(scaling.name, "memcpy", Copy, pixels(scaling.from), pixels(scaling.to));
#if RASTREL_BENCH_OPENCV
        add(scaling.name, "opencv", OpenCvResize, scaling, false);
        add(scaling.name, "opencv, memory reused", OpenCvResize, scaling, true);
#endif
    }
    constexpr const char* kRectify[] = {"rectify nearest", "rectify bilinear", "rectify bicubic"};
    for (int mode = 0; mode < 3; ++mode) {
        add(kRectify[mode], "rastrel", Rectify, mode);
        add(kRectify[mode], "memcpy", Copy, pixels(kSceneSide), pixels(kSceneSide));
#if RASTREL_BENCH_OPENCV
        add(kRectify[mode], "opencv", OpenCvRectify, mode, false);
        add(kRectify[mode], "opencv, memory reused", OpenCvRectify, mode, true);
#endif
    }
    return true;
}();

}  // namespace
}  // namespace rastrel_bench
