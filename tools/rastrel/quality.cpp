#include "quality.h"

#include <algorithm>

#include "compression.h"
#include "types.h"

namespace rastrel_cli {

void SetQualityFor(const Image& image, const std::string& name, int type,
                   std::optional<int> quality) {
    if (EffectiveType(name, type) == RASTREL_TYPE_JPEG) {
        int code = quality.value_or(kUsualJpegQuality);
        // Codes above 100 ask for a grey file of the rest, of which 100 would be none.
        constexpr int kGreyFile = 100;
        if (code >= 1 && code <= kGreyFile && IsGrey(image))
            code = kGreyFile + std::min(code, kGreyFile - 1);
        quality = code;
    }
    if (quality) Rastrel_SetQuality(image.Handle(), *quality);
}

}  // namespace rastrel_cli
