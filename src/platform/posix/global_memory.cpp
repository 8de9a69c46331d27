#include "platform/global_memory.h"

#include <sys/mman.h>

#include <cstdlib>

namespace rastrel {

namespace {

/// From here on blocks are mapped, zeroed by the system as they are touched, in huge pages where it
/// has them: one fault for 2 MiB instead of 512.
constexpr std::size_t kMappedFrom = std::size_t{1} << 20;

/// Where in its first page a mapped block starts. In a bitmap file all stands 14 bytes later than
/// in the block: from the page's start, a copy from one to the other would write a little ahead of
/// where it reads, seen modulo the page size, and processors then take each load for one that
/// depends on a store (4K aliasing): twice the time.
constexpr std::size_t kOffsetInPage = 1024;

}  // namespace

std::uint8_t* GlobalMemory::Take(std::size_t bytes) {
    if (bytes == 0) return nullptr;
    if (bytes < kMappedFrom) return static_cast<std::uint8_t*>(std::calloc(bytes, 1));
    const std::size_t mapped_bytes = bytes + kOffsetInPage;
    void* mapped =
        mmap(nullptr, mapped_bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) return nullptr;
#ifdef MADV_HUGEPAGE
    madvise(mapped, mapped_bytes, MADV_HUGEPAGE);
#endif
    return static_cast<std::uint8_t*>(mapped) + kOffsetInPage;
}

void GlobalMemory::Release(std::uint8_t* data, std::size_t bytes) {
    if (data == nullptr) return;
    if (bytes < kMappedFrom)
        std::free(data);
    else
        munmap(data - kOffsetInPage, bytes + kOffsetInPage);
}

}  // namespace rastrel
