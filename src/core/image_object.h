#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "core/format_table.h"
#include "core/geometry.h"
#include "core/raster_image.h"

namespace rastrel {

/// What a handle stands for: an image-type code, a file name, and one raster of the type's format
/// class, or none. The raster changes class when the type does, so that an image read in one format
/// can be saved in another.
class ImageObject {
  public:
    [[nodiscard]] int Type() const { return type_; }
    /// Null when there is none.
    [[nodiscard]] RasterImage* Raster() const { return raster_.get(); }
    /// Holds a raster with pixel storage.
    [[nodiscard]] bool IsValid() const { return raster_ && raster_->HasBlock(); }

    /// The factory: replaces the raster by a new, empty one of the type's class. False, leaving
    /// none, for a type that has no class.
    bool MakeRaster(int type);

    /// Takes a raster of a type's class in the place of its own.
    void Adopt(int type, std::unique_ptr<RasterImage> raster) {
        type_ = type;
        raster_ = std::move(raster);
    }

    /// Becomes an image of a type, with the pixels of a raster of any class, which is left without.
    /// False for a type that has no class.
    bool TakeOver(int type, RasterImage& raster);

    /// A new raster of zero pixels, of type BMP; a negative colour type: the depth's default.
    bool Create(int width, int height, int bits, int color_type = -1);
    /// Becomes a deep copy of another image.
    bool CopyFrom(const ImageObject& source);

    /// Becomes a 24-bit image of type BMP with the red channel of one image, the green of another
    /// and the blue of a third, all of one size.
    bool CombineBands(const ImageObject& red, const ImageObject& green, const ImageObject& blue);

    // Reading tries the class of the type, then the name as an address whose content has a type of
    // its own, then whatever class or decoder knows the file's content; an image that is read in
    // this last way becomes one of type BMP.

    /// Reads a file; kNoImageType: by the name's extension.
    [[nodiscard]] bool Read(const std::string& name, int type);
    /// Reads a rectangle of a file, and of it every reduction-th column and row.
    [[nodiscard]] bool ReadPart(const std::string& name, int type, Rect part, int reduction);
    /// Reads what a file's headers tell, by its extension.
    [[nodiscard]] bool ReadInfo(const std::string& name, ImageInfo& info);
    /// Writes a file and takes its type on; on failure raster, type and name stay as they were.
    [[nodiscard]] bool Save(const std::string& name, int type);

  private:
    /// What reading does with the raster of a type's class and a file's name.
    using Operation = std::function<bool(const std::string& name)>;
    /// What it does with a raster that was made for a file's content.
    using OperationOn = std::function<bool(RasterImage& raster)>;

    /// Takes a type on and has a raster of its class, keeping one that is there already.
    [[nodiscard]] bool ChooseClass(const std::string& name, int type);
    /// The first two ways to read.
    [[nodiscard]] bool ByTypeOrAddress(const std::string& name, int type,
                                       const Operation& operation);
    /// The last way, as far as it leads to a raster that does the operation; null if it does not.
    [[nodiscard]] std::unique_ptr<RasterImage> ByContent(const std::string& name,
                                                         const OperationOn& operation) const;
    [[nodiscard]] bool ReadPartByClass(const std::string& name, Rect part, int reduction);
    /// Makes an image that was read by its content this one, through a temporary bitmap file.
    [[nodiscard]] bool BecomeBmp(RasterImage& source);
    /// Moves the image into a raster of another class and writes that.
    [[nodiscard]] bool SaveAsOtherType(const std::string& name, const FormatRow& format);

    int type_ = kNoImageType;
    std::string file_name_;
    std::unique_ptr<RasterImage> raster_;
};

}  // namespace rastrel
