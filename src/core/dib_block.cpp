#include "core/dib_block.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "core/byte_fields.h"
#include "core/checked_size.h"
#include "core/color.h"

namespace rastrel {

namespace {

constexpr std::uint32_t kBytesPerColor = 4;
constexpr std::uint32_t kLeastTableRoom = 256;
constexpr std::uint32_t kMaskBytes = 12;
constexpr std::uint32_t kSpareBytes = 8;

/// The standard palette of 16-colour displays.
constexpr std::array<Color, 16> kStandardColors = {{
    {0, 0, 0},
    {128, 0, 0},
    {0, 128, 0},
    {128, 128, 0},
    {0, 0, 128},
    {128, 0, 128},
    {0, 128, 128},
    {192, 192, 192},
    {128, 128, 128},
    {255, 0, 0},
    {0, 255, 0},
    {255, 255, 0},
    {0, 0, 255},
    {255, 0, 255},
    {0, 255, 255},
    {255, 255, 255},
}};

/// Colour table entries of a new block. Eight for 1 bit: hosts find the rows of such a bitmap
/// behind a table of that length.
constexpr std::uint32_t NewColorCount(int bits) {
    switch (bits) {
        case 1:
            return 8;
        case 4:
            return 16;
        case 8:
            return 256;
        default:
            return 0;
    }
}

}  // namespace

DibHeader ParseDibHeader(std::span<const std::uint8_t> bytes) {
    ByteReader in(bytes);
    DibHeader header;
    header.size = in.U32();
    header.width = in.I32();
    header.height = in.I32();
    header.planes = in.U16();
    header.bit_count = in.U16();
    header.compression = in.U32();
    header.image_size = in.U32();
    header.x_resolution = in.I32();
    header.y_resolution = in.I32();
    header.colors_used = in.U32();
    header.colors_important = in.U32();
    return header;
}

void StoreDibHeader(const DibHeader& header, std::span<std::uint8_t> bytes) {
    ByteWriter out(bytes);
    out.U32(header.size);
    out.I32(header.width);
    out.I32(header.height);
    out.U16(header.planes);
    out.U16(header.bit_count);
    out.U32(header.compression);
    out.U32(header.image_size);
    out.I32(header.x_resolution);
    out.I32(header.y_resolution);
    out.U32(header.colors_used);
    out.U32(header.colors_important);
}

std::uint32_t DibImageSize(const DibHeader& header) {
    if (header.width < 1 || header.height < 1) return 0;
    CheckedSize size(kMostBlockBytes);
    const std::uint64_t bytes = size.Mul(
        DibRowBytes(header.bit_count, static_cast<std::uint32_t>(header.width)), header.height);
    return size.Ok() ? static_cast<std::uint32_t>(bytes) : 0;
}

void CopyResolution(const DibBlock& from, const DibBlock& to) {
    const DibHeader source = from.Header();
    DibHeader header = to.Header();
    header.x_resolution = source.x_resolution;
    header.y_resolution = source.y_resolution;
    to.SetHeader(header);
}

DibBlock DibBlock::Create(int width, int height, int bits) {
    if (bits != 1 && bits != 4 && bits != 8 && bits != 24 && bits != 32) return {};
    DibHeader header;
    header.width = width;
    header.height = height;
    header.bit_count = static_cast<std::uint16_t>(bits);
    header.image_size = DibImageSize(header);
    header.colors_used = NewColorCount(bits);
    DibBlock block = ForHeader(header);
    if (!block) return {};
    // Whole groups of 16 only: the eight entries of a 1-bit block stay black.
    const auto table = block.ColorTable();
    constexpr std::size_t kGroupBytes = kStandardColors.size() * kBytesPerColor;
    for (std::size_t at = 0; at + kGroupBytes <= table.size(); at += kGroupBytes) {
        for (std::size_t i = 0; i < kStandardColors.size(); ++i) {
            const auto entry = table.subspan(at + i * kBytesPerColor, kBytesPerColor);
            entry[0] = kStandardColors[i].blue;
            entry[1] = kStandardColors[i].green;
            entry[2] = kStandardColors[i].red;
        }
    }
    return block;
}

DibBlock DibBlock::ForHeader(const DibHeader& header) {
    const std::uint32_t row_bytes = DibImageSize(header);
    if (row_bytes == 0) return {};
    CheckedSize size(kMostBlockBytes);
    // Room for 256 entries whatever the depth, so that a table can grow in place.
    std::uint64_t bytes =
        size.Mul(std::max(DibColorCount(header), kLeastTableRoom), kBytesPerColor);
    bytes = size.Add(bytes, std::max(row_bytes, header.image_size));
    bytes = size.Add(bytes, kDibHeaderSize + kMaskBytes + kSpareBytes);
    if (!size.Ok()) return {};
    GlobalMemory memory(static_cast<std::size_t>(bytes));
    if (!memory) return {};
    DibBlock block(std::move(memory));
    block.SetHeader(header);
    return block;
}

DibBlock DibBlock::Clone() const {
    GlobalMemory memory(memory_.size());
    if (memory) std::memcpy(memory.data(), memory_.data(), memory_.size());
    return DibBlock(std::move(memory));
}

std::span<std::uint8_t> DibBlock::ColorTable() const {
    // The host may write into the block: what it says there must not lead outside.
    const auto rest = Bytes().subspan(kDibHeaderSize);
    const std::uint64_t bytes = std::uint64_t{DibColorCount(Header())} * kBytesPerColor;
    return rest.first(static_cast<std::size_t>(std::min<std::uint64_t>(bytes, rest.size())));
}

std::span<std::uint8_t> DibBlock::PixelData() const {
    return Bytes().subspan(kDibHeaderSize + ColorTable().size());
}

std::uint8_t* DibBlock::Rows() const {
    if (Header().compression == kDibBitFields) return memory_.data() + kDibHeaderSize + kMaskBytes;
    return PixelData().data();
}

}  // namespace rastrel
