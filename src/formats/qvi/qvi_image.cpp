#include "formats/qvi/qvi_image.h"

namespace rastrel {

bool QviImage::Describe(FormatTexts& texts) const {
    texts = {"Norvanta Image format, " + std::to_string(Bits()) + " bit.", ""};
    return true;
}

}  // namespace rastrel
