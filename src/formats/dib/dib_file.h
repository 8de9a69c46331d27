#pragma once

#include "core/byte_source.h"
#include "core/dib_block.h"
#include "core/raster_image.h"
#include "formats/plausibility.h"

namespace rastrel {

/// How the pixel data stand in a bitmap file.
enum class PixelCoding {
    kPlain = 0,  ///< as in memory (BMP)
    kLzo = 1,    ///< two length words, then one LZO1X stream (QVI)
};

/// A bitmap file's headers, read: the header as it is kept in memory, with 40 bytes of size, the
/// height positive and sizes filled in, and what else it takes to find the pixels.
struct DibFileHeader {
    DibHeader header;
    bool top_down = false;                ///< the file's first row is the picture's top one
    std::uint32_t table_entry_bytes = 4;  ///< 3 in files of the older core header
    std::uint64_t table_position = 0;
    std::uint64_t pixel_position = 0;
};

/// Reads a bitmap file's size and depth without its pixels.
[[nodiscard]] bool ReadDibInfo(ByteSource& source, ImageInfo& info);

/// Reads and checks the headers from the source's position on: with or without the 14-byte file
/// header; information headers of 12 (core), 16 to 40, and more bytes. None when they make no
/// bitmap.
[[nodiscard]] std::optional<DibFileHeader> ReadDibHeader(ByteSource& source);

/// Whether a source's bytes are a bitmap file with LZO-compressed pixels: where the pixels begin
/// two lengths stand that fit its headers and its size.
[[nodiscard]] bool HasLzoPixels(ByteSource& source);

/// Reads a whole bitmap file. What its headers promise and the file does not hold is zero, but
/// a file that lacks more than kMostMissingBytes of what it promises is refused. Empty on failure.
[[nodiscard]] DibBlock ReadDibFile(ByteSource& source, PixelCoding coding);

/// Bytes that a block needs at most as a file with LZO-compressed pixels.
[[nodiscard]] std::uint64_t MostLzoFileBytes(const DibBlock& block);

/// Writes a block as a bitmap file. For data that are not run-length coded the image size in the
/// block's header is computed anew. False when the header's size is not 40 or the sink fails; a
/// failing LZO compressor leaves a file without pixels instead.
[[nodiscard]] bool WriteDibFile(ByteSink& sink, const DibBlock& block, PixelCoding coding);

}  // namespace rastrel
