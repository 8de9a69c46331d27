#include "formats/bmp/bmp_image.h"

namespace rastrel {

bool BmpImage::Describe(FormatTexts& texts) const {
    texts = {"Windows Bitmap, " + std::to_string(Bits()) + " bit.", "No compression."};
    return true;
}

}  // namespace rastrel
