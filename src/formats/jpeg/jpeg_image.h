#pragma once

#include "formats/stream_image.h"

namespace rastrel {

/// JPEG files (".jpg"), through libjpeg: grey ones become 8 bits, others 24.
class JpegImage final : public StreamImage {
  public:
    [[nodiscard]] bool ReadInfoFrom(ByteSource& source, ImageInfo& info) const override;
    [[nodiscard]] bool ReadFrom(ByteSource& source) override;
    [[nodiscard]] bool ReadPartFrom(ByteSource& source, const Rect& part) override;
    /// In colour, with the quality field as libjpeg's quality; above 100 it stands for a grey file
    /// of that quality modulo 100 where the image has 8 bits, whose indices are the levels then.
    [[nodiscard]] bool WriteTo(ByteSink& sink) override;
    [[nodiscard]] bool Describe(FormatTexts& texts) const override;

  private:
    /// A null part: the whole.
    [[nodiscard]] bool Load(ByteSource& source, const Rect* part);
};

}  // namespace rastrel
