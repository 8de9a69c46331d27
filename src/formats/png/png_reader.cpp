#include "formats/png/png_reader.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "core/pixel_rows.h"

namespace rastrel {

namespace {

constexpr std::size_t kBufferBytes = std::size_t{64} << 10;

/// What a Deflate stream can expand to, times its length.
constexpr std::uint64_t kDeflateExpansion = 1032;

/// The colours of levels of up to 8 bits, of which those of 2 and 4 are scaled to 8.
Palette GreyPalette(int depth) {
    if (depth != 1) return Palette::Grey();
    constexpr std::array<Color, 2> kBlackAndWhite = {{{0, 0, 0}, {255, 255, 255}}};
    return Palette(kBlackAndWhite);
}

/// Takes columns from x on, as many as the part's row holds pixels.
void CopyColumns(std::span<const std::uint8_t> from, int bits, int x, int width,
                 std::span<std::uint8_t> to, std::vector<std::uint8_t>& indices) {
    if (bits == 1) {
        indices.resize(static_cast<std::size_t>(width));
        UnpackIndices(from, bits, x, indices);
        PackIndices(indices, bits, to);
        return;
    }
    const auto pixel_bytes = static_cast<std::size_t>(bits / 8);
    std::memcpy(to.data(), &from[static_cast<std::size_t>(x) * pixel_bytes],
                static_cast<std::size_t>(width) * pixel_bytes);
}

}  // namespace

PngReader::PngReader(ByteSource& source)
    : source_(source), buffer_(kBufferBytes), codec_(PngCodec::Direction::kRead) {}

void PngReader::ReadBytes(png_structp png, png_bytep out, std::size_t count) {
    auto& self = *static_cast<PngReader*>(png_get_io_ptr(png));
    while (count > 0) {
        if (self.buffer_at_ == self.buffer_end_) {
            self.buffer_at_ = 0;
            self.buffer_end_ = self.source_.Read(self.buffer_);
            if (self.buffer_end_ == 0) png_error(png, "the file ends too early");
        }
        const std::size_t now = std::min(count, self.buffer_end_ - self.buffer_at_);
        std::memcpy(out, self.buffer_.data() + self.buffer_at_, now);
        self.buffer_at_ += now;
        out += now;
        count -= now;
    }
}

bool PngReader::ReadHeader() {
    if (!codec_.Ok()) return false;
    const bool read = codec_.Run([this] {
        png_set_read_fn(codec_.Png(), this, ReadBytes);
        // Text, colour profiles and the like are not even decompressed.
        png_set_keep_unknown_chunks(codec_.Png(), PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
        png_read_info(codec_.Png(), codec_.Info());
        return true;
    });
    if (!read) return false;
    ReadForm();
    return true;
}

void PngReader::ReadForm() {
    const png_struct* png = codec_.Png();
    const png_info* info = codec_.Info();
    size_ = {static_cast<int>(png_get_image_width(png, info)),
             static_cast<int>(png_get_image_height(png, info))};
    interlaced_ = png_get_interlace_type(png, info) != PNG_INTERLACE_NONE;
    const int depth = png_get_bit_depth(png, info);
    const int color_type = png_get_color_type(png, info);
    const bool has_key = png_get_valid(png, info, PNG_INFO_tRNS) != 0;
    switch (color_type) {
        case PNG_COLOR_TYPE_PALETTE:
            bits_ = depth == 1 ? 1 : 8;
            ReadPaletteEntries();
            break;
        case PNG_COLOR_TYPE_GRAY:
            // A transparent level of 16 bits may share its 8 bits with others.
            bits_ = depth == 16 && has_key ? 32 : depth == 1 ? 1 : 8;
            if (bits_ <= 8) palette_ = GreyPalette(depth);
            break;
        case PNG_COLOR_TYPE_RGB:
            bits_ = has_key ? 32 : 24;
            break;
        default:
            bits_ = 32;
            break;
    }
    if (has_key && palette_) ReadTransparency(color_type, depth);
}

void PngReader::ReadPaletteEntries() {
    png_colorp entries = nullptr;
    int count = 0;
    png_get_PLTE(codec_.Png(), codec_.Info(), &entries, &count);
    std::vector<Color> colors(static_cast<std::size_t>(count));
    std::transform(entries, entries + count, colors.begin(), [](const png_color& entry) {
        return Color{entry.red, entry.green, entry.blue};
    });
    palette_ = Palette(colors);
}

void PngReader::ReadTransparency(int color_type, int depth) {
    png_bytep alphas = nullptr;
    int count = 0;
    png_color_16p level = nullptr;
    png_get_tRNS(codec_.Png(), codec_.Info(), &alphas, &count, &level);
    if (color_type == PNG_COLOR_TYPE_GRAY) {
        const int greatest = (1 << depth) - 1;
        const int scale = depth == 1 ? 1 : 255 / greatest;
        if (level->gray <= greatest) transparent_index_ = level->gray * scale;
        return;
    }
    const png_byte* end = alphas + count;
    const png_byte* first = std::find(alphas, alphas + count, png_byte{0});
    if (first != end && std::find(first + 1, end, png_byte{0}) == end)
        transparent_index_ = static_cast<int>(first - alphas);
}

bool PngReader::IsPlausible() const {
    const std::uint64_t row_bytes = png_get_rowbytes(codec_.Png(), codec_.Info());
    const auto height = static_cast<std::uint64_t>(size_.height);
    const std::uint64_t bitmap_bytes =
        DibRowBytes(static_cast<std::uint32_t>(bits_), static_cast<std::uint32_t>(size_.width)) *
        height;
    return bitmap_bytes <= kMostBlockBytes &&
           row_bytes * height <= source_.Size() * kDeflateExpansion;
}

bool PngReader::Start() {
    return IsPlausible() && codec_.Run([this] {
        png_struct* png = codec_.Png();
        png_info* info = codec_.Info();
        if (png_get_bit_depth(png, info) == 16) png_set_scale_16(png);
        if (bits_ == 8) {
            if (png_get_color_type(png, info) == PNG_COLOR_TYPE_PALETTE)
                png_set_packing(png);
            else
                png_set_expand_gray_1_2_4_to_8(png);
        }
        if (bits_ == 32) {
            if (png_get_valid(png, info, PNG_INFO_tRNS) != 0) png_set_tRNS_to_alpha(png);
            png_set_gray_to_rgb(png);
        }
        if (bits_ >= 24) png_set_bgr(png);
        passes_ = png_set_interlace_handling(png);
        png_read_update_info(png, info);
        // What the bitmap's rows have room for.
        return png_get_rowbytes(png, info) ==
               (static_cast<std::size_t>(size_.width) * static_cast<std::size_t>(bits_) + 7) / 8;
    });
}

DibBlock PngReader::DecodeWhole() {
    if (!Start()) return {};
    DibBlock block = DibBlock::Create(size_.width, size_.height, bits_);
    if (!block) return {};
    const auto row_bytes = static_cast<std::ptrdiff_t>(
        DibRowBytes(static_cast<std::uint32_t>(bits_), static_cast<std::uint32_t>(size_.width)));
    std::uint8_t* top_row = block.Rows() + row_bytes * (size_.height - 1);
    const bool decoded = codec_.Run([this, row_bytes, top_row] {
        for (int pass = 0; pass < passes_; ++pass) {
            for (int y = 0; y < size_.height; ++y)
                png_read_row(codec_.Png(), top_row - row_bytes * y, nullptr);
        }
        png_read_end(codec_.Png(), nullptr);
        return true;
    });
    if (!decoded) return {};
    return block;
}

DibBlock PngReader::DecodePart(const Rect& part) {
    if (interlaced_ || !Start()) return {};
    DibBlock block = DibBlock::Create(part.width, part.height, bits_);
    if (!block) return {};
    const auto row_bytes = static_cast<std::size_t>(
        DibRowBytes(static_cast<std::uint32_t>(bits_), static_cast<std::uint32_t>(part.width)));
    std::vector<std::uint8_t> row(png_get_rowbytes(codec_.Png(), codec_.Info()));
    std::vector<std::uint8_t> indices;
    for (int y = 0; y < part.y + part.height; ++y) {
        if (!codec_.Run([this, out = row.data()] {
                png_read_row(codec_.Png(), out, nullptr);
                return true;
            }))
            return {};
        if (y < part.y) continue;
        const auto stored = static_cast<std::size_t>(part.y + part.height - 1 - y);
        CopyColumns(row, bits_, part.x, part.width, {block.Rows() + stored * row_bytes, row_bytes},
                    indices);
    }
    return block;
}

}  // namespace rastrel
