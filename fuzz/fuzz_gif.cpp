#include <cstddef>

#include "formats/gif/gif_image.h"
#include "read_and_use.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    rastrel_fuzz::ReadAndUse<rastrel::GifImage>({data, size});
    return 0;
}
