#pragma once

#include <string>

#include "core/byte_source.h"
#include "core/raster_image.h"
#include "formats/raw/raw_header.h"

namespace rastrel {

/// Raw pixels in a file of their own, with a text header (".hdr") and a palette file (".clr") of
/// the same name beside it. Header and palette files are also found with their extensions in upper
/// case, and written with them in lower case.
class RawImage : public RasterImage {
  public:
    explicit RawImage(RawLayout layout) : layout_(layout) {}

    /// Needs the header only.
    [[nodiscard]] bool ReadInfo(const std::string& name, ImageInfo& info) final;
    [[nodiscard]] bool Read(const std::string& name) final;
    [[nodiscard]] bool ReadPart(const std::string& name, Rect part) final;
    [[nodiscard]] bool ReadPartReduced(const std::string& name, Rect part, int reduction) final;
    /// The pixel file gets the layout's extension, whatever the name's.
    [[nodiscard]] bool Write(const std::string& name) final;
    [[nodiscard]] bool Describe(FormatTexts& texts) const final;

    /// The same over streams; colors may be null. On failure the raster stays as it was. An empty
    /// part stands for the whole.
    [[nodiscard]] bool ReadFrom(ByteSource& header, ByteSource* colors, ByteSource& pixels,
                                std::optional<Rect> part = std::nullopt, int reduction = 1);
    /// colors may be null for an image without palette.
    [[nodiscard]] bool WriteTo(ByteSink& header, ByteSink* colors, ByteSink& pixels) const;

  private:
    [[nodiscard]] bool ReadFiles(const std::string& name, std::optional<Rect> part, int reduction);

    RawLayout layout_;
};

/// Band interleaved by line (".bil").
class BilImage final : public RawImage {
  public:
    BilImage() : RawImage(RawLayout::kBil) {}
};

/// Band interleaved by pixel (".bip").
class BipImage final : public RawImage {
  public:
    BipImage() : RawImage(RawLayout::kBip) {}
};

/// Band sequential (".bsq").
class BsqImage final : public RawImage {
  public:
    BsqImage() : RawImage(RawLayout::kBsq) {}
};

}  // namespace rastrel
