#pragma once

#include "formats/stream_image.h"

namespace rastrel {

/// GIF files (".gif"): the first image of either version is read, with its palette and transparent
/// index, as 8-bit indices; images of up to 8 bits are written as "GIF87a" with 256 colours.
class GifImage final : public StreamImage {
  public:
    [[nodiscard]] bool ReadInfoFrom(ByteSource& source, ImageInfo& info) const override;
    /// Pixels that a damaged or cut file does not have are 0.
    [[nodiscard]] bool ReadFrom(ByteSource& source) override;
    [[nodiscard]] bool WriteTo(ByteSink& sink) override;
    /// Tells the user why nothing was written.
    [[nodiscard]] bool Write(const std::string& name) override;
    [[nodiscard]] bool Describe(FormatTexts& texts) const override;
};

}  // namespace rastrel
