#include "formats/jp2/jp2_layout.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>

#include "core/checked_size.h"
#include "core/dib_block.h"
#include "formats/plausibility.h"

namespace rastrel {

namespace {

/// Codes of boxes: their four letters.
constexpr std::uint32_t kSignatureBox = 0x6a502020;   // "jP  "
constexpr std::uint32_t kHeaderBox = 0x6a703268;      // "jp2h"
constexpr std::uint32_t kColorBox = 0x636f6c72;       // "colr"
constexpr std::uint32_t kPaletteBox = 0x70636c72;     // "pclr"
constexpr std::uint32_t kMappingBox = 0x636d6170;     // "cmap"
constexpr std::uint32_t kCodestreamBox = 0x6a703263;  // "jp2c"

/// Colour spaces by number.
constexpr std::uint32_t kSrgb = 16;
constexpr std::uint32_t kGrey = 17;
constexpr std::uint32_t kSycc = 18;

/// Markers of the codestream.
constexpr std::uint32_t kStartOfCodestream = 0xff4f;
constexpr std::uint32_t kImageSize = 0xff51;
constexpr std::uint32_t kCodingStyle = 0xff52;
constexpr std::uint32_t kComponentStyle = 0xff53;
constexpr std::uint32_t kStartOfTile = 0xff90;
constexpr std::uint32_t kStartOfData = 0xff93;
constexpr std::uint32_t kEndOfCodestream = 0xffd9;

/// Of one component each, in bytes: the file's, and what the decoder keeps for every tile.
constexpr std::uint64_t kMostComponents = 16384;

/// Plain areas cost next to nothing: what files are granted for every byte they have.
constexpr std::uint64_t kPixelBytesPerByte = 65536;
/// A packet takes a byte at least. Slack for files of few bytes and many empty layers.
constexpr std::uint64_t kMostMissingPackets = std::uint64_t{1} << 18;
/// A tile has a header of 14 bytes, and all of a component's parameters in the decoder's memory.
constexpr std::uint64_t kTileHeaderBytes = 14;
constexpr std::uint64_t kMostMissingParameters = 4096;

/// Big-endian fields, one after the other; zeros past the end, which is remembered.
class FieldSource {
  public:
    explicit FieldSource(ByteSource& source) : source_(source) {}
    [[nodiscard]] std::uint32_t U8() { return static_cast<std::uint32_t>(Value(1)); }
    [[nodiscard]] std::uint32_t U16() { return static_cast<std::uint32_t>(Value(2)); }
    [[nodiscard]] std::uint32_t U32() { return static_cast<std::uint32_t>(Value(4)); }
    [[nodiscard]] std::uint64_t U64() { return Value(8); }
    [[nodiscard]] std::uint64_t Position() const { return source_.Position(); }
    void Seek(std::uint64_t position) { source_.Seek(position); }
    [[nodiscard]] std::uint64_t Size() const { return source_.Size(); }
    [[nodiscard]] bool Ok() const { return ok_; }

  private:
    [[nodiscard]] std::uint64_t Value(std::size_t count) {
        std::array<std::uint8_t, 8> bytes = {};
        const auto wanted = std::span(bytes).first(count);
        if (source_.Read(wanted) < count) ok_ = false;
        std::uint64_t value = 0;
        for (const std::uint8_t byte : wanted)
            value = value << 8 | byte;
        return ok_ ? value : 0;
    }

    ByteSource& source_;
    bool ok_ = true;
};

struct Box {
    std::uint32_t type = 0;
    std::uint64_t content = 0;  ///< where it begins
    std::uint64_t end = 0;
};

/// The box at a place, which must end by limit.
std::optional<Box> ReadBox(FieldSource& in, std::uint64_t at, std::uint64_t limit) {
    if (at >= limit) return std::nullopt;
    in.Seek(at);
    std::uint64_t length = in.U32();
    Box box;
    box.type = in.U32();
    if (length == 1) length = in.U64();
    box.content = in.Position();
    if (!in.Ok()) return std::nullopt;
    if (length == 0) length = limit - at;  // to the end
    if (length < box.content - at || length > limit - at) return std::nullopt;
    box.end = at + length;
    return box;
}

/// What the boxes say of colours.
struct Colors {
    std::uint32_t space = 0;  ///< by number; 0 where the file does not say one
    bool has_space = false;
    bool has_palette = false;
    std::uint64_t palette_channels = 0;
};

void ReadColors(FieldSource& in, const Box& header, Colors& colors) {
    for (auto box = ReadBox(in, header.content, header.end); box;
         box = ReadBox(in, box->end, header.end)) {
        if (box->type == kPaletteBox) colors.has_palette = true;
        if (box->type == kMappingBox) colors.palette_channels = (box->end - box->content) / 4;
        // Further colour boxes are other ways to say the same.
        if (box->type != kColorBox || colors.has_space) continue;
        colors.has_space = true;
        in.Seek(box->content);
        constexpr std::uint32_t kByNumber = 1;
        const std::uint32_t method = in.U8();
        static_cast<void>(in.U16());  // precedence and approximation
        if (method == kByNumber) colors.space = in.U32();
    }
}

std::uint64_t CeilDiv(std::uint64_t a, std::uint64_t b) {
    return (a + b - 1) / b;
}

/// The image's and the tiles' places on the reference grid, and the first component's steps on it.
struct Grid {
    std::uint64_t x0, y0, x1, y1;
    std::uint64_t tile_width, tile_height;
    std::uint64_t components;
    std::uint64_t step_x, step_y;
    std::uint64_t samples;  ///< of all components

    [[nodiscard]] std::uint64_t Tiles(std::uint64_t tile_x0, std::uint64_t tile_y0) const {
        return CeilDiv(x1 - tile_x0, tile_width) * CeilDiv(y1 - tile_y0, tile_height);
    }
    [[nodiscard]] std::uint64_t Width(std::uint64_t step) const {
        return CeilDiv(x1, step) - CeilDiv(x0, step);
    }
    [[nodiscard]] std::uint64_t Height(std::uint64_t step) const {
        return CeilDiv(y1, step) - CeilDiv(y0, step);
    }
};

/// The size marker's segment, behind its length.
std::optional<Grid> ReadGrid(FieldSource& in) {
    Grid grid = {};
    static_cast<void>(in.U16());  // capabilities
    grid.x1 = in.U32();
    grid.y1 = in.U32();
    grid.x0 = in.U32();
    grid.y0 = in.U32();
    grid.tile_width = in.U32();
    grid.tile_height = in.U32();
    const std::uint64_t tile_x0 = in.U32();
    const std::uint64_t tile_y0 = in.U32();
    grid.components = in.U16();
    constexpr std::uint64_t kMostCoordinate = std::numeric_limits<std::int32_t>::max();
    if (!in.Ok() || grid.x0 >= grid.x1 || grid.y0 >= grid.y1 || grid.x1 > kMostCoordinate ||
        grid.y1 > kMostCoordinate || grid.tile_width == 0 || grid.tile_height == 0 ||
        tile_x0 > grid.x0 || tile_y0 > grid.y0 || grid.components == 0 ||
        grid.components > kMostComponents)
        return std::nullopt;
    CheckedSize samples;
    for (std::uint64_t i = 0; i < grid.components; ++i) {
        static_cast<void>(in.U8());  // precision
        const std::uint64_t step_x = in.U8();
        const std::uint64_t step_y = in.U8();
        if (!in.Ok() || step_x == 0 || step_y == 0) return std::nullopt;
        if (i == 0) {
            grid.step_x = step_x;
            grid.step_y = step_y;
        }
        grid.samples =
            samples.Add(grid.samples, samples.Mul(grid.Width(step_x), grid.Height(step_y)));
    }
    const std::uint64_t tiles = grid.Tiles(tile_x0, tile_y0);
    if (!samples.Ok() || grid.samples > kMostBlockBytes ||
        grid.samples > in.Size() * kPixelBytesPerByte + kMostMissingBytes ||
        tiles > in.Size() / kTileHeaderBytes ||
        tiles * grid.components > in.Size() + kMostMissingParameters)
        return std::nullopt;
    return grid;
}

/// The least that is said anywhere of precincts, the areas of which every resolution is made, as
/// powers of two, and the most layers.
struct Coding {
    std::uint32_t precinct_width = 15;
    std::uint32_t precinct_height = 15;
    std::uint64_t layers = 1;
};

/// A coding style segment, behind its length: of all components or, where it begins with their
/// number, of one.
void ReadCoding(FieldSource& in, bool of_component, bool wide_numbers, Coding& coding) {
    if (of_component) static_cast<void>(wide_numbers ? in.U16() : in.U8());
    constexpr std::uint32_t kHasPrecincts = 1;
    const std::uint32_t style = in.U8();
    if (!of_component) {
        static_cast<void>(in.U8());  // order of progression
        coding.layers = std::max<std::uint64_t>(coding.layers, in.U16());
        static_cast<void>(in.U8());  // transform over components
    }
    const std::uint32_t levels = in.U8();
    static_cast<void>(in.U32());  // code-blocks and the transform
    if ((style & kHasPrecincts) == 0) return;
    for (std::uint32_t i = 0; i <= std::min(levels, 32u); ++i) {
        const std::uint32_t exponents = in.U8();
        coding.precinct_width = std::min(coding.precinct_width, exponents & 15);
        coding.precinct_height = std::min(coding.precinct_height, exponents >> 4);
    }
}

/// Walks over the segments of a header up to where it ends; the marker that ends it is returned, 0
/// for one that is none.
std::uint32_t WalkHeader(FieldSource& in, bool wide_numbers, Coding& coding) {
    for (;;) {
        const std::uint32_t marker = in.U16();
        if (!in.Ok() || marker < 0xff00) return 0;
        if (marker == kStartOfTile || marker == kStartOfData || marker == kEndOfCodestream)
            return marker;
        const std::uint64_t start = in.Position();
        const std::uint32_t length = in.U16();
        if (marker == kCodingStyle || marker == kComponentStyle)
            ReadCoding(in, marker == kComponentStyle, wide_numbers, coding);
        if (length < 2 || !in.Ok()) return 0;
        in.Seek(start + length);
    }
}

/// The coding of the main header and of all tiles' headers, from behind the size marker on.
Coding ReadAllCoding(FieldSource& in, const Grid& grid) {
    constexpr std::uint64_t kLeastWideNumber = 257;
    const bool wide_numbers = grid.components >= kLeastWideNumber;
    Coding coding;
    std::uint32_t marker = WalkHeader(in, wide_numbers, coding);
    while (marker == kStartOfTile) {
        const std::uint64_t start = in.Position() - 2;
        static_cast<void>(in.U32());  // length of the segment, number of the tile
        const std::uint64_t length = in.U32();
        static_cast<void>(in.U16());  // number of the part, and of how many
        WalkHeader(in, wide_numbers, coding);
        constexpr std::uint64_t kLeastLength = 12;
        if (!in.Ok() || length < kLeastLength) break;  // the last part, up to the end
        in.Seek(start + length);
        marker = in.U16();
    }
    return coding;
}

/// Whether the file has bytes for all the packets that its coding makes.
bool HasRoomForPackets(const Grid& grid, const Coding& coding, std::uint64_t file_bytes) {
    const auto across = [](std::uint64_t from, std::uint64_t to, std::uint64_t tile,
                           std::uint32_t exponent) {
        // Every tile begins precincts of its own.
        return ((to - from) >> exponent) + 2 * CeilDiv(to - from, tile) + 1;
    };
    // Each further resolution has a quarter of the samples of the one before.
    const std::uint64_t precincts =
        2 * across(grid.x0, grid.x1, grid.tile_width, coding.precinct_width) *
        across(grid.y0, grid.y1, grid.tile_height, coding.precinct_height);
    CheckedSize packets;
    const std::uint64_t all = packets.Mul(packets.Mul(precincts, grid.components), coding.layers);
    // A precinct that is there in the count alone, at the edges, is granted by the factor.
    return packets.Ok() && all <= 64 * file_bytes + kMostMissingPackets;
}

/// Finds the codestream of a file in boxes; colours are gathered on the way.
std::optional<std::uint64_t> FindCodestream(FieldSource& in, Colors& colors) {
    for (auto box = ReadBox(in, 0, in.Size()); box; box = ReadBox(in, box->end, in.Size())) {
        if (box->type == kHeaderBox) ReadColors(in, *box, colors);
        if (box->type == kCodestreamBox) return box->content;
    }
    return std::nullopt;
}

bool IsInBoxes(FieldSource& in) {
    constexpr std::uint32_t kSignatureLength = 12;
    constexpr std::uint32_t kSignatureContent = 0x0d0a870a;
    in.Seek(0);
    const std::uint32_t length = in.U32();
    const std::uint32_t type = in.U32();
    const std::uint32_t content = in.U32();
    return length == kSignatureLength && type == kSignatureBox && content == kSignatureContent;
}

}  // namespace

std::optional<Jp2Layout> ReadJp2Layout(ByteSource& source) {
    FieldSource in(source);
    Jp2Layout layout;
    Colors colors;
    std::uint64_t codestream = 0;
    layout.in_boxes = IsInBoxes(in);
    if (layout.in_boxes) {
        const auto found = FindCodestream(in, colors);
        if (!found) return std::nullopt;
        codestream = *found;
    }
    // Others, such as CMYK, would come out in wrong colours.
    if (colors.space != 0 && colors.space != kSrgb && colors.space != kGrey &&
        colors.space != kSycc)
        return std::nullopt;
    layout.differences = colors.space == kSycc;
    in.Seek(codestream);
    const std::uint32_t start = in.U16();
    const std::uint32_t size_marker = in.U16();
    const std::uint64_t segment = in.Position();
    const std::uint32_t segment_length = in.U16();
    if (!in.Ok() || start != kStartOfCodestream || size_marker != kImageSize) return std::nullopt;
    const auto grid = ReadGrid(in);
    if (!grid) return std::nullopt;
    in.Seek(segment + segment_length);
    const Coding coding = ReadAllCoding(in, *grid);
    if (!HasRoomForPackets(*grid, coding, in.Size())) return std::nullopt;
    layout.size = {static_cast<int>(grid->Width(grid->step_x)),
                   static_cast<int>(grid->Height(grid->step_y))};
    layout.channels =
        static_cast<int>(colors.has_palette ? colors.palette_channels : grid->components);
    if (layout.size.width < 1 || layout.size.height < 1 || layout.channels < 1) return std::nullopt;
    return layout;
}

}  // namespace rastrel
