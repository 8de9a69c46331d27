#include <cstddef>

#include "formats/jp2/jp2_image.h"
#include "read_parts.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    rastrel_fuzz::ReadWholeAndPart<rastrel::Jp2Image>({data, size});
    return 0;
}
