// Raw files of 4096 x 4096 pixels from and into the page cache, against the system calls alone.

#include <benchmark/benchmark.h>
#include <sys/mman.h>

#include <cstdio>

#include "support.h"
#include "system_files.h"

namespace rastrel_bench {
namespace {

constexpr int kSide = 4096;
constexpr int kPartSide = 410;  // of both sides: a hundredth of the picture

/// The sample image, 24 or 8 bits deep, in a file of one layout.
class Sample {
  public:
    Sample(const std::string& extension, int bits) : image_(kSide, kSide, bits) {
        path_ = TemporaryPath("rastrel-bench-raw." + extension);
        FillWithGround(image_.Handle());
        Rastrel_Save(image_.Handle(), path_.c_str(), -1);
    }
    Sample(const Sample&) = delete;
    Sample& operator=(const Sample&) = delete;
    ~Sample() {
        std::remove(path_.c_str());
        std::remove((path_.substr(0, path_.size() - 3) + "hdr").c_str());
    }
    [[nodiscard]] int Handle() const { return image_.Handle(); }
    [[nodiscard]] const std::string& Path() const { return path_; }

  private:
    BenchImage image_;
    std::string path_;
};

void Read(benchmark::State& state, const char* extension, int bits) {
    const Sample sample(extension, bits);
    for (auto _ : state) {
        const BenchImage image;
        if (Rastrel_Read(image.Handle(), sample.Path().c_str(), -1) != 1)
            state.SkipWithError("read failed");
    }
}

void ReadPart(benchmark::State& state, const char* extension) {
    const Sample sample(extension, 24);
    for (auto _ : state) {
        const BenchImage image;
        if (Rastrel_ReadPartial(image.Handle(), sample.Path().c_str(), -1, 1001, 1003, kPartSide,
                                kPartSide) != 1)
            state.SkipWithError("read failed");
    }
}

/// Memory that no page backs yet, whatever its size; a heap may give out used memory.
class FreshPages {
  public:
    FreshPages(std::size_t size, bool huge)
        : size_(size),
          data_(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
        if (huge) madvise(data_, size_, MADV_HUGEPAGE);
    }
    FreshPages(const FreshPages&) = delete;
    FreshPages& operator=(const FreshPages&) = delete;
    ~FreshPages() { munmap(data_, size_); }
    [[nodiscard]] std::uint8_t* Data() const { return static_cast<std::uint8_t*>(data_); }

  private:
    std::size_t size_;
    void* data_;
};

void ReadBySystem(benchmark::State& state, int bits, bool huge) {
    const Sample sample("bip", bits);
    const std::size_t size = FileSize(sample.Path());
    for (auto _ : state) {
        const FreshPages pages(size, huge);
        if (!ReadWhole(sample.Path(), pages.Data(), size)) state.SkipWithError("read failed");
    }
}

void Write(benchmark::State& state, const char* extension, int bits) {
    const Sample sample(extension, bits);
    for (auto _ : state) {
        if (Rastrel_Save(sample.Handle(), sample.Path().c_str(), -1) != 1)
            state.SkipWithError("save failed");
    }
}

void WriteBySystem(benchmark::State& state, int bits) {
    const Sample sample("bip", bits);
    const std::size_t size = FileSize(sample.Path());
    const auto buffer = FreshBuffer(size);
    if (!ReadWhole(sample.Path(), buffer.get(), size)) state.SkipWithError("read failed");
    for (auto _ : state) {
        if (!WriteWhole(sample.Path(), buffer.get(), size)) state.SkipWithError("write failed");
    }
}

constexpr const char* kPlainRead = "read(2) into fresh memory";
constexpr const char* kHugeRead = "read(2) into fresh huge pages";
constexpr const char* kPlainWrite = "write(2) and rename(2)";

[[maybe_unused]] const bool kRegistered = [] {
    const auto add = [](const std::string& subject, const char* form, auto run) {
        benchmark::RegisterBenchmark((subject + "/" + form).c_str(), run)->UseRealTime();
    };
    struct Case {
        const char* extension;
        int bits;
    };
    for (const Case& c : {Case{"bip", 24}, Case{"bil", 24}, Case{"bsq", 24}, Case{"bip", 8}}) {
        const std::string name = "raw_" + std::string(c.extension) + "_" + std::to_string(c.bits);
        add(name + "_read", "rastrel", [c](auto& state) { Read(state, c.extension, c.bits); });
        add(name + "_read", kPlainRead, [c](auto& state) { ReadBySystem(state, c.bits, false); });
        add(name + "_read", kHugeRead, [c](auto& state) { ReadBySystem(state, c.bits, true); });
        add(name + "_write", "rastrel", [c](auto& state) { Write(state, c.extension, c.bits); });
        add(name + "_write", kPlainWrite, [c](auto& state) { WriteBySystem(state, c.bits); });
    }
    for (const char* extension : {"bip", "bil", "bsq"}) {
        const std::string name = "raw_" + std::string(extension) + "_part";
        add(name, "rastrel", [extension](auto& state) { ReadPart(state, extension); });
        add(name, "the whole", [extension](auto& state) { Read(state, extension, 24); });
    }
    return true;
}();

}  // namespace
}  // namespace rastrel_bench
