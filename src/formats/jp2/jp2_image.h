#pragma once

#include "formats/stream_image.h"

namespace rastrel {

/// JPEG 2000 files (".jp2", ".bin"), through OpenJPEG: boxed or bare codestreams; grey ones become
/// 8 bits, others 24.
class Jp2Image final : public StreamImage {
  public:
    [[nodiscard]] bool ReadInfoFrom(ByteSource& source, ImageInfo& info) const override;
    [[nodiscard]] bool ReadFrom(ByteSource& source) override;
    [[nodiscard]] bool ReadPartFrom(ByteSource& source, const Rect& part) override;
    /// The quality field, from 1 to 99, says how much is lost; others: nothing.
    [[nodiscard]] bool WriteTo(ByteSink& sink) override;
    [[nodiscard]] bool Describe(FormatTexts& texts) const override;

  private:
    /// A null part: the whole.
    [[nodiscard]] bool Load(ByteSource& source, const Rect* part);
};

}  // namespace rastrel
