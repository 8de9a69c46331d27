#include "formats/tiff/tiff_loader.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "core/color.h"
#include "formats/tiff/tiff_chunks.h"
#include "formats/tiff/tiff_part_bitmap.h"

namespace rastrel {

namespace {

/// Entry i of 2^bits: from black to white, or back.
Palette GreyRamp(int bits, bool white_first) {
    const std::size_t count = std::size_t{1} << bits;
    std::vector<Color> colors(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t level = white_first ? count - 1 - i : i;
        const auto grey = static_cast<std::uint8_t>(level * 255 / (count - 1));
        colors[i] = {grey, grey, grey};
    }
    return Palette(colors);
}

std::optional<Palette> ReadColormap(TiffInput& file, int bits) {
    constexpr const char* kModule = "LoadTIFF()";
    std::uint16_t* red = nullptr;
    std::uint16_t* green = nullptr;
    std::uint16_t* blue = nullptr;
    if (TIFFGetField(file.Tiff(), TIFFTAG_COLORMAP, &red, &green, &blue) != 1) {
        file.Messages().Error(kModule, "Missing required \"Colormap\" tag");
        return std::nullopt;
    }
    const std::size_t count = std::size_t{1} << bits;
    const auto is_byte = [](std::uint16_t value) { return value < 256; };
    const bool bytes = std::all_of(red, red + count, is_byte) &&
                       std::all_of(green, green + count, is_byte) &&
                       std::all_of(blue, blue + count, is_byte);
    if (bytes) file.Messages().Warning(kModule, "Assuming 8-bit colormap");
    // Writers multiply bytes by 256 or by 257: the upper half is the byte in either case.
    const auto scaled = [bytes](std::uint16_t value) {
        return static_cast<std::uint8_t>(bytes ? value : value >> 8);
    };
    std::vector<Color> colors(std::min(count, Palette::kMostEntries));
    for (std::size_t i = 0; i < colors.size(); ++i)
        colors[i] = {scaled(red[i]), scaled(green[i]), scaled(blue[i])};
    return Palette(colors);
}

std::optional<Palette> MakePalette(TiffInput& file, const TiffLayout& layout) {
    if (layout.photometric == PHOTOMETRIC_PALETTE) return ReadColormap(file, layout.bits);
    return GreyRamp(std::min(layout.bits, 8), layout.photometric == PHOTOMETRIC_MINISWHITE);
}

bool LoadStrips(TiffChunks& chunks, const Rect& part, TiffPartBitmap& bitmap) {
    const auto end = static_cast<std::uint32_t>(part.y + part.height);
    for (auto row = static_cast<std::uint32_t>(part.y); row < end;) {
        const std::uint32_t at_once = bitmap.HasRoomForRows() ? chunks.RowsAtOnce(row, end) : 0;
        if (at_once > 0) {
            std::uint8_t* room = bitmap.RoomFor(row, at_once);
            if (!chunks.DecodeInto(row, at_once, room)) return false;
            bitmap.ArrangeRoom(room, at_once);
            row += at_once;
            continue;
        }
        const auto rows = chunks.RowsFrom(row, end);
        if (!rows) return false;
        bitmap.Put(*rows, 0, row);
        row += rows->count;
    }
    return true;
}

bool LoadTiles(TiffChunks& chunks, const TiffLayout& layout, const Rect& part,
               TiffPartBitmap& bitmap) {
    const auto first_of = [](int from, std::uint32_t side) {
        return std::uint64_t{static_cast<std::uint32_t>(from) / side} * side;
    };
    const auto end_row =
        static_cast<std::uint64_t>(part.y) + static_cast<std::uint64_t>(part.height);
    const auto end_column =
        static_cast<std::uint64_t>(part.x) + static_cast<std::uint64_t>(part.width);
    for (auto row = first_of(part.y, layout.chunk_height); row < end_row;
         row += layout.chunk_height) {
        for (auto column = first_of(part.x, layout.chunk_width); column < end_column;
             column += layout.chunk_width) {
            const auto rows =
                chunks.TileAt(static_cast<std::uint32_t>(column), static_cast<std::uint32_t>(row));
            if (!rows) return false;
            bitmap.Put(*rows, static_cast<std::int64_t>(column), static_cast<std::int64_t>(row));
        }
    }
    return true;
}

}  // namespace

std::optional<LoadedTiff> LoadTiff(TiffInput& file, const TiffLayout& layout, const Rect& part,
                                   int reduction) {
    constexpr const char* kModule = "LoadTIFF()";
    LoadedTiff loaded;
    const bool indices = layout.pixels == TiffPixels::kIndices;
    if (indices) {
        loaded.palette = MakePalette(file, layout);
        if (!loaded.palette) return std::nullopt;
    }
    const Rect file_part = TiffFilePart(layout, part);
    if (!CanHoldPart(file, layout, file_part)) {
        file.Messages().Error(kModule, "the file is too short for its image");
        return std::nullopt;
    }
    TiffPartBitmap bitmap(layout, part, reduction);
    if (!bitmap.HasBlock()) {
        file.Messages().Error(kModule, indices ? "loadPalette() - couldn't malloc 'pic8'"
                                               : "loadColor() - couldn't malloc 'pic24'");
        return std::nullopt;
    }
    TiffChunks chunks(file, layout);
    if (!(layout.tiled ? LoadTiles(chunks, layout, file_part, bitmap)
                       : LoadStrips(chunks, file_part, bitmap)))
        return std::nullopt;
    loaded.block = bitmap.Take();
    loaded.compression = layout.compression;
    loaded.information = TiffInformation(layout, file.FileSize());
    const char* comment = nullptr;
    if (TIFFGetField(file.Tiff(), TIFFTAG_IMAGEDESCRIPTION, &comment) == 1 && comment != nullptr)
        loaded.comment = comment;
    return loaded;
}

}  // namespace rastrel
