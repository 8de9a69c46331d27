#pragma once

#include <cstdint>
#include <span>

#include "platform/global_memory.h"

namespace rastrel {

/// The information header of a device-independent bitmap (BITMAPINFOHEADER), fields in file order.
struct DibHeader {
    std::uint32_t size = 40;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint16_t planes = 1;
    std::uint16_t bit_count = 0;
    std::uint32_t compression = 0;
    std::uint32_t image_size = 0;
    std::int32_t x_resolution = 0;
    std::int32_t y_resolution = 0;
    std::uint32_t colors_used = 0;
    std::uint32_t colors_important = 0;
};

constexpr std::uint32_t kDibHeaderSize = 40;
constexpr std::uint32_t kDibUncompressed = 0;
constexpr std::uint32_t kDibRle8 = 1;
constexpr std::uint32_t kDibRle4 = 2;
constexpr std::uint32_t kDibBitFields = 3;

/// No bitmap block is larger, on any system.
constexpr std::uint64_t kMostBlockBytes = 0x7fffffff;

[[nodiscard]] DibHeader ParseDibHeader(std::span<const std::uint8_t> bytes);
void StoreDibHeader(const DibHeader& header, std::span<std::uint8_t> bytes);

/// Bytes in a stored row: whole groups of four.
[[nodiscard]] constexpr std::uint64_t DibRowBytes(std::uint32_t bits, std::uint32_t width) {
    return (std::uint64_t{bits} * width + 31) / 32 * 4;
}
/// Colour table entries: as told, or as many as the depth can index.
[[nodiscard]] constexpr std::uint32_t DibColorCount(const DibHeader& header) {
    if (header.colors_used != 0) return header.colors_used;
    return header.bit_count <= 8 ? 1u << header.bit_count : 0;
}
/// Run-length data have no rows of their own: they are kept and written as they stand.
[[nodiscard]] constexpr bool IsRunLengthCoded(const DibHeader& header) {
    return header.compression == kDibRle8 || header.compression == kDibRle4;
}
/// Bytes that all rows take; 0 when that is more than a block may hold, or there are no rows.
[[nodiscard]] std::uint32_t DibImageSize(const DibHeader& header);

class DibBlock;

/// Gives a block the resolution, in pixels a metre, of another that it is made from.
void CopyResolution(const DibBlock& from, const DibBlock& to);

/// A packed device-independent bitmap: the 40-byte header, the colour table (blue, green, red, 0)
/// and the rows, the bottom row first, in one block of global memory.
///
/// Every block covers its rows, or the stated image size where that is larger (run-length data),
/// then the 12 bytes by which a bit-field header moves the pixels, and 8 bytes for colours written
/// as three bytes into the last pixel of a shallow raster.
class DibBlock {
  public:
    DibBlock() = default;

    /// A block of zero pixels with the standard 16 colours, repeated, as colour table. The table of
    /// a 1-bit block has 8 entries, all black. Empty when a size is not positive or too large.
    [[nodiscard]] static DibBlock Create(int width, int height, int bits);
    /// A block for a header whose width, height and depth are sound; table and pixels are zero.
    /// Empty when it would be too large or memory does not suffice.
    [[nodiscard]] static DibBlock ForHeader(const DibHeader& header);
    [[nodiscard]] DibBlock Clone() const;

    explicit operator bool() const { return static_cast<bool>(memory_); }

    [[nodiscard]] DibHeader Header() const { return ParseDibHeader(Bytes()); }
    void SetHeader(const DibHeader& header) const { StoreDibHeader(header, Bytes()); }

    /// The colour table, four bytes an entry.
    [[nodiscard]] std::span<std::uint8_t> ColorTable() const;
    /// All that follows the colour table: here files put their pixel data.
    [[nodiscard]] std::span<std::uint8_t> PixelData() const;
    /// The first byte of row 0. A bit-field header is taken to be followed by its three masks.
    [[nodiscard]] std::uint8_t* Rows() const;
    [[nodiscard]] std::span<std::uint8_t> Bytes() const { return {memory_.data(), memory_.size()}; }

  private:
    explicit DibBlock(GlobalMemory memory) : memory_(std::move(memory)) {}

    GlobalMemory memory_;
};

}  // namespace rastrel
