#include "formats/tiff/tiff_writer.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>

#include "core/pixel_rows.h"

namespace rastrel {

namespace {

/// libtiff gathers compressed bytes in a buffer as large as the strip, which here is the image.
/// With this one it writes the same file as fast as one of small strips.
constexpr tmsize_t kOutputBufferBytes = 256 << 10;

/// libjpeg's own limit.
constexpr int kMostJpegSide = 65500;

/// The palette that indices go through: the raster's, or what they show as without one.
std::array<Color, Palette::kMostEntries> PaletteColors(const RasterImage& raster) {
    std::array<Color, Palette::kMostEntries> colors = {};
    if (const Palette* palette = raster.GetPalette()) {
        std::copy(palette->Entries().begin(), palette->Entries().end(), colors.begin());
        return colors;
    }
    const std::size_t count = std::size_t{1} << std::min(raster.Bits(), 8);
    for (std::size_t i = 0; i < count; ++i) {
        const auto grey = static_cast<std::uint8_t>(i * 255 / (count - 1));
        colors[i] = {grey, grey, grey};
    }
    return colors;
}

bool IsGreyRamp(const Palette* palette) {
    if (palette == nullptr || palette->Entries().size() != Palette::kMostEntries) return false;
    const auto grey = Palette::Grey();
    return std::equal(palette->Entries().begin(), palette->Entries().end(), grey.Entries().begin());
}

/// Of a palette entry, coarsely: the weights are thirty-seconds.
int Brightness(const Color& color) {
    return (11 * color.red + 16 * color.green + 5 * color.blue) & ~31;
}

bool SetColormap(TIFF* tiff, const RasterImage& raster) {
    std::array<std::array<std::uint16_t, 256>, 3> map = {};
    const auto colors = PaletteColors(raster);
    const auto scaled = [](std::uint8_t level) {
        return static_cast<std::uint16_t>(level * 65535 / 255);
    };
    for (std::size_t i = 0; i < colors.size(); ++i) {
        map[0][i] = scaled(colors[i].red);
        map[1][i] = scaled(colors[i].green);
        map[2][i] = scaled(colors[i].blue);
    }
    return TIFFSetField(tiff, TIFFTAG_COLORMAP, map[0].data(), map[1].data(), map[2].data()) == 1;
}

std::uint16_t PhotometricOf(TiffForm form, const RasterImage& raster) {
    switch (form) {
        case TiffForm::kFullColor:
            return PHOTOMETRIC_RGB;
        case TiffForm::kGrey:
            return PHOTOMETRIC_MINISBLACK;
        case TiffForm::kBlackAndWhite: {
            const auto colors = PaletteColors(raster);
            return Brightness(colors[0]) > Brightness(colors[1]) ? PHOTOMETRIC_MINISWHITE
                                                                 : PHOTOMETRIC_MINISBLACK;
        }
        default:
            return PHOTOMETRIC_PALETTE;
    }
}

bool FailFields(TiffOutput& file) {
    file.Messages().Error("", "Failed to set TIFF field information.\n");
    return false;
}

}  // namespace

std::optional<TiffForm> TiffFormOf(const RasterImage& raster, bool grey_test) {
    if (!raster.HasPlainRows()) return std::nullopt;
    switch (raster.Bits()) {
        case 1:
            return TiffForm::kBlackAndWhite;
        case 4:
            return TiffForm::kPalette4;
        case 8:
            return grey_test && IsGreyRamp(raster.GetPalette()) ? TiffForm::kGrey
                                                                : TiffForm::kPalette;
        case 24:
            return TiffForm::kFullColor;
        default:
            return std::nullopt;
    }
}

int BitsOf(TiffForm form) {
    switch (form) {
        case TiffForm::kFullColor:
            return 24;
        case TiffForm::kPalette4:
            return 4;
        case TiffForm::kBlackAndWhite:
            return 1;
        default:
            return 8;
    }
}

bool CanCompressTiff(int compression, TiffForm form, Size size) {
    switch (compression) {
        case COMPRESSION_NONE:
        case COMPRESSION_LZW:
        case COMPRESSION_PACKBITS:
        case COMPRESSION_ADOBE_DEFLATE:
        case COMPRESSION_DEFLATE:
        case COMPRESSION_LZMA:
        case COMPRESSION_ZSTD:
            break;
        case COMPRESSION_CCITTRLE:
        case COMPRESSION_CCITTRLEW:
        case COMPRESSION_CCITTFAX3:
        case COMPRESSION_CCITTFAX4:
            if (form != TiffForm::kBlackAndWhite) return false;
            break;
        case COMPRESSION_JPEG:
            if (form != TiffForm::kGrey && form != TiffForm::kFullColor) return false;
            if (std::max(size.width, size.height) > kMostJpegSide) return false;
            break;
        default:
            return false;
    }
    return TIFFIsCODECConfigured(static_cast<std::uint16_t>(compression)) == 1;
}

bool SetTiffTags(TiffOutput& file, Size size, int compression) {
    TIFF* tiff = file.Tiff();
    const auto width = static_cast<std::uint32_t>(size.width);
    const auto height = static_cast<std::uint32_t>(size.height);
    constexpr double kDotsPerInch = 1200.0;
    const bool all_set =
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width) == 1 &&
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height) == 1 &&
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression) == 1 &&
        (compression != COMPRESSION_CCITTFAX3 ||
         TIFFSetField(tiff, TIFFTAG_T4OPTIONS, GROUP3OPT_2DENCODING | GROUP3OPT_FILLBITS) == 1) &&
        TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == 1 &&
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1) == 1 &&
        TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) == 1 &&
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, height) == 1 &&
        TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH) == 1 &&
        TIFFSetField(tiff, TIFFTAG_XRESOLUTION, kDotsPerInch) == 1 &&
        TIFFSetField(tiff, TIFFTAG_YRESOLUTION, kDotsPerInch) == 1;
    return all_set || FailFields(file);
}

bool SetTiffFormTags(TiffOutput& file, TiffForm form, const RasterImage& raster) {
    TIFF* tiff = file.Tiff();
    const bool full_color = form == TiffForm::kFullColor;
    const std::uint16_t photometric = PhotometricOf(form, raster);
    const bool all_set =
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, full_color ? 3 : 1) == 1 &&
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, full_color ? 8 : BitsOf(form)) == 1 &&
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, photometric) == 1 &&
        (photometric != PHOTOMETRIC_PALETTE || SetColormap(tiff, raster));
    return all_set || FailFields(file);
}

TiffRowWriter::TiffRowWriter(TiffOutput& file, TiffForm form, Size size)
    : file_(file),
      form_(form),
      size_(size),
      row_bytes_(
          (static_cast<std::size_t>(BitsOf(form)) * static_cast<std::size_t>(size.width) + 7) / 8) {
}

void TiffRowWriter::MakeRow(const RasterImage& raster, int y, std::span<std::uint8_t> out) const {
    const auto row = raster.PictureRow(y);
    const std::size_t used =
        (static_cast<std::size_t>(raster.Bits()) * static_cast<std::size_t>(raster.Width()) + 7) /
        8;
    const std::size_t count = std::min(used, out.size());
    if (form_ == TiffForm::kFullColor)
        SwapRedBlue24(row.first(count), out.first(count));
    else
        std::memcpy(out.data(), row.data(), count);
    std::fill(out.begin() + static_cast<std::ptrdiff_t>(count), out.end(), std::uint8_t{0});
}

bool TiffRowWriter::Write(const RasterImage& raster) {
    std::uint16_t compression = COMPRESSION_NONE;
    TIFFGetField(file_.Tiff(), TIFFTAG_COMPRESSION, &compression);
    const bool deflate =
        compression == COMPRESSION_ADOBE_DEFLATE || compression == COMPRESSION_DEFLATE;
    // Deflate goes through a much faster library when it gets the whole strip at once.
    if (deflate && rows_written_ == 0 && raster.PixelSize() == size_) return WriteAtOnce(raster);
    if (compression == COMPRESSION_NONE) return WriteStored(raster);
    if (rows_written_ == 0 && TIFFWriteBufferSetup(file_.Tiff(), nullptr, kOutputBufferBytes) != 1)
        return false;
    rows_.resize(row_bytes_);
    for (int y = 0; y < raster.Height(); ++y, ++rows_written_) {
        MakeRow(raster, y, rows_);
        if (TIFFWriteScanline(file_.Tiff(), rows_.data(), static_cast<std::uint32_t>(rows_written_),
                              0) != 1) {
            file_.Messages().Error("", "Failed to write TIFF data.");
            return false;
        }
    }
    return true;
}

bool TiffRowWriter::WriteStored(const RasterImage& raster) {
    // The system takes large pieces faster.
    constexpr std::size_t kPieceBytes = 4 << 20;
    const auto height = static_cast<std::size_t>(raster.Height());
    const std::size_t rows_at_once =
        std::clamp<std::size_t>(kPieceBytes / row_bytes_, 1, std::max<std::size_t>(height, 1));
    rows_.resize(rows_at_once * row_bytes_);
    for (std::size_t y = 0; y < height;) {
        const std::size_t count = std::min(rows_at_once, height - y);
        for (std::size_t i = 0; i < count; ++i)
            MakeRow(raster, static_cast<int>(y + i), {rows_.data() + i * row_bytes_, row_bytes_});
        // Continues the strip that was written last.
        const auto bytes = static_cast<tmsize_t>(count * row_bytes_);
        if (TIFFWriteRawStrip(file_.Tiff(), 0, rows_.data(), bytes) != bytes) {
            file_.Messages().Error("", "Failed to write TIFF data.");
            return false;
        }
        y += count;
    }
    rows_written_ += raster.Height();
    return true;
}

bool TiffRowWriter::WriteAtOnce(const RasterImage& raster) {
    const auto height = static_cast<std::size_t>(raster.Height());
    // Not zeroed, as every byte gets a value.
    const std::unique_ptr<std::uint8_t[]> strip(new (std::nothrow)
                                                    std::uint8_t[row_bytes_ * height]);
    if (!strip) {
        file_.Messages().Error("", "unable to malloc in WriteTIFF()");
        return false;
    }
    for (std::size_t y = 0; y < height; ++y)
        MakeRow(raster, static_cast<int>(y), {strip.get() + y * row_bytes_, row_bytes_});
    if (TIFFWriteEncodedStrip(file_.Tiff(), 0, strip.get(),
                              static_cast<tmsize_t>(row_bytes_ * height)) <= 0) {
        file_.Messages().Error("", "Failed to write TIFF data.");
        return false;
    }
    rows_written_ += raster.Height();
    return true;
}

bool WriteTiff(const std::string& name, const RasterImage& raster,
               std::initializer_list<int> compressions) {
    const auto form = TiffFormOf(raster, true);
    if (!form) {
        TiffMessages().Error("", "Image format not supported for output to tiff");
        return false;
    }
    const auto* chosen = std::find_if(
        compressions.begin(), compressions.end(),
        [&](int compression) { return CanCompressTiff(compression, *form, raster.PixelSize()); });
    const int compression = chosen != compressions.end() ? *chosen : COMPRESSION_NONE;
    const auto file = TiffOutput::Create(name, TiffOutput::Place::kBeside);
    if (!file || !SetTiffTags(*file, raster.PixelSize(), compression) ||
        !SetTiffFormTags(*file, *form, raster))
        return false;
    return TiffRowWriter(*file, *form, raster.PixelSize()).Write(raster) && file->Commit();
}

}  // namespace rastrel
