#include "formats/dib/lzo_pixels.h"

#include <lzo/lzo1x.h>

#include <memory>
#include <new>

namespace rastrel {

namespace {

bool LzoIsReady() {
    static const bool ready = lzo_init() == LZO_E_OK;
    return ready;
}

}  // namespace

LzoPixels CompressLzo(std::span<const std::uint8_t> pixels) {
    if (!LzoIsReady()) return {};
    LzoPixels result{GlobalMemory(MostLzoBytes(pixels.size()))};
    const std::unique_ptr<std::uint8_t[]> work(new (std::nothrow)
                                                   std::uint8_t[LZO1X_1_MEM_COMPRESS]);
    if (!result.memory || !work) return {};
    lzo_uint size = result.memory.size();
    if (lzo1x_1_compress(pixels.data(), pixels.size(), result.memory.data(), &size, work.get()) !=
        LZO_E_OK)
        return {};
    result.size = size;
    return result;
}

void DecompressLzo(std::span<const std::uint8_t> stream, std::span<std::uint8_t> out) {
    if (!LzoIsReady()) return;
    lzo_uint size = out.size();
    // The checking decompressor stops at the first error and never leaves either buffer.
    static_cast<void>(
        lzo1x_decompress_safe(stream.data(), stream.size(), out.data(), &size, nullptr));
}

}  // namespace rastrel
