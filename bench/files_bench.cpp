// BMP and QVI files of 100 megapixels from and into the page cache, against the system calls and
// the compressor alone. Linux only: the plain forms are its system calls.

#include <benchmark/benchmark.h>
#include <lzo/lzo1x.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstdio>

#include "support.h"
#include "system_files.h"

namespace rastrel_bench {
namespace {

/// The sample image and its files, made once.
class Sample {
  public:
    static const Sample& Get() {
        static const Sample sample;
        return sample;
    }
    [[nodiscard]] int Handle() const { return image_.Handle(); }
    [[nodiscard]] const std::string& Bmp() const { return bmp_; }
    [[nodiscard]] const std::string& Qvi() const { return qvi_; }
    ~Sample() {
        std::remove(bmp_.c_str());
        std::remove(qvi_.c_str());
    }
    Sample(const Sample&) = delete;
    Sample& operator=(const Sample&) = delete;

  private:
    Sample() {
        FillWithGround(image_.Handle());
        Rastrel_Save(image_.Handle(), qvi_.c_str(), -1);
        Rastrel_Save(image_.Handle(), bmp_.c_str(), -1);
    }
    BenchImage image_{kWidth, kHeight, 24};
    std::string bmp_ = TemporaryPath("rastrel-bench.bmp");
    std::string qvi_ = TemporaryPath("rastrel-bench.qvi");
};

void SetBytes(benchmark::State& state, std::size_t bytes) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

void ReadByLibrary(benchmark::State& state, const std::string& path) {
    for (auto _ : state) {
        const BenchImage image;
        if (Rastrel_Read(image.Handle(), path.c_str(), -1) != 1) state.SkipWithError("read failed");
    }
    SetBytes(state, kPixels * 3);
}

void SaveByLibrary(benchmark::State& state, const std::string& path) {
    for (auto _ : state) {
        if (Rastrel_Save(Sample::Get().Handle(), path.c_str(), -1) != 1)
            state.SkipWithError("save failed");
    }
    SetBytes(state, kPixels * 3);
}

void BmpRead(benchmark::State& state) {
    ReadByLibrary(state, Sample::Get().Bmp());
}

void BmpReadBySystem(benchmark::State& state) {
    const std::size_t size = FileSize(Sample::Get().Bmp());
    for (auto _ : state) {
        const auto buffer = FreshBuffer(size);
        if (!ReadWhole(Sample::Get().Bmp(), buffer.get(), size)) state.SkipWithError("read failed");
    }
    SetBytes(state, size);
}

/// The same into pages as large as the system has them.
void BmpReadBySystemIntoHugePages(benchmark::State& state) {
    const std::size_t size = FileSize(Sample::Get().Bmp());
    for (auto _ : state) {
        void* buffer =
            mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        madvise(buffer, size, MADV_HUGEPAGE);
        if (!ReadWhole(Sample::Get().Bmp(), static_cast<std::uint8_t*>(buffer), size))
            state.SkipWithError("read failed");
        munmap(buffer, size);
    }
    SetBytes(state, size);
}

void BmpWrite(benchmark::State& state) {
    SaveByLibrary(state, Sample::Get().Bmp());
}

void BmpWriteBySystem(benchmark::State& state) {
    const std::size_t size = FileSize(Sample::Get().Bmp());
    const auto buffer = FreshBuffer(size);
    if (!ReadWhole(Sample::Get().Bmp(), buffer.get(), size)) state.SkipWithError("read failed");
    for (auto _ : state) {
        if (!WriteWhole(Sample::Get().Bmp(), buffer.get(), size))
            state.SkipWithError("write failed");
    }
    SetBytes(state, size);
}

void QviRead(benchmark::State& state) {
    ReadByLibrary(state, Sample::Get().Qvi());
}

void QviReadByCodec(benchmark::State& state) {
    const std::size_t size = FileSize(Sample::Get().Qvi());
    constexpr std::size_t kHeaders = 54 + 8;
    for (auto _ : state) {
        const auto stream = FreshBuffer(size);
        const auto pixels = FreshBuffer(kPixels * 3 + std::size_t{kHeight} * 4);
        lzo_uint expanded = kPixels * 3 + std::size_t{kHeight} * 4;
        if (!ReadWhole(Sample::Get().Qvi(), stream.get(), size) ||
            lzo1x_decompress_safe(stream.get() + kHeaders, size - kHeaders, pixels.get(), &expanded,
                                  nullptr) != LZO_E_OK)
            state.SkipWithError("decompression failed");
    }
    SetBytes(state, kPixels * 3);
}

void QviWrite(benchmark::State& state) {
    SaveByLibrary(state, Sample::Get().Qvi());
}

void QviWriteByCodec(benchmark::State& state) {
    const std::uint8_t* pixels = Rastrel_GetRawImage(Sample::Get().Handle());
    const std::size_t bytes =
        static_cast<std::size_t>(Rastrel_GetEffWidth(Sample::Get().Handle())) * kHeight;
    const std::string path = TemporaryPath("rastrel-bench-codec.qvi");
    for (auto _ : state) {
        const auto stream = FreshBuffer(bytes + bytes / 16 + 67);
        const auto work = FreshBuffer(LZO1X_1_MEM_COMPRESS);
        lzo_uint compressed = 0;
        lzo1x_1_compress(pixels, bytes, stream.get(), &compressed, work.get());
        if (!WriteWhole(path, stream.get(), compressed)) state.SkipWithError("write failed");
    }
    std::remove(path.c_str());
    SetBytes(state, kPixels * 3);
}

BENCHMARK(BmpRead)->Name("bmp_read/rastrel")->UseRealTime();
BENCHMARK(BmpReadBySystem)->Name("bmp_read/read(2) into fresh memory")->UseRealTime();
BENCHMARK(BmpReadBySystemIntoHugePages)
    ->Name("bmp_read/read(2) into fresh huge pages")
    ->UseRealTime();
BENCHMARK(BmpWrite)->Name("bmp_write/rastrel")->UseRealTime();
BENCHMARK(BmpWriteBySystem)->Name("bmp_write/write(2) and rename(2)")->UseRealTime();
BENCHMARK(QviRead)->Name("qvi_read/rastrel")->UseRealTime();
BENCHMARK(QviReadByCodec)->Name("qvi_read/read(2) and lzo1x_decompress_safe")->UseRealTime();
BENCHMARK(QviWrite)->Name("qvi_write/rastrel")->UseRealTime();
BENCHMARK(QviWriteByCodec)->Name("qvi_write/lzo1x_1_compress and write(2)")->UseRealTime();

}  // namespace
}  // namespace rastrel_bench
