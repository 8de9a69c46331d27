#pragma once

#include "formats/stream_image.h"

namespace rastrel {

/// PNG files (".png"), through libpng: read as 1 or 8 bits with a palette, 24, or with alpha 32;
/// written at any depth.
class PngImage final : public StreamImage {
  public:
    [[nodiscard]] bool ReadInfoFrom(ByteSource& source, ImageInfo& info) const override;
    [[nodiscard]] bool ReadFrom(ByteSource& source) override;
    [[nodiscard]] bool ReadPartFrom(ByteSource& source, const Rect& part) override;
    [[nodiscard]] bool WriteTo(ByteSink& sink) override;
    [[nodiscard]] bool Describe(FormatTexts& texts) const override;
};

}  // namespace rastrel
