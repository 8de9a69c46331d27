#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/geometry.h"
#include "core/raster_image.h"
#include "formats/tiff/tiff_file.h"

namespace rastrel {

/// How a file's samples become pixels of a bitmap.
enum class TiffPixels {
    kIndices,        ///< one sample: an index of 8 bits
    kColors,         ///< three samples or four: red, green, blue and one that is dropped
    kColorsByCodec,  ///< brightness and colour differences that libtiff turns into colours
};

/// What a file's first directory says of its pixels, checked: nothing here can lead a size
/// computed in 64 bits astray.
struct TiffLayout {
    Size size;
    int bits = 0;     ///< a sample
    int samples = 0;  ///< a pixel
    std::uint16_t photometric = 0;
    std::uint16_t compression = 0;
    bool separate = false;   ///< one plane a sample
    bool tiled = false;      ///< else in strips
    bool bottom_up = false;  ///< the file's first row is the lowest of the picture
    std::uint32_t chunk_width = 0;
    std::uint32_t chunk_height = 0;
    TiffPixels pixels = TiffPixels::kIndices;

    /// Planes that have to be decoded: the fourth sample never is, where it stands by itself.
    [[nodiscard]] int Planes() const { return separate && samples > 1 ? 3 : 1; }
    [[nodiscard]] int SamplesInPlane() const { return separate ? 1 : samples; }
    [[nodiscard]] std::uint32_t ChunksAcross() const {
        return (static_cast<std::uint32_t>(size.width) - 1) / chunk_width + 1;
    }
    /// Bytes in a decoded row of a strip or tile of one plane.
    [[nodiscard]] std::uint64_t RowBytes() const {
        return (std::uint64_t{chunk_width} * static_cast<unsigned>(SamplesInPlane() * bits) + 7) /
               8;
    }
    /// Rows of the chunk that begins at a row: the last strip may be shorter, tiles never are.
    [[nodiscard]] std::uint32_t RowsInChunkAt(std::uint32_t row) const;
    [[nodiscard]] std::uint64_t ChunkBytesAt(std::uint32_t row) const;
};

/// The layout of an opened file; none, with a word in the log, for one that has no path here.
[[nodiscard]] std::optional<TiffLayout> ReadTiffLayout(TiffInput& file);

/// False when the file cannot hold the strips or tiles that a part of it needs: they lie beyond its
/// end, or no compression could have made them as small. Asked before memory is taken.
[[nodiscard]] bool CanHoldPart(TiffInput& file, const TiffLayout& layout, const Rect& file_part);

/// The text that describes a read file.
[[nodiscard]] std::string TiffInformation(const TiffLayout& layout, std::uint64_t file_size);

/// How many samples a pixel of a file has.
enum class TiffSampleKind {
    kOne = 10000,
    kSeveral = 10001,
    kNoFile = 10002,  ///< it cannot be opened
};
[[nodiscard]] TiffSampleKind ReadTiffSampleKind(const std::string& name);

/// Size and depth (bits a sample times samples) as the file's tags tell them.
[[nodiscard]] bool ReadTiffInfo(const TiffInput& file, ImageInfo& info);

}  // namespace rastrel
