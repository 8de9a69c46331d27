#include "formats/gif/gif_header.h"

#include <cstring>

#include "core/byte_fields.h"

namespace rastrel {

namespace {

constexpr std::uint8_t kExtension = 0x21;
constexpr std::uint8_t kImage = 0x2c;
constexpr std::uint8_t kGraphicControl = 0xf9;

/// Bits of the packed bytes of the screen's and the image's descriptor.
constexpr unsigned kHasTable = 0x80;
constexpr unsigned kInterlaced = 0x40;
constexpr unsigned kTableSize = 0x07;

std::size_t TableEntries(unsigned packed) {
    return std::size_t{2} << (packed & kTableSize);
}

/// The colours of the image: those of the global table, until a local one takes its place.
class ColorTable {
  public:
    /// A descriptor gives a size even where no table follows it; the colours are black then.
    [[nodiscard]] bool ReadGlobal(GifBytes& bytes, unsigned packed) {
        count_ = TableEntries(packed);
        return (packed & kHasTable) == 0 || Fill(bytes);
    }
    [[nodiscard]] bool ReadLocal(GifBytes& bytes, unsigned packed) {
        if ((packed & kHasTable) == 0) return true;
        count_ = TableEntries(packed);
        return Fill(bytes);
    }
    [[nodiscard]] Palette ToPalette() const { return Palette(std::span(colors_).first(count_)); }

  private:
    [[nodiscard]] bool Fill(GifBytes& bytes) {
        std::array<std::uint8_t, Palette::kMostEntries * 3> table;
        if (!bytes.ReadAll(std::span(table).first(count_ * 3))) return false;
        for (std::size_t i = 0; i < count_; ++i)
            colors_[i] = {table[3 * i], table[3 * i + 1], table[3 * i + 2]};
        return true;
    }

    std::array<Color, Palette::kMostEntries> colors_ = {};
    std::size_t count_ = 0;
};

/// Blocks of data, each behind its length, up to one of length 0.
bool SkipSubBlocks(GifBytes& bytes) {
    for (;;) {
        const auto length = bytes.Byte();
        if (!length || (*length > 0 && !bytes.Skip(*length))) return false;
        if (*length == 0) return true;
    }
}

/// The transparent index, if the block has one, and what follows the block.
bool ReadGraphicControl(GifBytes& bytes, int& transparent_index) {
    std::array<std::uint8_t, 4> fields = {};
    const auto length = bytes.Byte();
    if (!length || *length > fields.size()) return false;
    if (*length == 0) return true;
    if (!bytes.ReadAll(std::span(fields).first(*length))) return false;
    if (*length == fields.size() && (fields[0] & 1) != 0) transparent_index = fields[3];
    return SkipSubBlocks(bytes);
}

bool ReadExtension(GifBytes& bytes, int& transparent_index) {
    const auto label = bytes.Byte();
    if (!label) return false;
    return *label == kGraphicControl ? ReadGraphicControl(bytes, transparent_index)
                                     : SkipSubBlocks(bytes);
}

/// The descriptor behind its separator, and a local table.
bool ReadImageDescriptor(GifBytes& bytes, GifHeader& header, ColorTable& colors) {
    std::array<std::uint8_t, 9> descriptor;
    if (!bytes.ReadAll(descriptor)) return false;
    ByteReader fields(descriptor);
    fields.Skip(4);  // its place on the screen
    header.size.width = fields.U16();
    header.size.height = fields.U16();
    const unsigned packed = descriptor[8];
    header.interlaced = (packed & kInterlaced) != 0;
    if (!fields.Ok() || !colors.ReadLocal(bytes, packed)) return false;
    header.palette = colors.ToPalette();
    return true;
}

}  // namespace

std::optional<GifHeader> ReadGifHeader(GifBytes& bytes) {
    std::array<std::uint8_t, 13> screen;
    if (!bytes.ReadAll(screen) || std::memcmp(screen.data(), "GIF8", 4) != 0) return std::nullopt;
    ColorTable colors;
    if (!colors.ReadGlobal(bytes, screen[10])) return std::nullopt;
    GifHeader header;
    for (;;) {
        const auto introducer = bytes.Byte();
        if (introducer == kImage) break;
        if (introducer != kExtension || !ReadExtension(bytes, header.transparent_index))
            return std::nullopt;
    }
    if (!ReadImageDescriptor(bytes, header, colors)) return std::nullopt;
    return header;
}

}  // namespace rastrel
