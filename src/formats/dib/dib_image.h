#pragma once

#include "formats/dib/dib_file.h"
#include "formats/stream_image.h"

namespace rastrel {

/// What the formats that store a bitmap block almost as it is have in common: all but their names.
class DibImage : public StreamImage {
  public:
    explicit DibImage(PixelCoding coding) : coding_(coding) {}

    [[nodiscard]] bool ReadInfoFrom(ByteSource& source, ImageInfo& info) const final;
    [[nodiscard]] bool ReadFrom(ByteSource& source) final;
    /// Refills the colour table from the palette first, or from the system's default colours for
    /// a raster that has none.
    [[nodiscard]] bool WriteTo(ByteSink& sink) final;

  private:
    PixelCoding coding_;
};

}  // namespace rastrel
