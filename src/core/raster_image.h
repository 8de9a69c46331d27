#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "core/color.h"
#include "core/dib_block.h"
#include "core/geometry.h"
#include "core/palette.h"

namespace rastrel {

class DrawDevice;

/// What a file's headers say about its image.
struct ImageInfo {
    int width = 0;
    int height = 0;
    int bits = 0;
};

/// What a format says about an image: its name and depth, and the kind of compression.
struct FormatTexts {
    std::string description;
    std::string compression;
};

/// Bits of the colour type, in the manner of PNG's.
constexpr int kColorTypePalette = 1;
constexpr int kColorTypeColor = 2;
constexpr int kColorTypeAlpha = 4;
constexpr int kColorTypePalettised = kColorTypePalette | kColorTypeColor;

/// An image in memory: one bitmap block with its description, and a palette where it has one. The
/// class of a file format derives from it and overrides the six format operations.
///
/// x and y address stored rows: row 0 is the bottom of the picture.
class RasterImage {
  public:
    RasterImage() = default;
    RasterImage(const RasterImage&) = delete;
    RasterImage& operator=(const RasterImage&) = delete;

    // The eighteen operations, in their fixed order.

    virtual ~RasterImage();
    [[nodiscard]] virtual bool IsInside(int x, int y) const;
    /// Gives the raster a new block of zero pixels; what it held is gone. A negative colour type
    /// stands for the depth's default. Without memory the raster ends without a block.
    virtual bool Create(int width, int height, int bits, int color_type);
    [[nodiscard]] virtual int AuxiliaryValue() const { return auxiliary_value_; }
    // Drawing is supplied by what knows devices. A source's y counts from the bottom stored row,
    // and a width or height of -1 stands for the raster's, of a source for its rest.

    /// Draws pixels one to one. False only without a block: no device, nothing drawn, is no
    /// failure, nor is a device that refuses.
    virtual bool Draw(DrawDevice* device, Rect destination, int source_x, int source_y);
    /// Draws a rectangle of the raster scaled, in parts when more than 1024 pixels a side are asked
    /// for; pixels of the transparent index leave the device as it is. False without a block or a
    /// device, or when the device refuses an opaque picture.
    virtual bool Stretch(DrawDevice* device, Rect destination, Rect source);
    /// A pixel's palette index; -1 outside and above 8 bits, 0 for depths that have no such pixels.
    [[nodiscard]] virtual int GetIndex(int x, int y) const;
    /// With a palette, the entry of the pixel's index; else the three bytes at the pixel's place.
    [[nodiscard]] virtual std::optional<Color> GetRgb(int x, int y) const;
    [[nodiscard]] virtual std::optional<Color32> GetPixel32(int x, int y) const;
    virtual bool SetIndex(int x, int y, int index);
    /// The colour type alone decides: palettised rasters take the nearest entry, all others three
    /// bytes at the pixel's place, whatever their depth.
    virtual bool SetRgb(int x, int y, Color color);
    virtual bool SetPixel32(int x, int y, Color32 color);
    /// A non-empty name replaces the stored one; the operation then works on the stored name.
    [[nodiscard]] virtual bool ReadInfo(const std::string& name, ImageInfo& info);
    [[nodiscard]] virtual bool Read(const std::string& name);
    [[nodiscard]] virtual bool ReadPart(const std::string& name, Rect part);
    [[nodiscard]] virtual bool ReadPartReduced(const std::string& name, Rect part, int reduction);
    [[nodiscard]] virtual bool Write(const std::string& name);
    [[nodiscard]] virtual bool Describe(FormatTexts& texts) const;

    /// Writes the image as a file of another type, for formats that do that by themselves.
    [[nodiscard]] virtual bool ExportAs(const std::string& name, int type);

    [[nodiscard]] bool HasBlock() const { return static_cast<bool>(block_); }
    [[nodiscard]] const DibBlock& Block() const { return block_; }
    [[nodiscard]] int Width() const { return width_; }
    [[nodiscard]] int Height() const { return height_; }
    [[nodiscard]] Size PixelSize() const { return {width_, height_}; }
    [[nodiscard]] int Bits() const { return bits_; }
    [[nodiscard]] int ColorType() const { return color_type_; }
    [[nodiscard]] int EffectiveWidth() const { return effective_width_; }
    [[nodiscard]] std::uint8_t* Pixels() const { return pixels_; }
    /// A stored row, effective width bytes; y must be inside.
    [[nodiscard]] std::span<std::uint8_t> Row(int y) const {
        const auto bytes = static_cast<std::size_t>(effective_width_);
        return {pixels_ + static_cast<std::size_t>(y) * bytes, bytes};
    }
    /// The stored row that shows as row y of the picture, from the top.
    [[nodiscard]] std::span<std::uint8_t> PictureRow(int y) const { return Row(height_ - 1 - y); }
    /// False for run-length data: its bytes are no rows of pixels.
    [[nodiscard]] bool HasPlainRows() const;

    [[nodiscard]] int TransparentIndex() const { return transparent_index_; }
    void SetTransparentIndex(int index) { transparent_index_ = index; }
    [[nodiscard]] int Quality() const { return quality_; }
    void SetQuality(int quality) { quality_ = quality; }
    /// The file that the raster came from or went to last.
    [[nodiscard]] const std::string& FileName() const { return file_name_; }
    void SetFileName(const std::string& name) { file_name_ = name; }

    [[nodiscard]] const Palette* GetPalette() const { return palette_ ? &*palette_ : nullptr; }
    /// Attaches a palette and makes the bitmap's colour table follow it.
    void SetPalette(const Palette& palette);
    void RemovePalette() { palette_.reset(); }

    /// Puts a block in the place of the one held; the palette stays, and refills the new block's
    /// colour table. The colour type stays too unless one is given.
    void ReplaceBlock(DibBlock block, std::optional<int> color_type = std::nullopt);
    /// Gives the block away; the raster is left without one.
    [[nodiscard]] DibBlock DetachBlock();
    /// Marks run-length data as plain rows, for one who overwrites them all. Other data stay as
    /// they are.
    void DropRunLengthCoding();
    /// Takes the image out of another raster, which is left without one. No pixel is copied.
    void TakeOver(RasterImage& source);
    /// Becomes a deep copy of another raster's image; false, and unchanged, without memory.
    [[nodiscard]] bool CopyFrom(const RasterImage& source);

  protected:
    void SetAuxiliaryValue(int value) { auxiliary_value_ = value; }

  private:
    [[nodiscard]] std::size_t ByteOffset(int x, int y) const;

    std::uint8_t* pixels_ = nullptr;
    int width_ = 0;
    int height_ = 0;
    int bits_ = 0;
    int color_type_ = 0;
    int effective_width_ = 0;
    DibBlock block_;
    int transparent_index_ = -1;
    std::optional<Palette> palette_;
    int quality_ = 0;
    int auxiliary_value_ = 0;
    std::string file_name_;
};

}  // namespace rastrel
