#pragma once

#include "formats/dib/dib_image.h"

namespace rastrel {

/// The library's own compact files (".qvi"): a bitmap file whose pixels are one LZO1X stream,
/// behind its expanded and its compressed length.
class QviImage final : public DibImage {
  public:
    QviImage() : DibImage(PixelCoding::kLzo) {}
    [[nodiscard]] bool Describe(FormatTexts& texts) const override;
};

}  // namespace rastrel
