#include "formats/tiff/tiff_layout.h"

#include <algorithm>
#include <limits>

#include "core/checked_size.h"

namespace rastrel {

namespace {

constexpr const char* kModule = "LoadTIFF()";

/// Beyond this a strip or tile is no use to anybody: sums of such sizes stay far inside 64 bits.
constexpr std::uint64_t kMostChunkBytes = std::uint64_t{1} << 48;

/// Rows of a file whose orientation mirrors or turns them are still shown in their order: only
/// which end is up counts.
bool IsBottomUp(TiffInput& file) {
    const auto orientation = file.Field<std::uint16_t>(TIFFTAG_ORIENTATION);
    switch (orientation) {
        case ORIENTATION_TOPLEFT:
            return false;
        case ORIENTATION_BOTLEFT:
            return true;
        case ORIENTATION_BOTRIGHT:
        case ORIENTATION_RIGHTBOT:
        case ORIENTATION_LEFTBOT:
            file.Messages().Warning(kModule, "using bottom-left orientation");
            return true;
        default:
            file.Messages().Warning(kModule, "using top-left orientation");
            return false;
    }
}

bool ReadSize(const TiffInput& file, Size& size) {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    TIFFGetField(file.Tiff(), TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(file.Tiff(), TIFFTAG_IMAGELENGTH, &height);
    constexpr std::uint32_t kMostSide = std::numeric_limits<std::int32_t>::max();
    if (width < 1 || height < 1 || width > kMostSide || height > kMostSide) return false;
    size = {static_cast<int>(width), static_cast<int>(height)};
    return true;
}

bool ReadSampleForm(TiffInput& file, TiffLayout& layout) {
    layout.bits = file.Field<std::uint16_t>(TIFFTAG_BITSPERSAMPLE);
    layout.samples = file.Field<std::uint16_t>(TIFFTAG_SAMPLESPERPIXEL);
    const auto text = [](const char* before, int number, const char* after) {
        return before + std::to_string(number) + after;
    };
    const int bits = layout.bits;
    if (bits != 1 && bits != 2 && bits != 4 && bits != 8 && bits != 16) {
        file.Messages().Error(kModule, text("Sorry, can not handle ", bits, "-bit pictures"));
        return false;
    }
    const int samples = layout.samples;
    if (samples != 1 && samples != 3 && samples != 4) {
        file.Messages().Error(kModule, text("Sorry, can not handle ", samples, "-channel images"));
        return false;
    }
    return true;
}

bool ReadPhotometric(TiffInput& file, TiffLayout& layout) {
    if (TIFFGetField(file.Tiff(), TIFFTAG_PHOTOMETRIC, &layout.photometric) == 1) return true;
    const bool grey = layout.samples == 1;
    layout.photometric = grey ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
    file.Messages().Plain(std::string("No \"PhotometricInterpretation\" tag, assuming ") +
                          (grey ? "min-is-black" : "RGB") + "\n");
    return true;
}

bool ChoosePixels(TiffInput& file, TiffLayout& layout) {
    const bool one = layout.samples == 1;
    layout.pixels = one ? TiffPixels::kIndices : TiffPixels::kColors;
    switch (layout.photometric) {
        case PHOTOMETRIC_MINISWHITE:
        case PHOTOMETRIC_MINISBLACK:
            return true;
        case PHOTOMETRIC_PALETTE:
            if (one) return true;
            break;
        case PHOTOMETRIC_RGB:
            if (!one) return true;
            break;
        case PHOTOMETRIC_YCBCR:
            if (one) break;
            // The JPEG library gives colours by itself, when asked to.
            if (layout.compression == COMPRESSION_JPEG && !layout.separate) {
                TIFFSetField(file.Tiff(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
                return layout.bits == 8;
            }
            layout.pixels = TiffPixels::kColorsByCodec;
            // It would turn the picture upright as well.
            TIFFSetField(file.Tiff(), TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
            return layout.bits == 8 && layout.samples == 3;
        default:
            break;
    }
    file.Messages().Error(kModule, "Unknown photometric tag " + std::to_string(layout.photometric));
    return false;
}

bool ReadChunks(const TiffInput& file, TiffLayout& layout) {
    layout.tiled = TIFFIsTiled(file.Tiff()) != 0;
    if (layout.tiled) {
        TIFFGetField(file.Tiff(), TIFFTAG_TILEWIDTH, &layout.chunk_width);
        TIFFGetField(file.Tiff(), TIFFTAG_TILELENGTH, &layout.chunk_height);
    } else {
        layout.chunk_width = static_cast<std::uint32_t>(layout.size.width);
        layout.chunk_height = std::min(file.Field<std::uint32_t>(TIFFTAG_ROWSPERSTRIP),
                                       static_cast<std::uint32_t>(layout.size.height));
    }
    if (layout.chunk_width < 1 || layout.chunk_height < 1) return false;
    CheckedSize bytes(kMostChunkBytes);
    static_cast<void>(bytes.Mul(layout.RowBytes(), layout.chunk_height));
    if (!bytes.Ok()) return false;
    // Decoders fill rows of libtiff's measure, which is ours but for subsampled colours.
    const std::uint64_t row_bytes =
        layout.tiled ? TIFFTileRowSize64(file.Tiff()) : TIFFScanlineSize64(file.Tiff());
    return layout.pixels == TiffPixels::kColorsByCodec || row_bytes == layout.RowBytes();
}

/// How many bytes a compression can make of one byte of a file at the most, or nearly; 0 where
/// there is no bound.
std::uint64_t MostBytesPerByte(const TiffLayout& layout) {
    switch (layout.compression) {
        case COMPRESSION_NONE:
            return 1;
        case COMPRESSION_PACKBITS:
            return 64;  // a run of 128 in two bytes
        case COMPRESSION_LZW:
            return 4096;  // a string of nearly as many bytes in a code of 12 bits
        case COMPRESSION_ADOBE_DEFLATE:
        case COMPRESSION_DEFLATE:
            return 1032;  // runs of 258 in two bits
        case COMPRESSION_JPEG:
            return 4096;  // four bits for the emptiest blocks of three components
        case COMPRESSION_CCITTRLE:
        case COMPRESSION_CCITTRLEW:
        case COMPRESSION_CCITT_T4:
        case COMPRESSION_CCITT_T6:
            return 8 * layout.RowBytes();  // a row like the one above in one bit
        default:
            return 0;
    }
}

/// One strip or tile, against the file that is to hold it.
bool CanHoldChunk(TiffInput& file, const TiffLayout& layout, std::uint32_t chunk,
                  std::uint64_t decoded_bytes) {
    const std::uint64_t offset = TIFFGetStrileOffset(file.Tiff(), chunk);
    const std::uint64_t bytes = TIFFGetStrileByteCount(file.Tiff(), chunk);
    if (offset >= file.FileSize() || bytes == 0) return false;
    const std::uint64_t there = std::min(bytes, file.FileSize() - offset);
    const std::uint64_t most = MostBytesPerByte(layout);
    return most == 0 || there >= (decoded_bytes - 1) / most + 1;
}

const char* PhotometricName(std::uint16_t photometric) {
    switch (photometric) {
        case PHOTOMETRIC_MINISWHITE:
            return "min-is-white";
        case PHOTOMETRIC_MINISBLACK:
            return "min-is-black";
        case PHOTOMETRIC_PALETTE:
            return "Palette";
        case PHOTOMETRIC_YCBCR:
            return "YCbCr";
        default:
            return "RGB";
    }
}

}  // namespace

std::uint32_t TiffLayout::RowsInChunkAt(std::uint32_t row) const {
    if (tiled) return chunk_height;
    return std::min(chunk_height, static_cast<std::uint32_t>(size.height) - row);
}

std::uint64_t TiffLayout::ChunkBytesAt(std::uint32_t row) const {
    return RowBytes() * RowsInChunkAt(row);
}

std::optional<TiffLayout> ReadTiffLayout(TiffInput& file) {
    TiffLayout layout;
    layout.bottom_up = IsBottomUp(file);
    layout.compression = file.Field<std::uint16_t>(TIFFTAG_COMPRESSION);
    layout.separate = file.Field<std::uint16_t>(TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
    if (!ReadSize(file, layout.size) || !ReadSampleForm(file, layout) ||
        !ReadPhotometric(file, layout))
        return std::nullopt;
    const auto format = file.Field<std::uint16_t>(TIFFTAG_SAMPLEFORMAT);
    // Indices that 8 bits cannot hold are none for an 8-bit image.
    const bool wide_indices = layout.bits == 16 && layout.photometric == PHOTOMETRIC_PALETTE;
    const bool whole_numbers = format != SAMPLEFORMAT_IEEEFP && format != SAMPLEFORMAT_COMPLEXINT &&
                               format != SAMPLEFORMAT_COMPLEXIEEEFP;
    if (!ChoosePixels(file, layout)) return std::nullopt;
    if (!whole_numbers || wide_indices || !ReadChunks(file, layout)) {
        file.Messages().Error(kModule, "Can not handle format");
        return std::nullopt;
    }
    return layout;
}

bool CanHoldPart(TiffInput& file, const TiffLayout& layout, const Rect& file_part) {
    // What libtiff gives as colours may be stored with fewer of them.
    if (layout.pixels == TiffPixels::kColorsByCodec) return true;
    const auto first_row = static_cast<std::uint32_t>(file_part.y);
    const auto end_row = first_row + static_cast<std::uint32_t>(file_part.height);
    const auto last_column = static_cast<std::uint32_t>(file_part.x + file_part.width - 1);
    const std::uint32_t first_across = static_cast<std::uint32_t>(file_part.x) / layout.chunk_width;
    const std::uint32_t end_across = last_column / layout.chunk_width + 1;
    const std::uint32_t across = layout.ChunksAcross();
    const std::uint32_t down =
        (static_cast<std::uint32_t>(layout.size.height) - 1) / layout.chunk_height + 1;
    for (std::uint32_t plane = 0; plane < static_cast<std::uint32_t>(layout.Planes()); ++plane) {
        for (std::uint32_t y = first_row / layout.chunk_height;
             y <= (end_row - 1) / layout.chunk_height; ++y) {
            for (std::uint32_t x = first_across; x < end_across; ++x) {
                // An uncompressed strip need not be there beyond the rows that are asked for.
                const std::uint32_t top = y * layout.chunk_height;
                std::uint64_t bytes = layout.ChunkBytesAt(top);
                if (!layout.tiled && layout.compression == COMPRESSION_NONE)
                    bytes = std::min(bytes, layout.RowBytes() * (end_row - top));
                if (!CanHoldChunk(file, layout, (plane * down + y) * across + x, bytes))
                    return false;
            }
        }
    }
    return true;
}

std::string TiffInformation(const TiffLayout& layout, std::uint64_t file_size) {
    return "TIFF, " + std::to_string(layout.bits) + "-bit, formato " +
           PhotometricName(layout.photometric) + ".  (" + std::to_string(file_size) + " bytes)";
}

TiffSampleKind ReadTiffSampleKind(const std::string& name) {
    const auto file = TiffInput::Open(name);
    if (!file) return TiffSampleKind::kNoFile;
    return file->Field<std::uint16_t>(TIFFTAG_SAMPLESPERPIXEL) > 1 ? TiffSampleKind::kSeveral
                                                                   : TiffSampleKind::kOne;
}

bool ReadTiffInfo(const TiffInput& file, ImageInfo& info) {
    Size size;
    if (!ReadSize(file, size)) return false;
    const std::uint32_t bits = file.Field<std::uint16_t>(TIFFTAG_BITSPERSAMPLE);
    const std::uint32_t samples = file.Field<std::uint16_t>(TIFFTAG_SAMPLESPERPIXEL);
    // No image has as many bits as the tags can say.
    constexpr std::uint32_t kMostBits = std::numeric_limits<std::int32_t>::max();
    info = {size.width, size.height,
            static_cast<int>(std::min(bits * std::max(samples, 1U), kMostBits))};
    return true;
}

}  // namespace rastrel
