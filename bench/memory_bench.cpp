// Peak memory of reading and saving files of 100 megapixels, against the size of the bitmap alone.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

#include "support.h"

namespace rastrel_bench {
namespace {

/// Kilobytes that a child process has in memory at most while it works; -1 when the work fails.
template <class Work>
long PeakKilobytes(Work work) {
    const pid_t child = fork();
    if (child == 0) _exit(work() ? 0 : 1);
    int status = 1;
    rusage usage = {};
    wait4(child, &status, 0, &usage);
    return status == 0 ? usage.ru_maxrss : -1;
}

/// Prints what reading a file takes above an idle process; false when that fails.
bool Report(const char* what, const char* name, int quality) {
    const std::string path = TemporaryPath(name);
    // Made in a child as well: this process must stay small, because children start with its pages.
    const long saving = PeakKilobytes([&] {
        const BenchImage image(kWidth, kHeight, 24);
        FillWithGround(image.Handle());
        Rastrel_SetQuality(image.Handle(), quality);
        return Rastrel_Save(image.Handle(), path.c_str(), -1) == 1;
    });
    const long idle = PeakKilobytes([] { return true; });
    const long reading = PeakKilobytes([&path] {
        const BenchImage image;
        return Rastrel_Read(image.Handle(), path.c_str(), -1) == 1;
    });
    std::remove(path.c_str());
    if (saving < 0 || reading < 0) {
        std::fprintf(stderr, "rastrel_bench_memory: saving or reading %s failed\n", what);
        return false;
    }
    const std::size_t row_bytes = (std::size_t{kWidth} * 24 + 31) / 32 * 4;
    const long block = static_cast<long>((row_bytes * kHeight + 1023) / 1024);
    std::printf(
        "%s: peak memory %ld KiB above an idle process when read, %ld KiB when saved; the "
        "bitmap alone is %ld KiB\n",
        what, reading - idle, saving - idle, block);
    return true;
}

int Run() {
    bool all_well = Report("bmp", "rastrel-bench-memory.bmp", 0);
    all_well = Report("tiff, none", "rastrel-bench-memory.tif", 1) && all_well;
    all_well = Report("tiff, packbits", "rastrel-bench-memory.tif", 32773) && all_well;
    all_well = Report("tiff, deflate", "rastrel-bench-memory.tif", 8) && all_well;
    return all_well ? 0 : 1;
}

}  // namespace
}  // namespace rastrel_bench

int main() {
    return rastrel_bench::Run();
}
