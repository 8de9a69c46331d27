#pragma once

#include <memory>
#include <string>

#include "core/raster_image.h"
#include "formats/tiff/tiff_writer.h"

namespace rastrel {

/// Writes one tall TIFF file, in its own place, from images stacked top to bottom: all of them in
/// one strip. Memory for a row is all it takes, whatever the total.
class TiffBandWriter {
  public:
    /// Begins with the first image. Null, and no file, for one whose width is not the total's or
    /// which cannot be written so.
    [[nodiscard]] static std::unique_ptr<TiffBandWriter> Open(const std::string& name,
                                                              int compression, Size total,
                                                              const RasterImage& first);
    /// The next image, of the first one's depth and any width. False also for one that reaches
    /// below the total height: nothing of it is written then.
    [[nodiscard]] bool Append(const RasterImage& next);
    /// Ends the file; true when all of it has been written. Nothing can be appended afterwards.
    [[nodiscard]] bool Close();

  private:
    TiffBandWriter(std::unique_ptr<TiffOutput> file, TiffForm form, Size total);

    std::unique_ptr<TiffOutput> file_;
    TiffForm form_;
    Size total_;
    TiffRowWriter rows_;
};

}  // namespace rastrel
