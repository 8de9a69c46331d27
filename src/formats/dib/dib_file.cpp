#include "formats/dib/dib_file.h"

#include <algorithm>
#include <array>
#include <limits>

#include "core/byte_fields.h"
#include "formats/dib/lzo_pixels.h"

namespace rastrel {

namespace {

constexpr std::uint16_t kSignature = 0x4d42;  // "BM"
constexpr std::size_t kFileHeaderBytes = 14;
constexpr std::uint32_t kCoreHeaderSize = 12;
/// The shortest later header: OS/2 lets all fields after the bit count be left out, as zeros.
constexpr std::uint32_t kShortestHeaderSize = 16;
/// The longest header known, version 5 of Windows.
constexpr std::uint32_t kLongestHeaderSize = 124;

/// What an LZO1X stream can expand to, times its length: a run costs one byte for 255.
constexpr std::uint64_t kLzoExpansion = 256;
/// The same for run-length data: two bytes for 255 pixels.
constexpr std::uint64_t kRunLengthExpansion = 128;

std::span<const std::uint8_t> ReadUpTo(ByteSource& source, std::span<std::uint8_t> buffer) {
    return buffer.first(source.Read(buffer));
}

/// The header as a header of 40 bytes: the core form widened, shorter forms padded with zeros, of
/// longer ones the fields that they share. None for a size that no header has.
std::optional<DibHeader> ParseAnyHeader(std::array<std::uint8_t, kDibHeaderSize> bytes) {
    ByteReader in(bytes);
    const std::uint32_t size = in.U32();
    if (size == kCoreHeaderSize) {
        DibHeader header;
        header.width = in.U16();
        header.height = in.U16();
        header.planes = in.U16();
        header.bit_count = in.U16();
        return header;
    }
    if (size < kShortestHeaderSize || size > kLongestHeaderSize) return std::nullopt;
    if (size < bytes.size()) std::fill(bytes.begin() + size, bytes.end(), std::uint8_t{0});
    DibHeader header = ParseDibHeader(bytes);
    header.size = kDibHeaderSize;
    return header;
}

bool CompressionFitsDepth(const DibHeader& header) {
    switch (header.compression) {
        case kDibUncompressed:
            return true;
        case kDibRle8:
            return header.bit_count == 8;
        case kDibRle4:
            return header.bit_count == 4;
        case kDibBitFields:
            return header.bit_count > 8;
        default:
            return false;
    }
}

bool DepthIsKnown(int bits) {
    constexpr std::array<int, 6> kDepths = {1, 4, 8, 16, 24, 32};
    return std::find(kDepths.begin(), kDepths.end(), bits) != kDepths.end();
}

/// Checks a parsed header and fills in what it leaves open. A negative height stands for rows from
/// the top down, which run-length data cannot have.
bool CompleteHeader(DibFileHeader& file) {
    DibHeader& header = file.header;
    if (!DepthIsKnown(header.bit_count) || !CompressionFitsDepth(header)) return false;
    file.top_down = header.height < 0;
    if (file.top_down) {
        if (header.height == std::numeric_limits<std::int32_t>::min()) return false;
        if (IsRunLengthCoded(header)) return false;
        header.height = -header.height;
    }
    if (header.width < 1 || header.height < 1) return false;
    if (header.colors_used == 0) header.colors_used = DibColorCount(header);
    // Writers differ in what they state for plain rows; only coded data need to be told.
    if (!IsRunLengthCoded(header) || header.image_size == 0)
        header.image_size = DibImageSize(header);
    return true;
}

/// Whether the file is long enough for what its headers make one take memory for.
bool IsPlausible(const ByteSource& source, const DibFileHeader& file, PixelCoding coding) {
    const std::uint64_t promised = std::uint64_t{file.header.colors_used} * file.table_entry_bytes +
                                   std::max(file.header.image_size, DibImageSize(file.header));
    std::uint64_t held = source.BytesFrom(file.table_position);
    if (coding == PixelCoding::kLzo)
        held *= kLzoExpansion;
    else if (IsRunLengthCoded(file.header))
        held *= kRunLengthExpansion;
    return promised <= held + kMostMissingBytes;
}

void ReadColorTable(ByteSource& source, const DibFileHeader& file, const DibBlock& block) {
    const auto table = block.ColorTable();
    const std::size_t count = table.size() / 4;
    source.Seek(file.table_position);
    static_cast<void>(source.Read(table.first(count * file.table_entry_bytes)));
    if (file.table_entry_bytes == 4) return;
    // Triples widened in place, the last first, so that none is overwritten before it is moved.
    for (std::size_t i = count; i-- > 0;) {
        const std::array<std::uint8_t, 4> entry = {table[3 * i], table[3 * i + 1], table[3 * i + 2],
                                                   0};
        std::copy(entry.begin(), entry.end(), table.begin() + static_cast<std::ptrdiff_t>(4 * i));
    }
}

/// What stands before an LZO stream.
struct LzoLengths {
    std::uint32_t plain_bytes = 0;
    std::uint32_t stream_bytes = 0;
};

std::optional<LzoLengths> ReadLzoLengths(ByteSource& source) {
    std::array<std::uint8_t, 8> words = {};
    ByteReader in(ReadUpTo(source, words));
    const LzoLengths lengths = {in.U32(), in.U32()};
    return in.Ok() ? std::optional(lengths) : std::nullopt;
}

void ReadLzoPixels(ByteSource& source, std::span<std::uint8_t> pixels) {
    const auto lengths = ReadLzoLengths(source);
    if (!lengths) return;
    const std::uint64_t stream_bytes =
        std::min<std::uint64_t>(lengths->stream_bytes, source.BytesFrom(source.Position()));
    const GlobalMemory stream(static_cast<std::size_t>(stream_bytes));
    if (!stream) return;
    const std::size_t got = source.Read({stream.data(), stream.size()});
    DecompressLzo({stream.data(), got},
                  pixels.first(std::min<std::size_t>(lengths->plain_bytes, pixels.size())));
}

/// Turns rows stored from the top down over.
void FlipRows(const DibHeader& header, std::span<std::uint8_t> pixels) {
    const auto row_bytes = static_cast<std::size_t>(
        DibRowBytes(header.bit_count, static_cast<std::uint32_t>(header.width)));
    std::size_t low = 0;
    std::size_t high = static_cast<std::size_t>(header.height) - 1;
    for (; low < high; ++low, --high) {
        const auto row = pixels.subspan(low * row_bytes, row_bytes);
        std::swap_ranges(row.begin(), row.end(), pixels.subspan(high * row_bytes).begin());
    }
}

std::array<std::uint8_t, kFileHeaderBytes> MakeFileHeader(std::uint32_t table_bytes,
                                                          std::uint32_t image_size) {
    std::array<std::uint8_t, kFileHeaderBytes> bytes = {};
    ByteWriter out(bytes);
    const auto pixel_offset =
        static_cast<std::uint32_t>(kFileHeaderBytes + kDibHeaderSize + table_bytes);
    out.U16(kSignature);
    out.U32(pixel_offset + image_size);
    out.U32(0);  // two reserved words
    out.U32(pixel_offset);
    return bytes;
}

bool WriteLzoPixels(ByteSink& sink, std::span<const std::uint8_t> pixels) {
    // A compressor that fails is not told: the file then says that no compressed bytes follow.
    const LzoPixels compressed = CompressLzo(pixels);
    std::array<std::uint8_t, 8> words = {};
    ByteWriter out(words);
    out.U32(static_cast<std::uint32_t>(pixels.size()));
    out.U32(static_cast<std::uint32_t>(compressed.size));
    return sink.Write(words) && sink.Write(compressed.Bytes());
}

}  // namespace

bool ReadDibInfo(ByteSource& source, ImageInfo& info) {
    const auto file = ReadDibHeader(source);
    if (!file) return false;
    info = {file->header.width, file->header.height, file->header.bit_count};
    return true;
}

std::optional<DibFileHeader> ReadDibHeader(ByteSource& source) {
    const std::uint64_t start = source.Position();
    std::array<std::uint8_t, kFileHeaderBytes> file_header = {};
    ByteReader in(ReadUpTo(source, file_header));
    const bool has_file_header = in.U16() == kSignature;
    in.Skip(8);  // the file's size, never relied on, and two reserved words
    std::uint32_t pixel_offset = in.U32();
    if (!in.Ok()) return std::nullopt;
    if (!has_file_header) {
        // A bare bitmap, as programs exchange them in memory.
        pixel_offset = 0;
        source.Seek(start);
    }
    const std::uint64_t header_start = source.Position();
    std::array<std::uint8_t, kDibHeaderSize> header_bytes = {};
    if (source.Read(header_bytes) < header_bytes.size()) return std::nullopt;
    const auto header = ParseAnyHeader(header_bytes);
    if (!header) return std::nullopt;
    const std::uint32_t stated_size = ByteReader(header_bytes).U32();

    DibFileHeader file;
    file.header = *header;
    if (!CompleteHeader(file)) return std::nullopt;
    if (stated_size == kCoreHeaderSize) file.table_entry_bytes = 3;
    file.table_position = header_start + stated_size;
    file.pixel_position =
        pixel_offset != 0
            ? start + pixel_offset
            : file.table_position + std::uint64_t{file.header.colors_used} * file.table_entry_bytes;
    return file;
}

bool HasLzoPixels(ByteSource& source) {
    source.Seek(0);
    std::array<std::uint8_t, 2> signature = {};
    ByteReader in(ReadUpTo(source, signature));
    if (in.U16() != kSignature) return false;
    source.Seek(0);
    const auto file = ReadDibHeader(source);
    if (!file) return false;
    source.Seek(file->pixel_position);
    const auto lengths = ReadLzoLengths(source);
    return lengths && lengths->plain_bytes == file->header.image_size &&
           lengths->stream_bytes <= source.BytesFrom(source.Position());
}

DibBlock ReadDibFile(ByteSource& source, PixelCoding coding) {
    const auto file = ReadDibHeader(source);
    if (!file || !IsPlausible(source, *file, coding)) return {};
    DibBlock block = DibBlock::ForHeader(file->header);
    if (!block) return {};
    ReadColorTable(source, *file, block);
    source.Seek(file->pixel_position);
    const auto pixels = block.PixelData().first(file->header.image_size);
    if (coding == PixelCoding::kLzo)
        ReadLzoPixels(source, pixels);
    else
        static_cast<void>(source.Read(pixels));  // what a short file lacks stays zero
    if (file->top_down) FlipRows(file->header, pixels);
    return block;
}

std::uint64_t MostLzoFileBytes(const DibBlock& block) {
    constexpr std::uint64_t kLengthBytes = 8;
    return kFileHeaderBytes + kLengthBytes + MostLzoBytes(block.Bytes().size());
}

bool WriteDibFile(ByteSink& sink, const DibBlock& block, PixelCoding coding) {
    if (!block) return false;
    DibHeader header = block.Header();
    if (header.size != kDibHeaderSize) return false;
    // The table's size has 16 bits, here and in what it is added to: files bound it that way.
    const auto table_bytes = static_cast<std::uint16_t>(DibColorCount(header) * 4);
    if (!IsRunLengthCoded(header)) {
        header.image_size = DibImageSize(header);
        block.SetHeader(header);
    }
    const std::uint64_t payload_bytes =
        std::uint64_t{kDibHeaderSize} + table_bytes + header.image_size;
    if (payload_bytes > block.Bytes().size() || header.image_size > block.PixelData().size())
        return false;
    if (!sink.Write(MakeFileHeader(table_bytes, header.image_size))) return false;
    if (coding == PixelCoding::kPlain)
        return sink.Write(block.Bytes().first(static_cast<std::size_t>(payload_bytes)));
    return sink.Write(block.Bytes().first(kDibHeaderSize + table_bytes)) &&
           WriteLzoPixels(sink, block.PixelData().first(header.image_size));
}

}  // namespace rastrel
