#pragma once

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
    [[nodiscard]] bool Write(const std::string& name) final;

    [[nodiscard]] virtual bool ReadInfoFrom(ByteSource& source, ImageInfo& info) const = 0;
    /// On failure the raster stays as it was.
    [[nodiscard]] virtual bool ReadFrom(ByteSource& source) = 0;
    [[nodiscard]] virtual bool WriteTo(ByteSink& sink) = 0;
};

}  // namespace rastrel
