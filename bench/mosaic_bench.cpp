// A sheet of 4096 x 4096 pixels of 24 bits laid into a mosaic of 8192 x 8192, against memcpy of the
// bytes moved: those of the sheet are read once and written once.

#include <benchmark/benchmark.h>

#include <cstring>

#include "support.h"

namespace rastrel_bench {
namespace {

constexpr int kSide = 4096;
constexpr std::size_t kBytes = std::size_t{kSide} * kSide * 3;

/// A mosaic and a sheet that all runs share.
struct Table {
    static Table& Get() {
        static Table table;
        return table;
    }
    BenchImage mosaic{2 * kSide, 2 * kSide, 24};
    BenchImage sheet{kSide, kSide, 24};

  private:
    Table() {
        FillWithGround(sheet.Handle());
        Rastrel_Fill(mosaic.Handle(), 9, 9, 9);
    }
};

struct Case {
    double pixel_size = 1;  ///< the sheet's; the mosaic's is 1
    bool has_key = false;
    const double* clip = nullptr;
};

/// Lays the sheet a thousand columns and rows off the mosaic's corner.
void Lay(benchmark::State& state, const Case& it) {
    const Table& table = Table::Get();
    for (auto _ : state) {
        if (Rastrel_MosaicaWithClipping(table.mosaic.Handle(), table.sheet.Handle(), 600000,
                                        5100000, 1, 601000, 5099000, it.pixel_size,
                                        it.has_key ? 1 : 0, 80, 80, 80, it.clip) != 1)
            state.SkipWithError("the call failed");
    }
}

void Copy(benchmark::State& state) {
    const auto from = FreshBuffer(kBytes);
    const auto to = FreshBuffer(kBytes);
    std::memset(from.get(), 1, kBytes);
    std::memset(to.get(), 2, kBytes);
    for (auto _ : state) {
        std::memcpy(to.get(), from.get(), kBytes);
        benchmark::ClobberMemory();
    }
}

[[maybe_unused]] const bool registered = [] {
    static constexpr double kEverything[] = {0, 0, 1e9, 1e9};
    const auto add = [](const std::string& name, const Case& it) {
        benchmark::RegisterBenchmark((name + "/rastrel").c_str(), Lay, it)->UseRealTime();
        benchmark::RegisterBenchmark((name + "/memcpy").c_str(), Copy)->UseRealTime();
    };
    add("mosaic", {});
    add("mosaic_clip", {1, false, kEverything});
    add("mosaic_key", {1, true, nullptr});
    // Every pixel of the mosaic is looked up: no two grids agree.
    add("mosaic_other_size", {0.999, false, nullptr});
    return true;
}();

}  // namespace
}  // namespace rastrel_bench
