#include "platform/global_memory.h"

#include <windows.h>

namespace rastrel {

std::uint8_t* GlobalMemory::Take(std::size_t bytes) {
    if (bytes == 0) return nullptr;
    HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bytes);
    if (handle == nullptr) return nullptr;
    void* locked = GlobalLock(handle);
    if (locked == nullptr) GlobalFree(handle);
    return static_cast<std::uint8_t*>(locked);
}

void GlobalMemory::Release(std::uint8_t* data, std::size_t /*bytes*/) {
    if (data == nullptr) return;
    HGLOBAL handle = GlobalHandle(data);
    GlobalUnlock(handle);
    GlobalFree(handle);
}

}  // namespace rastrel
