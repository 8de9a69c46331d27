#pragma once

#include <optional>
#include <string>

#include "core/byte_source.h"
#include "core/raster_image.h"

namespace rastrel {

/// A format whose files are one stream of bytes. The class gives its reader and writer over byte
/// sources and sinks; the operations on named files are made from them here.
class StreamImage : public RasterImage {
  public:
    [[nodiscard]] bool ReadInfo(const std::string& name, ImageInfo& info) final;
    [[nodiscard]] bool Read(const std::string& name) final;
    [[nodiscard]] bool ReadPart(const std::string& name, Rect part) final;
    [[nodiscard]] bool Write(const std::string& name) override;

    [[nodiscard]] virtual bool ReadInfoFrom(ByteSource& source, ImageInfo& info) const = 0;
    /// On failure the raster stays as it was.
    [[nodiscard]] virtual bool ReadFrom(ByteSource& source) = 0;
    /// The part is clipped to the image; an empty one fails. For formats with partial reads.
    [[nodiscard]] virtual bool ReadPartFrom(ByteSource& source, const Rect& part);
    [[nodiscard]] virtual bool WriteTo(ByteSink& sink) = 0;

  protected:
    /// Becomes the image of a block that was read, palettised if it has a palette.
    void TakeDecoded(DibBlock block, const std::optional<Palette>& palette = std::nullopt,
                     int transparent_index = -1);
};

}  // namespace rastrel
