#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "support.h"

namespace rastrel_bench {

constexpr int kSide = 4096;
constexpr std::size_t kCells = std::size_t{kSide} * kSide;
/// Cells of 30 metres, heights in metres.
constexpr double kScale = 1 / 30.0;

/// Hills of all sizes and a level sea, up to 2400 metres; up to 250 as bytes.
template <class Sample>
const std::vector<Sample>& Ground() {
    static const std::vector<Sample> ground = [] {
        const double top = sizeof(Sample) == 1 ? 250 : 2400;
        const std::vector<float> heights = FractalHeights(kSide);
        std::vector<Sample> samples(kCells);
        for (std::size_t i = 0; i < kCells; ++i)
            samples[i] = static_cast<Sample>(static_cast<double>(heights[i]) * top);
        return samples;
    }();
    return ground;
}

/// Runs work with cold caches.
template <class Work>
void RunCold(benchmark::State& state, Work work) {
    static std::vector<std::uint8_t> other(std::size_t{96} << 20);
    for (auto _ : state) {
        state.PauseTiming();
        std::memset(other.data(), static_cast<int>(state.iterations() & 255), other.size());
        benchmark::ClobberMemory();
        state.ResumeTiming();
        work();
        benchmark::ClobberMemory();
    }
}

template <class Run>
void AddOne(const std::string& name, Run run) {
    benchmark::RegisterBenchmark(name.c_str(), run);
}

/// Of a form so slow that a few runs tell its time.
template <class Run>
void AddSlow(const std::string& name, Run run) {
    benchmark::RegisterBenchmark(name.c_str(), run)->Iterations(1)->Repetitions(5);
}

}  // namespace rastrel_bench
