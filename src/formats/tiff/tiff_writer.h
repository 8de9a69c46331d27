#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/raster_image.h"
#include "formats/tiff/tiff_file.h"

namespace rastrel {

/// The forms that pixels take in the files written here.
enum class TiffForm {
    kFullColor,      ///< 24 bits: red, green, blue
    kGrey,           ///< 8 bits with the grey palette: no colour map
    kPalette,        ///< 8 bits
    kPalette4,       ///< 4 bits
    kBlackAndWhite,  ///< 1 bit
};

/// The form of a raster; none for 16 and 32 bits and for run-length data. Without the grey test a
/// grey palette is one like others.
[[nodiscard]] std::optional<TiffForm> TiffFormOf(const RasterImage& raster, bool grey_test);

[[nodiscard]] int BitsOf(TiffForm form);

/// Whether a compression, by its tag value, can be written for an image: fax codes need 1 bit,
/// JPEG takes grey and full colour only, and its sides have a limit.
[[nodiscard]] bool CanCompressTiff(int compression, TiffForm form, Size size);

/// Sets the tags that a file of one strip has, in their order. The description is left empty.
/// False, with a word in the log, when libtiff does not take one.
[[nodiscard]] bool SetTiffTags(TiffOutput& file, Size size, int compression);
/// The tags of the pixels' form. Without photometric: a grey image's stays open.
[[nodiscard]] bool SetTiffFormTags(TiffOutput& file, TiffForm form, const RasterImage& raster);

/// Writes the rows of rasters one after the other into the one strip of a file.
class TiffRowWriter {
  public:
    /// The tags must be set.
    TiffRowWriter(TiffOutput& file, TiffForm form, Size size);

    /// All rows, the picture's top row first. What is narrower than the file is filled up with
    /// zeros, what is wider cut.
    [[nodiscard]] bool Write(const RasterImage& raster);
    [[nodiscard]] std::int64_t RowsWritten() const { return rows_written_; }

  private:
    /// Rows as they are, in large pieces.
    [[nodiscard]] bool WriteStored(const RasterImage& raster);
    /// The whole strip.
    [[nodiscard]] bool WriteAtOnce(const RasterImage& raster);
    /// The bytes of a picture's row as they stand in the file.
    void MakeRow(const RasterImage& raster, int y, std::span<std::uint8_t> out) const;

    TiffOutput& file_;
    TiffForm form_;
    Size size_;
    std::size_t row_bytes_;
    std::vector<std::uint8_t> rows_;  ///< as they go to the file, one or more
    std::int64_t rows_written_ = 0;
};

/// Writes a raster as a TIFF file of one strip, in the first of the compressions that can be
/// written for it, else without one.
[[nodiscard]] bool WriteTiff(const std::string& name, const RasterImage& raster,
                             std::initializer_list<int> compressions);

}  // namespace rastrel
