#pragma once

#include "formats/dib/dib_image.h"

namespace rastrel {

/// Windows bitmap files (".bmp"): the bitmap block behind a 14-byte file header.
class BmpImage final : public DibImage {
  public:
    BmpImage() : DibImage(PixelCoding::kPlain) {}
    [[nodiscard]] bool Describe(FormatTexts& texts) const override;
};

}  // namespace rastrel
