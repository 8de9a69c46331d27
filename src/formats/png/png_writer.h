#pragma once

#include <cstdint>
#include <vector>

#include "core/byte_source.h"
#include "core/geometry.h"
#include "core/raster_image.h"
#include "formats/png/png_codec.h"

namespace rastrel {

/// Writes one PNG file through libpng.
class PngWriter {
  public:
    explicit PngWriter(ByteSink& sink);

    /// Writes a raster of plain rows: up to 8 bits a pixel as they are, with the palette, or as
    /// greys where there is none or it is the 256 greys; 16 and 24 bits as colours, 32 as colours
    /// with alpha.
    [[nodiscard]] bool Write(const RasterImage& raster);

  private:
    static void WriteBytes(png_structp png, png_bytep bytes, std::size_t count);
    static void Flush(png_structp png);

    [[nodiscard]] bool WriteHeader(const RasterImage& raster);
    [[nodiscard]] bool WriteStoredRows(const RasterImage& raster);
    [[nodiscard]] bool WriteShownColors(const RasterImage& raster);
    [[nodiscard]] bool Finish();

    ByteSink& sink_;
    std::vector<std::uint8_t> buffer_;
    std::size_t buffered_ = 0;
    PngCodec codec_;
};

}  // namespace rastrel
