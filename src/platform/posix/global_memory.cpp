#include "platform/global_memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
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

/// Only what begins and ends with a huge page is given one.
constexpr std::size_t kHugePage = std::size_t{2} << 20;

/// Maps memory from the start of a huge page on; null when there is none.
void* MapAligned(std::size_t bytes) {
    const std::size_t reserved = bytes + kHugePage;
    void* const start =
        mmap(nullptr, reserved, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (start == MAP_FAILED) return nullptr;
    const auto address = reinterpret_cast<std::uintptr_t>(start);
    const std::size_t before = (kHugePage - address % kHugePage) % kHugePage;
    auto* const mapped = static_cast<std::uint8_t*>(start) + before;
    if (before > 0) munmap(start, before);
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t kept = (bytes + page - 1) / page * page;
    if (before + kept < reserved) munmap(mapped + kept, reserved - before - kept);
#ifdef MADV_HUGEPAGE
    madvise(mapped, bytes, MADV_HUGEPAGE);
#endif
    return mapped;
}

}  // namespace

std::uint8_t* GlobalMemory::Take(std::size_t bytes) {
    if (bytes == 0) return nullptr;
    if (bytes < kMappedFrom) return static_cast<std::uint8_t*>(std::calloc(bytes, 1));
    auto* const mapped = static_cast<std::uint8_t*>(MapAligned(bytes + kOffsetInPage));
    return mapped != nullptr ? mapped + kOffsetInPage : nullptr;
}

void GlobalMemory::Release(std::uint8_t* data, std::size_t bytes) {
    if (data == nullptr) return;
    if (bytes < kMappedFrom)
        std::free(data);
    else
        munmap(data - kOffsetInPage, bytes + kOffsetInPage);
}

}  // namespace rastrel
