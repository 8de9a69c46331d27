// GIF files of 4096 x 4096 pixels from and into the page cache, a flat map and a dithered
// photograph; where giflib's development files are, against its lines.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "scenes.h"
#include "support.h"
#if RASTREL_BENCH_GIFLIB
#include <gif_lib.h>
#endif

namespace rastrel_bench {
namespace {

using Indices = std::vector<std::uint8_t>;

void SetBytes(benchmark::State& state) {
    state.SetBytesProcessed(state.iterations() * std::int64_t{kSceneSide} * kSceneSide);
}

/// A GIF file of a scene.
class SceneFile {
  public:
    explicit SceneFile(const Indices& (*scene)())
        : path_(TemporaryPath("rastrel-bench-scene.gif")) {
        Rastrel_CreateFromByte(image_.Handle(), scene().data(), kSceneSide, kSceneSide);
        Rastrel_Save(image_.Handle(), path_.c_str(), -1);
    }
    SceneFile(const SceneFile&) = delete;
    SceneFile& operator=(const SceneFile&) = delete;
    ~SceneFile() { std::remove(path_.c_str()); }
    [[nodiscard]] const std::string& Path() const { return path_; }
    [[nodiscard]] int Handle() const { return image_.Handle(); }

  private:
    BenchImage image_;
    std::string path_;
};

void ReadByLibrary(benchmark::State& state, const Indices& (*scene)()) {
    const SceneFile file(scene);
    for (auto _ : state) {
        const BenchImage image;
        if (Rastrel_Read(image.Handle(), file.Path().c_str(), -1) != 1)
            state.SkipWithError("read failed");
    }
    SetBytes(state);
}

void WriteByLibrary(benchmark::State& state, const Indices& (*scene)()) {
    const SceneFile file(scene);
    for (auto _ : state) {
        if (Rastrel_Save(file.Handle(), file.Path().c_str(), -1) != 1)
            state.SkipWithError("save failed");
    }
    SetBytes(state);
}

#if RASTREL_BENCH_GIFLIB

/// Line by line into fresh memory, as the library reads.
void ReadByGiflib(benchmark::State& state, const Indices& (*scene)()) {
    const SceneFile scene_file(scene);
    for (auto _ : state) {
        const auto pixels = FreshBuffer(std::size_t{kSceneSide} * kSceneSide);
        GifFileType* file = DGifOpenFileName(scene_file.Path().c_str(), nullptr);
        GifRecordType record = UNDEFINED_RECORD_TYPE;
        bool read = file != nullptr && DGifGetRecordType(file, &record) == GIF_OK &&
                    DGifGetImageDesc(file) == GIF_OK;
        for (std::size_t y = 0; read && y < kSceneSide; ++y)
            read = DGifGetLine(file, pixels.get() + y * kSceneSide, kSceneSide) == GIF_OK;
        DGifCloseFile(file, nullptr);
        if (!read) state.SkipWithError("read failed");
    }
    SetBytes(state);
}

void WriteByGiflib(benchmark::State& state, const Indices& (*scene)()) {
    const std::string path = TemporaryPath("rastrel-bench-giflib.gif");
    Indices pixels = scene();  // a line is given as one that may be written to
    ColorMapObject* colors = GifMakeMapObject(256, nullptr);
    for (auto _ : state) {
        GifFileType* file = EGifOpenFileName(path.c_str(), false, nullptr);
        bool written =
            EGifPutScreenDesc(file, kSceneSide, kSceneSide, 8, 0, colors) == GIF_OK &&
            EGifPutImageDesc(file, 0, 0, kSceneSide, kSceneSide, false, nullptr) == GIF_OK;
        for (std::size_t y = 0; written && y < kSceneSide; ++y)
            written = EGifPutLine(file, pixels.data() + y * kSceneSide, kSceneSide) == GIF_OK;
        EGifCloseFile(file, nullptr);
        if (!written) state.SkipWithError("write failed");
    }
    GifFreeMapObject(colors);
    std::remove(path.c_str());
    SetBytes(state);
}

#endif

[[maybe_unused]] const bool registered = [] {
    struct Scene {
        const char* name;
        const Indices& (*scene)();
    };
    for (const Scene& scene : {Scene{"map", FlatMap}, {"dithered", DitheredPhotograph}}) {
        const auto add = [&scene](std::string name, const char* form, auto run) {
            name.append("_").append(scene.name).append("/").append(form);
            benchmark::RegisterBenchmark(name.c_str(), run, scene.scene)
                ->Unit(benchmark::kMillisecond)
                ->UseRealTime();
        };
        add("gif_read", "rastrel", ReadByLibrary);
        add("gif_write", "rastrel", WriteByLibrary);
#if RASTREL_BENCH_GIFLIB
        add("gif_read", "DGifGetLine", ReadByGiflib);
        add("gif_write", "EGifPutLine", WriteByGiflib);
#endif
    }
    return true;
}();

}  // namespace
}  // namespace rastrel_bench
