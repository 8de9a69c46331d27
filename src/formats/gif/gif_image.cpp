#include "formats/gif/gif_image.h"

#include <algorithm>
#include <array>
#include <vector>

#include "core/byte_fields.h"
#include "core/pixel_reader.h"
#include "core/pixel_rows.h"
#include "formats/gif/gif_header.h"
#include "formats/gif/gif_rows.h"
#include "formats/gif/lzw_decoder.h"
#include "formats/gif/lzw_encoder.h"
#include "formats/plausibility.h"
#include "platform/message.h"

namespace rastrel {

namespace {

/// A code of at least three bits stands for 4096 pixels at most.
constexpr std::uint64_t kMostPixelsOfByte = 4096 * 8 / 3 + 1;

/// Sides are 16-bit fields.
constexpr int kMostSide = 65535;

constexpr std::size_t kHeaderBytes = 13;
constexpr std::size_t kTableBytes = 3 * Palette::kMostEntries;
constexpr std::size_t kDescriptorBytes = 10;

/// The data of an image, without the lengths of the blocks that they are cut into.
class ImageData {
  public:
    explicit ImageData(GifBytes& bytes) : bytes_(bytes) {}

    /// Some of the data; none at their end, which may come in the middle of a block.
    [[nodiscard]] std::span<const std::uint8_t> Next() {
        std::size_t count = 0;
        while (!ended_ && joined_.size() - count >= kMostBlock) {
            const std::size_t length = bytes_.Byte().value_or(0);
            const std::size_t read = bytes_.Read(std::span(joined_).subspan(count, length));
            ended_ = length == 0 || read < length;
            count += read;
        }
        return std::span(joined_).first(count);
    }

  private:
    static constexpr std::size_t kMostBlock = 255;

    GifBytes& bytes_;
    bool ended_ = false;
    std::array<std::uint8_t, 16384> joined_;
};

void DecodePixels(GifBytes& bytes, int code_size, GifRows& rows) {
    ImageData blocks(bytes);
    LzwDecoder decoder(code_size);
    std::span<const std::uint8_t> data;
    while (!rows.Complete() && !decoder.Ended()) {
        const auto pixels = decoder.Decode(data);
        rows.Append(pixels);
        if (!pixels.empty() || decoder.Ended()) continue;
        data = blocks.Next();
        if (data.empty()) return;
    }
}

/// Writes data cut into blocks, each behind its length.
class BlockWriter {
  public:
    explicit BlockWriter(ByteSink& sink) : sink_(sink) {}

    /// Where data are appended.
    [[nodiscard]] std::vector<std::uint8_t>& Data() { return data_; }
    /// Writes the full blocks, once they are worth a call.
    [[nodiscard]] bool WriteFull() { return data_.size() < kWorthWriting || WriteBlocks(false); }
    /// Writes all, and the empty block that ends the data.
    [[nodiscard]] bool Finish() {
        constexpr std::array<std::uint8_t, 1> kEmptyBlock = {};
        return WriteBlocks(true) && sink_.Write(kEmptyBlock);
    }

  private:
    static constexpr std::size_t kBlock = 254;
    static constexpr std::size_t kWorthWriting = 1 << 16;

    [[nodiscard]] bool WriteBlocks(bool all) {
        std::size_t at = 0;
        blocks_.clear();
        while (data_.size() - at >= kBlock || (all && at < data_.size())) {
            const std::size_t count = std::min(data_.size() - at, kBlock);
            const auto from = data_.begin() + static_cast<std::ptrdiff_t>(at);
            blocks_.push_back(static_cast<std::uint8_t>(count));
            blocks_.insert(blocks_.end(), from, from + static_cast<std::ptrdiff_t>(count));
            at += count;
        }
        data_.erase(data_.begin(), data_.begin() + static_cast<std::ptrdiff_t>(at));
        return sink_.Write(blocks_);
    }

    ByteSink& sink_;
    std::vector<std::uint8_t> data_;
    std::vector<std::uint8_t> blocks_;
};

/// Signature, screen, colours and image descriptor, up to the code size.
std::array<std::uint8_t, kHeaderBytes + kTableBytes + kDescriptorBytes + 1> FileHeader(
    const RasterImage& raster) {
    std::array<std::uint8_t, kHeaderBytes + kTableBytes + kDescriptorBytes + 1> bytes = {
        'G', 'I', 'F', '8', '7', 'a'};
    const auto put_size = [&](std::size_t at) {
        ByteWriter fields(std::span<std::uint8_t>(bytes).subspan(at));
        fields.U16(static_cast<std::uint16_t>(raster.Width()));
        fields.U16(static_cast<std::uint16_t>(raster.Height()));
    };
    put_size(6);
    bytes[10] = 0xe7;  // a global table of 2^(7 + 1) entries, of 8 bits a channel
    const std::size_t values = std::size_t{1} << raster.Bits();
    const std::size_t used = raster.GetPalette() != nullptr ? Palette::kMostEntries : values;
    for (std::size_t i = 0; i < used; ++i) {
        const Color color = ShownColor(raster, i);
        std::uint8_t* entry = &bytes[kHeaderBytes + 3 * i];
        entry[0] = color.red;
        entry[1] = color.green;
        entry[2] = color.blue;
    }
    constexpr std::size_t kDescriptor = kHeaderBytes + kTableBytes;
    bytes[kDescriptor] = ',';
    put_size(kDescriptor + 5);
    bytes[kDescriptor + kDescriptorBytes] = 8;  // bits of a pixel
    return bytes;
}

}  // namespace

bool GifImage::ReadInfoFrom(ByteSource& source, ImageInfo& info) const {
    GifBytes bytes(source);
    const auto header = ReadGifHeader(bytes);
    if (!header) return false;
    info = {header->size.width, header->size.height, 8};
    return true;
}

bool GifImage::ReadFrom(ByteSource& source) {
    GifBytes bytes(source);
    const auto header = ReadGifHeader(bytes);
    if (!header) return false;
    const auto code_size = bytes.Byte();
    if (!code_size || *code_size < LzwDecoder::kLeastCodeSize ||
        *code_size > LzwDecoder::kMostCodeSize)
        return false;
    const auto pixels = static_cast<std::uint64_t>(header->size.width) *
                        static_cast<std::uint64_t>(header->size.height);
    if (pixels > kMostMissingBytes && pixels / kMostPixelsOfByte > bytes.Left()) return false;
    DibBlock block = DibBlock::Create(header->size.width, header->size.height, 8);
    if (!block) return false;
    RasterImage decoded;
    decoded.ReplaceBlock(std::move(block), kColorTypePalettised);
    GifRows rows(decoded, header->interlaced);
    DecodePixels(bytes, *code_size, rows);

    RemovePalette();
    ReplaceBlock(decoded.DetachBlock(), kColorTypePalettised);
    SetPalette(header->palette);
    SetTransparentIndex(header->transparent_index);
    return true;
}

bool GifImage::WriteTo(ByteSink& sink) {
    if (!HasPlainRows() || Bits() > 8 || Width() > kMostSide || Height() > kMostSide) return false;
    if (!sink.Write(FileHeader(*this))) return false;
    LzwEncoder encoder;
    BlockWriter blocks(sink);
    const auto width = static_cast<std::size_t>(Width());
    std::vector<std::uint8_t> indices(Bits() < 8 ? width : 0);
    for (int y = 0; y < Height(); ++y) {
        std::span<const std::uint8_t> row = PictureRow(y);
        if (Bits() < 8) {
            UnpackIndices(row, Bits(), 0, indices);
            row = indices;
        }
        encoder.Encode(row.first(width), blocks.Data());
        if (!blocks.WriteFull()) return false;
    }
    encoder.Finish(blocks.Data());
    constexpr std::array<std::uint8_t, 1> kTrailer = {';'};
    return blocks.Finish() && sink.Write(kTrailer);
}

bool GifImage::Write(const std::string& name) {
    const std::string file_name = name.empty() ? FileName() : name;
    if (!HasBlock()) return false;
    if (Bits() > 8) {
        ShowMessage("GIF Images must be 8 bit or less");
        return false;
    }
    if (!HasPlainRows() || Width() > kMostSide || Height() > kMostSide) return false;
    const auto sink = FileSink::Create(file_name);
    if (!sink) {
        ShowMessage("Can't open GIF for writing");
        return false;
    }
    if (!WriteTo(*sink) || !sink->Commit()) {
        ShowMessage("Write Error in GIF file");
        return false;
    }
    SetFileName(file_name);
    return true;
}

bool GifImage::Describe(FormatTexts& texts) const {
    texts = {"GIF Format, " + std::to_string(Bits()) + " bit.", ""};
    return true;
}

}  // namespace rastrel
