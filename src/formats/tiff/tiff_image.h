#pragma once

#include <string>

#include "core/raster_image.h"
#include "formats/tiff/tiff_loader.h"

namespace rastrel {

/// TIFF files (".tif") of 1 to 16 bits a sample and one, three or four samples, through libtiff;
/// read as 8-bit indices or 24-bit colours. A file whose georeference is rotated, skewed or flipped
/// is delivered north-up.
class TiffImage final : public RasterImage {
  public:
    [[nodiscard]] bool ReadInfo(const std::string& name, ImageInfo& info) override;
    [[nodiscard]] bool Read(const std::string& name) override;
    [[nodiscard]] bool ReadPart(const std::string& name, Rect part) override;
    [[nodiscard]] bool ReadPartReduced(const std::string& name, Rect part, int reduction) override;
    /// With the compression that the quality field names, else that of the file last read, where
    /// libtiff can write it for this image; else without.
    [[nodiscard]] bool Write(const std::string& name) override;
    [[nodiscard]] bool Describe(FormatTexts& texts) const override;

    /// The ImageDescription of the file last read; empty when it had none.
    [[nodiscard]] const std::string& Comment() const { return comment_; }
    /// The Compression tag of the file last read; 1, none, before. It is kept as the raster's
    /// auxiliary value, so that copies of an image are saved as the original would be.
    [[nodiscard]] int Compression() const;

  private:
    /// The name given, or the stored one for an empty name.
    [[nodiscard]] const std::string& NameOr(const std::string& name) const {
        return name.empty() ? FileName() : name;
    }
    /// The part's clipping to the delivered image comes with it; null: the whole.
    [[nodiscard]] bool Load(const std::string& name, const Rect* part, int reduction);
    void TakeLoaded(LoadedTiff loaded);

    std::string information_;
    std::string comment_;
};

}  // namespace rastrel
