#include <zlib.h>

#include <cstddef>
#include <vector>

#include "formats/png/png_image.h"
#include "read_parts.h"

namespace {

constexpr std::size_t kSignatureBytes = 8;
constexpr std::size_t kChunkBytes = 12;  // length, type and checksum

std::uint32_t BigEndian(const std::uint8_t* at) {
    return std::uint32_t{at[0]} << 24 | std::uint32_t{at[1]} << 16 | std::uint32_t{at[2]} << 8 |
           at[3];
}

/// Makes every chunk's checksum right: changes of the content would all end there.
void MendChecksums(std::vector<std::uint8_t>& file) {
    for (std::size_t at = kSignatureBytes; at + kChunkBytes <= file.size();) {
        const std::uint32_t length = BigEndian(&file[at]);
        if (length > file.size() - at - kChunkBytes) return;
        const auto crc =
            static_cast<std::uint32_t>(crc32(0, &file[at + 4], static_cast<uInt>(length + 4)));
        at += 8 + length;
        for (int shift = 24; shift >= 0; shift -= 8)
            file[at++] = static_cast<std::uint8_t>(crc >> shift);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<std::uint8_t> file(data, data + size);
    MendChecksums(file);
    rastrel_fuzz::ReadWholeAndPart<rastrel::PngImage>(file);
    return 0;
}
