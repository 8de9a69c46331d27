#pragma once

#include "formats/stream_image.h"

namespace rastrel {

/// Files of formats that have no class of their own: Targa, Photoshop's composite image, PGM and
/// PPM in binary form, Softimage PIC, Radiance HDR. They can only be read: grey as 8 bits with the
/// grey palette, colours as 24 bits, both with transparency as 32; 16-bit samples lose their lower
/// half.
class OtherImage final : public StreamImage {
  public:
    [[nodiscard]] bool ReadInfoFrom(ByteSource& source, ImageInfo& info) const override;
    [[nodiscard]] bool ReadFrom(ByteSource& source) override;
    [[nodiscard]] bool WriteTo(ByteSink& sink) override;
    [[nodiscard]] bool Describe(FormatTexts& texts) const override;
};

}  // namespace rastrel
