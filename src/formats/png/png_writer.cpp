#include "formats/png/png_writer.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "core/pixel_reader.h"
#include "formats/quiet_write.h"

namespace rastrel {

namespace {

constexpr std::size_t kBufferBytes = std::size_t{64} << 10;

bool IsGreyRamp(const Palette& palette) {
    const Palette grey = Palette::Grey();
    return std::ranges::equal(palette.Entries(), grey.Entries());
}

/// What the file says of a raster's colours, made before libpng is called.
struct PngColors {
    int depth = 8;
    int color_type = PNG_COLOR_TYPE_RGB;
    int entries = 0;
    std::array<png_color, PNG_MAX_PALETTE_LENGTH> palette = {};
    /// The transparent entry, all before it being opaque; -1: none.
    int transparent = -1;
};

/// How many entries a palette must have for all the values that occur.
std::size_t EntriesInUse(const RasterImage& raster) {
    if (raster.Bits() < 8) return std::size_t{1} << raster.Bits();
    std::uint8_t greatest = 0;
    const auto width = static_cast<std::size_t>(raster.Width());
    for (int y = 0; y < raster.Height(); ++y)
        for (const std::uint8_t index : raster.Row(y).first(width))
            greatest = std::max(greatest, index);
    return std::size_t{greatest} + 1;
}

PngColors ColorsOf(const RasterImage& raster) {
    PngColors colors;
    if (raster.Bits() > 8) {
        if (raster.Bits() == 32) colors.color_type = PNG_COLOR_TYPE_RGB_ALPHA;
        return colors;
    }
    colors.depth = raster.Bits();
    colors.color_type = PNG_COLOR_TYPE_GRAY;
    const Palette* palette = raster.GetPalette();
    int values = 1 << raster.Bits();
    if (palette != nullptr && !IsGreyRamp(*palette)) {
        colors.color_type = PNG_COLOR_TYPE_PALETTE;
        const auto entries = palette->Entries();
        values = static_cast<int>(std::min(std::max(entries.size(), EntriesInUse(raster)),
                                           std::size_t{1} << raster.Bits()));
        colors.entries = values;
        for (std::size_t i = 0; i < static_cast<std::size_t>(values); ++i) {
            const Color color = ShownColor(raster, i);
            colors.palette[i] = {color.red, color.green, color.blue};
        }
    }
    if (raster.TransparentIndex() < values) colors.transparent = raster.TransparentIndex();
    return colors;
}

}  // namespace

PngWriter::PngWriter(ByteSink& sink)
    : sink_(sink), buffer_(kBufferBytes), codec_(PngCodec::Direction::kWrite) {}

void PngWriter::WriteBytes(png_structp png, png_bytep bytes, std::size_t count) {
    auto& self = *static_cast<PngWriter*>(png_get_io_ptr(png));
    if (self.buffered_ + count > self.buffer_.size()) Flush(png);
    if (count > self.buffer_.size()) {
        if (!WriteQuietly(self.sink_, {bytes, count})) png_error(png, "the file is not taken");
        return;
    }
    std::memcpy(self.buffer_.data() + self.buffered_, bytes, count);
    self.buffered_ += count;
}

void PngWriter::Flush(png_structp png) {
    auto& self = *static_cast<PngWriter*>(png_get_io_ptr(png));
    if (!WriteQuietly(self.sink_, {self.buffer_.data(), self.buffered_}))
        png_error(png, "the file is not taken");
    self.buffered_ = 0;
}

bool PngWriter::Write(const RasterImage& raster) {
    if (!codec_.Ok() || !raster.HasPlainRows() || !WriteHeader(raster)) return false;
    const bool written = raster.Bits() == 16 ? WriteShownColors(raster) : WriteStoredRows(raster);
    return written && Finish();
}

bool PngWriter::WriteHeader(const RasterImage& raster) {
    PngColors colors = ColorsOf(raster);
    return codec_.Run([this, &raster, &colors] {
        png_struct* png = codec_.Png();
        png_info* info = codec_.Info();
        png_set_write_fn(png, this, WriteBytes, Flush);
        png_set_IHDR(png, info, static_cast<png_uint_32>(raster.Width()),
                     static_cast<png_uint_32>(raster.Height()), colors.depth, colors.color_type,
                     PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        if (colors.entries > 0) png_set_PLTE(png, info, colors.palette.data(), colors.entries);
        if (colors.transparent >= 0) {
            std::array<png_byte, PNG_MAX_PALETTE_LENGTH> alphas;
            alphas.fill(255);
            alphas[static_cast<std::size_t>(colors.transparent)] = 0;
            png_color_16 level = {};
            level.gray = static_cast<png_uint_16>(colors.transparent);
            png_set_tRNS(png, info, colors.entries > 0 ? alphas.data() : nullptr,
                         colors.transparent + 1, &level);
        }
        png_write_info(png, info);
        if (raster.Bits() > 8) png_set_bgr(png);
        return true;
    });
}

bool PngWriter::WriteStoredRows(const RasterImage& raster) {
    const std::uint8_t* top_row = raster.PictureRow(0).data();
    const auto row_bytes = static_cast<std::ptrdiff_t>(raster.EffectiveWidth());
    return codec_.Run([this, top_row, row_bytes, height = raster.Height()] {
        for (int y = 0; y < height; ++y)
            png_write_row(codec_.Png(), top_row - row_bytes * y);
        return true;
    });
}

bool PngWriter::WriteShownColors(const RasterImage& raster) {
    PixelReader reader(raster, PixelForm::kBgr);
    std::vector<std::uint8_t> row(static_cast<std::size_t>(raster.Width()) * 3);
    for (int y = 0; y < raster.Height(); ++y) {
        reader.Read(0, y, row);
        if (!codec_.Run([this, from = row.data()] {
                png_write_row(codec_.Png(), from);
                return true;
            }))
            return false;
    }
    return true;
}

bool PngWriter::Finish() {
    return codec_.Run([this] {
        png_write_end(codec_.Png(), nullptr);
        Flush(codec_.Png());
        return true;
    });
}

}  // namespace rastrel
