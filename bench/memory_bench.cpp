// Peak memory of reading a BMP file of 100 megapixels, against the size of the bitmap alone.

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

int Run() {
    const std::string path = TemporaryPath("rastrel-bench-memory.bmp");
    // Made in a child as well: this process must stay small, because children start with its pages.
    const long saving = PeakKilobytes([&path] {
        const BenchImage image(kWidth, kHeight, 24);
        FillWithGround(image.Handle());
        return Rastrel_Save(image.Handle(), path.c_str(), -1) == 1;
    });
    const long idle = PeakKilobytes([] { return true; });
    const long reading = PeakKilobytes([&path] {
        const BenchImage image;
        return Rastrel_Read(image.Handle(), path.c_str(), -1) == 1;
    });
    std::remove(path.c_str());
    if (saving < 0 || reading < 0) {
        std::fprintf(stderr, "rastrel_bench_memory: saving or reading failed\n");
        return 1;
    }
    const std::size_t row_bytes = (std::size_t{kWidth} * 24 + 31) / 32 * 4;
    const long block = static_cast<long>((row_bytes * kHeight + 1023) / 1024);
    std::printf(
        "bmp_read peak memory: %ld KiB above an idle process; the bitmap alone is %ld KiB\n",
        reading - idle, block);
    return 0;
}

}  // namespace
}  // namespace rastrel_bench

int main() {
    return rastrel_bench::Run();
}
