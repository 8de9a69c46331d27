#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "core/byte_source.h"
#include "core/dib_block.h"
#include "core/geometry.h"
#include "core/palette.h"
#include "formats/png/png_codec.h"

namespace rastrel {

/// Decodes one PNG file through libpng: 1 bit a pixel stays 1 bit; other palettes and greys become
/// 8 bits, colours 24, and whatever has alpha 32. Samples of 16 bits go to the nearest of 8.
class PngReader {
  public:
    explicit PngReader(ByteSource& source);

    /// Reads up to the pixels; the questions below need it.
    [[nodiscard]] bool ReadHeader();
    [[nodiscard]] Size PixelSize() const { return size_; }
    [[nodiscard]] int Bits() const { return bits_; }
    [[nodiscard]] bool IsInterlaced() const { return interlaced_; }
    /// What the pixels of up to 8 bits stand for.
    [[nodiscard]] const std::optional<Palette>& GetPalette() const { return palette_; }
    /// The palette entry that is fully transparent if it is the only such one, else -1.
    [[nodiscard]] int TransparentIndex() const { return transparent_index_; }

    /// Decodes the picture and checks the file to its end. No block for a file that is damaged, or
    /// cannot hold its picture. One of the two is called, once.
    [[nodiscard]] DibBlock DecodeWhole();
    /// Decodes a part of a picture that is not interlaced; what stands behind it in the file is not
    /// looked at.
    [[nodiscard]] DibBlock DecodePart(const Rect& part);

  private:
    static void ReadBytes(png_structp png, png_bytep out, std::size_t count);

    void ReadForm();
    void ReadPaletteEntries();
    void ReadTransparency(int color_type, int depth);
    [[nodiscard]] bool IsPlausible() const;
    /// Asks libpng for rows as the bitmap has them.
    [[nodiscard]] bool Start();

    ByteSource& source_;
    std::vector<std::uint8_t> buffer_;
    std::size_t buffer_at_ = 0;
    std::size_t buffer_end_ = 0;

    PngCodec codec_;
    Size size_;
    int bits_ = 0;
    bool interlaced_ = false;
    int passes_ = 1;
    std::optional<Palette> palette_;
    int transparent_index_ = -1;
};

}  // namespace rastrel
