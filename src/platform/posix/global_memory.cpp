#include "platform/global_memory.h"

#include <sys/mman.h>

#include <cstdlib>

namespace rastrel {

namespace {

/// From here on blocks are mapped, zeroed by the system as they are touched, in huge pages where it
/// has them: one fault for 2 MiB instead of 512.
constexpr std::size_t kMappedFrom = std::size_t{1} << 20;

}  // namespace

std::uint8_t* GlobalMemory::Take(std::size_t bytes) {
    if (bytes == 0) return nullptr;
    if (bytes < kMappedFrom) return static_cast<std::uint8_t*>(std::calloc(bytes, 1));
    void* mapped = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (mapped == MAP_FAILED) return nullptr;
#ifdef MADV_HUGEPAGE
    madvise(mapped, bytes, MADV_HUGEPAGE);
#endif
    return static_cast<std::uint8_t*>(mapped);
}

void GlobalMemory::Release(std::uint8_t* data, std::size_t bytes) {
    if (data == nullptr) return;
    if (bytes < kMappedFrom)
        std::free(data);
    else
        munmap(data, bytes);
}

}  // namespace rastrel
