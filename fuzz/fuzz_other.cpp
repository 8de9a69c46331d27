#include <cstddef>

#include "core/format_table.h"
#include "formats/other/other_image.h"
#include "read_and_use.h"

namespace {

using namespace rastrel;

void ReadAndUseOther(ByteSource& source) {
    OtherImage image;
    ImageInfo info;
    const bool has_info = image.ReadInfoFrom(source, info);
    if (!image.ReadFrom(source)) {
        rastrel_fuzz::Require(!image.HasBlock());
        return;
    }
    rastrel_fuzz::Require(has_info && info.width == image.Width() &&
                          info.height == image.Height() && info.bits == image.Bits());
    if (image.Block().Bytes().size() <= rastrel_fuzz::kMostUsedBytes)
        rastrel_fuzz::UseRaster(image);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MemorySource source({data, size});
    static_cast<void>(ImageTypeFromContent(source));
    ReadAndUseOther(source);
    return 0;
}
