#include <cstddef>

#include "formats/jpeg/jpeg_image.h"
#include "read_parts.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    rastrel_fuzz::ReadWholeAndPart<rastrel::JpegImage>({data, size});
    return 0;
}
