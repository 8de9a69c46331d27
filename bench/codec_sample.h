#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

#include "support.h"

namespace rastrel_bench {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// A square image of colours, its bitmap's rows, and the file that the library makes of it.
class CodecSample {
  public:
    CodecSample(int side, const std::string& extension, int quality);
    CodecSample(const CodecSample&) = delete;
    CodecSample& operator=(const CodecSample&) = delete;
    ~CodecSample();

    [[nodiscard]] int Side() const { return side_; }
    [[nodiscard]] int Handle() const { return image_.Handle(); }
    [[nodiscard]] const std::string& Path() const { return path_; }
    [[nodiscard]] std::size_t RowBytes() const { return static_cast<std::size_t>(side_) * 3; }
    [[nodiscard]] std::size_t Bytes() const { return RowBytes() * static_cast<std::size_t>(side_); }
    /// The picture's rows from the top, blue first.
    [[nodiscard]] std::uint8_t* Row(int y) const;

    /// The two sides of every comparison that are the library's.
    void Read(benchmark::State& state) const;
    void Write(benchmark::State& state) const;
    /// The rows of the picture's first tenth.
    void ReadFirstTenth(benchmark::State& state) const;
    /// Has another program's function write a file, which then takes the name of an older one, as
    /// every save does.
    template <class WriteTo>
    void WriteBeside(benchmark::State& state, const WriteTo& write) const {
        const std::string path = TemporaryPath("rastrel-bench-other");
        for (auto _ : state) {
            const File file(std::fopen((path + ".part").c_str(), "wb"));
            if (!write(file.get()) || std::rename((path + ".part").c_str(), path.c_str()) != 0)
                state.SkipWithError("write failed");
        }
        std::remove(path.c_str());
    }
    /// Has another program's function read the file to a picture's place in memory: the same again
    /// and again, or fresh.
    template <class ReadFrom>
    void ReadBeside(benchmark::State& state, bool fresh, const ReadFrom& read) const {
        const auto reused = FreshBuffer(fresh ? 0 : Bytes());
        std::fill_n(reused.get(), fresh ? 0 : Bytes(), std::uint8_t{1});
        for (auto _ : state) {
            const auto picture = FreshBuffer(fresh ? Bytes() : 0);
            const File file(std::fopen(path_.c_str(), "rb"));
            if (!read(file.get(), fresh ? picture.get() : reused.get()))
                state.SkipWithError("read failed");
        }
    }

  private:
    int side_;
    BenchImage image_;
    std::string path_;
};

template <class Function>
void AddBenchmark(const std::string& name, const Function& function) {
    benchmark::RegisterBenchmark(name.c_str(), function)->UseRealTime();
}

}  // namespace rastrel_bench
