#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/raster_image.h"
#include "formats/jpeg/jpeg_writer.h"

namespace rastrel {

/// Writes one tall JPEG file, in its own place, from images stacked top to bottom. Memory for a few
/// rows is all it takes, whatever the total.
class JpegBandWriter {
  public:
    /// Begins with the first image: one of 8 bits makes a grey file, any other one in colour. The
    /// quality is brought into 1 to 99. Null for an image whose width is not the total's, and no
    /// file then.
    [[nodiscard]] static std::unique_ptr<JpegBandWriter> Open(const std::string& name, int quality,
                                                              Size total, const RasterImage& first);
    /// The next image, of the same width. Rows below the total height are dropped. Grey files take
    /// what has a palette, those in colour 24 and 32 bits; what does not match is not refused and
    /// leaves rows of no use.
    [[nodiscard]] bool Append(const RasterImage& next);
    /// Ends the file; true when all of it has been written. Nothing can be appended afterwards.
    [[nodiscard]] bool Close();

  private:
    JpegBandWriter(std::unique_ptr<FileSink> file, Size total);

    std::unique_ptr<FileSink> file_;
    JpegWriter writer_;
    int width_;
    bool grey_ = false;
    bool failed_ = false;
    /// Three bytes a pixel also in grey files, so that a row in colour has its place.
    std::vector<std::uint8_t> row_;
    std::vector<std::uint8_t> colors_;
};

}  // namespace rastrel
