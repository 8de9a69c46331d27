#include "core/raster_image.h"

#include <utility>

#include "core/dib_palette.h"

namespace rastrel {

RasterImage::~RasterImage() = default;

bool RasterImage::IsInside(int x, int y) const {
    return x >= 0 && x < width_ && y >= 0 && y < height_;
}

bool RasterImage::Create(int width, int height, int bits, int color_type) {
    if (color_type < 0) color_type = bits <= 8 ? 0 : kColorTypeColor;
    RemovePalette();
    // The old block goes first, so that the two never stand in memory together.
    ReplaceBlock({}, color_type);
    ReplaceBlock(DibBlock::Create(width, height, bits));
    return HasBlock();
}

int RasterImage::GetIndex(int x, int y) const {
    if (!IsInside(x, y) || bits_ > 8) return -1;
    const auto row = Row(y);
    const auto column = static_cast<std::size_t>(x);
    switch (bits_) {
        case 1:
            return (row[column / 8] >> (7 - column % 8)) & 1;
        case 4:
            return column % 2 == 0 ? row[column / 2] >> 4 : row[column / 2] & 15;
        case 8:
            return row[column];
        default:
            return 0;
    }
}

std::optional<Color> RasterImage::GetRgb(int x, int y) const {
    if (!IsInside(x, y)) return std::nullopt;
    if (palette_) return palette_->Entry(GetIndex(x, y) & 0xff);
    const std::uint8_t* pixel = pixels_ + ByteOffset(x, y);
    return Color{.red = pixel[2], .green = pixel[1], .blue = pixel[0]};
}

std::optional<Color32> RasterImage::GetPixel32(int x, int y) const {
    if (bits_ != 32 || !IsInside(x, y)) return std::nullopt;
    const std::uint8_t* pixel = pixels_ + ByteOffset(x, y);
    return Color32{.red = pixel[2], .green = pixel[1], .blue = pixel[0], .alpha = pixel[3]};
}

bool RasterImage::SetIndex(int x, int y, int index) {
    if (!IsInside(x, y) || bits_ > 8) return false;
    const auto row = Row(y);
    const auto column = static_cast<std::size_t>(x);
    const auto set_bits = [](std::uint8_t& byte, unsigned shift, unsigned mask, unsigned value) {
        const unsigned kept = byte & ~(mask << shift);
        byte = static_cast<std::uint8_t>(kept | (value & mask) << shift);
    };
    switch (bits_) {
        case 1:
            set_bits(row[column / 8], static_cast<unsigned>(7 - column % 8), 1, index != 0 ? 1 : 0);
            break;
        case 4:
            set_bits(row[column / 2], column % 2 == 0 ? 4 : 0, 15, static_cast<unsigned>(index));
            break;
        case 8:
            row[column] = static_cast<std::uint8_t>(index);
            break;
        default:
            break;
    }
    return true;
}

bool RasterImage::SetRgb(int x, int y, Color color) {
    if (!IsInside(x, y)) return false;
    if ((color_type_ & kColorTypePalette) != 0) {
        if (!palette_) return false;
        SetIndex(x, y, palette_->NearestIndex(color));
        return true;
    }
    std::uint8_t* pixel = pixels_ + ByteOffset(x, y);
    pixel[0] = color.blue;
    pixel[1] = color.green;
    pixel[2] = color.red;
    return true;
}

bool RasterImage::SetPixel32(int x, int y, Color32 color) {
    if (bits_ != 32 || !IsInside(x, y)) return false;
    std::uint8_t* pixel = pixels_ + ByteOffset(x, y);
    pixel[0] = color.blue;
    pixel[1] = color.green;
    pixel[2] = color.red;
    pixel[3] = color.alpha;
    return true;
}

bool RasterImage::ReadInfo(const std::string& /*name*/, ImageInfo& /*info*/) {
    return false;
}

bool RasterImage::Read(const std::string& /*name*/) {
    return false;
}

bool RasterImage::ReadPart(const std::string& /*name*/, Rect /*part*/) {
    return false;
}

bool RasterImage::ReadPartReduced(const std::string& /*name*/, Rect /*part*/, int /*reduction*/) {
    return false;
}

bool RasterImage::Write(const std::string& /*name*/) {
    return false;
}

bool RasterImage::Describe(FormatTexts& /*texts*/) const {
    return false;
}

bool RasterImage::ExportAs(const std::string& /*name*/, int /*type*/) {
    return false;
}

bool RasterImage::HasPlainRows() const {
    return HasBlock() && !IsRunLengthCoded(block_.Header());
}

void RasterImage::SetPalette(const Palette& palette) {
    palette_ = palette;
    DibColorTableFromPalette(block_, GetPalette(), ColorTableMode::kColors);
}

void RasterImage::ReplaceBlock(DibBlock block, std::optional<int> color_type) {
    block_ = std::move(block);
    if (color_type) color_type_ = *color_type;
    if (!block_) {
        pixels_ = nullptr;
        width_ = height_ = bits_ = effective_width_ = 0;
        return;
    }
    const DibHeader header = block_.Header();
    width_ = header.width;
    height_ = header.height;
    bits_ = header.bit_count;
    effective_width_ =
        static_cast<int>(DibRowBytes(header.bit_count, static_cast<std::uint32_t>(header.width)));
    pixels_ = block_.Rows();
    if (palette_) SetPalette(Palette(*palette_));
}

DibBlock RasterImage::DetachBlock() {
    DibBlock block = std::move(block_);
    ReplaceBlock({});
    return block;
}

void RasterImage::DropRunLengthCoding() {
    DibHeader header = block_.Header();
    if (!IsRunLengthCoded(header)) return;
    header.compression = kDibUncompressed;
    header.image_size = DibImageSize(header);
    block_.SetHeader(header);
}

void RasterImage::TakeOver(RasterImage& source) {
    if (this == &source) return;
    palette_ = std::exchange(source.palette_, std::nullopt);
    ReplaceBlock(source.DetachBlock(), source.color_type_);
    transparent_index_ = std::exchange(source.transparent_index_, -1);
    quality_ = source.quality_;
}

bool RasterImage::CopyFrom(const RasterImage& source) {
    DibBlock block = source.block_.Clone();
    if (source.HasBlock() && !block) return false;
    palette_ = source.palette_;
    ReplaceBlock(std::move(block), source.color_type_);
    transparent_index_ = source.transparent_index_;
    quality_ = source.quality_;
    auxiliary_value_ = source.auxiliary_value_;
    file_name_ = source.file_name_;
    return true;
}

std::size_t RasterImage::ByteOffset(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(effective_width_) +
           static_cast<std::size_t>(bits_) * static_cast<std::size_t>(x) / 8;
}

}  // namespace rastrel
