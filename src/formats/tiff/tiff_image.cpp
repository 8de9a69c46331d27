#include "formats/tiff/tiff_image.h"

#include <algorithm>
#include <utility>

#include "formats/tiff/geotiff.h"
#include "formats/tiff/north_up.h"
#include "formats/tiff/tiff_layout.h"
#include "formats/tiff/tiff_writer.h"

namespace rastrel {

namespace {

/// The georeference of a file that has to be turned; none for all others.
std::optional<QVgeotif> TurnedGeoreference(const TiffInput& file) {
    auto geotif = ReadGeoTags(file);
    if (geotif && QVgeotif_AffineNeeded(*geotif) == 0) geotif.reset();
    return geotif;
}

/// What cells without a pixel of the picture are: white, or the index that comes nearest to it.
std::uint8_t Background(const std::optional<Palette>& palette) {
    constexpr std::uint8_t kWhite = 255;
    if (!palette) return kWhite;
    const auto entries = palette->Entries();
    const auto white = std::find(entries.begin(), entries.end(), Color{kWhite, kWhite, kWhite});
    return white != entries.end() ? static_cast<std::uint8_t>(white - entries.begin()) : kWhite;
}

std::optional<LoadedTiff> LoadNorthUp(TiffInput& file, const TiffLayout& layout,
                                      const NorthUpGrid& grid, const Rect& part, int reduction) {
    // A part far off the picture still needs the palette, and with it a pixel to read.
    Rect source = grid.SourceOf(part);
    if (source.IsEmpty()) source = {0, 0, 1, 1};
    auto loaded = LoadTiff(file, layout, source);
    if (!loaded) return std::nullopt;
    const int bits = loaded->block.Header().bit_count;
    loaded->block =
        grid.Fill(part, reduction, {loaded->block, source, bits, Background(loaded->palette)});
    if (!loaded->block) return std::nullopt;
    return loaded;
}

std::optional<LoadedTiff> LoadPart(TiffInput& file, const Rect* part, int reduction) {
    const auto layout = ReadTiffLayout(file);
    if (!layout) return std::nullopt;
    const auto geotif = TurnedGeoreference(file);
    if (!geotif) {
        const Rect whole = {0, 0, layout->size.width, layout->size.height};
        const Rect inside = part != nullptr ? Clip(*part, layout->size) : whole;
        if (inside.IsEmpty()) return std::nullopt;
        return LoadTiff(file, *layout, inside, reduction);
    }
    const NorthUpGrid grid(*geotif);
    const auto size = grid.GridSize();
    if (!size) {
        file.Messages().Error("LoadTIFF()", "Can not handle format");
        return std::nullopt;
    }
    const Rect inside =
        part != nullptr ? Clip(*part, *size) : Rect{0, 0, size->width, size->height};
    if (inside.IsEmpty()) return std::nullopt;
    return LoadNorthUp(file, *layout, grid, inside, reduction);
}

const char* CompressionText(int compression) {
    switch (compression) {
        case COMPRESSION_NONE:
            return "Immagine non compressa.";
        case COMPRESSION_CCITTRLE:
            return "CCITT modified Huffman RLE.";
        case COMPRESSION_CCITTFAX3:
            return "CCITT Group 3 fax encoding.";
        case COMPRESSION_CCITTFAX4:
            return "CCITT Group 4 fax encoding.";
        case COMPRESSION_LZW:
            return "Compressione LZW.";
        case COMPRESSION_OJPEG:
            return "Compressione JPEG.";
        case COMPRESSION_PACKBITS:
            return "Compressione Packbits (RLE).";
        default:
            return "Compressione non nota.";
    }
}

}  // namespace

int TiffImage::Compression() const {
    return AuxiliaryValue() != 0 ? AuxiliaryValue() : COMPRESSION_NONE;
}

bool TiffImage::ReadInfo(const std::string& name, ImageInfo& info) {
    const std::string file_name = NameOr(name);
    const auto file = TiffInput::Open(file_name);
    ImageInfo read;
    if (!file || !ReadTiffInfo(*file, read)) return false;
    if (const auto geotif = TurnedGeoreference(*file)) {
        const auto size = NorthUpGrid(*geotif).GridSize();
        if (!size) return false;
        read.width = size->width;
        read.height = size->height;
    }
    info = read;
    SetFileName(file_name);
    return true;
}

bool TiffImage::Read(const std::string& name) {
    return Load(name, nullptr, 1);
}

bool TiffImage::ReadPart(const std::string& name, Rect part) {
    return Load(name, &part, 1);
}

bool TiffImage::ReadPartReduced(const std::string& name, Rect part, int reduction) {
    if (reduction < 1 || ReadTiffSampleKind(NameOr(name)) == TiffSampleKind::kNoFile) return false;
    return Load(name, &part, reduction);
}

bool TiffImage::Load(const std::string& name, const Rect* part, int reduction) {
    const std::string file_name = NameOr(name);
    const auto file = TiffInput::Open(file_name);
    if (!file) return false;
    auto loaded = LoadPart(*file, part, reduction);
    if (!loaded) return false;
    TakeLoaded(std::move(*loaded));
    SetFileName(file_name);
    return true;
}

void TiffImage::TakeLoaded(LoadedTiff loaded) {
    RemovePalette();
    ReplaceBlock(std::move(loaded.block), loaded.palette ? kColorTypePalettised : kColorTypeColor);
    if (loaded.palette) SetPalette(*loaded.palette);
    SetTransparentIndex(-1);
    SetAuxiliaryValue(loaded.compression);
    information_ = std::move(loaded.information);
    comment_ = std::move(loaded.comment);
}

bool TiffImage::Write(const std::string& name) {
    const std::string file_name = NameOr(name);
    if (!WriteTiff(file_name, *this, {Quality(), Compression()})) return false;
    SetFileName(file_name);
    return true;
}

bool TiffImage::Describe(FormatTexts& texts) const {
    texts = {"TIFF Format, " + std::to_string(Bits()) + " bit.\n" + information_,
             CompressionText(Compression())};
    return true;
}

}  // namespace rastrel
