#include "core/pixel_reader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

namespace rastrel {

namespace {

constexpr std::uint32_t kOpaque = 0xff000000u;
constexpr std::size_t kPiecePixels = 2048;

std::uint32_t PixelWord(Color color) {
    return kOpaque | std::uint32_t{color.red} << 16 | std::uint32_t{color.green} << 8 | color.blue;
}

ValueColors ColorsOf(const RasterImage& raster) {
    ValueColors colors;
    for (std::size_t value = 0; value < colors.pixels.size(); ++value)
        colors.Set(value, PixelWord(ShownColor(raster, value)));
    return colors;
}

}  // namespace

Color ShownColor(const RasterImage& raster, std::size_t value) {
    if (const Palette* palette = raster.GetPalette())
        return palette->Entry(static_cast<int>(value)).value_or(Color{});
    const unsigned step = raster.Bits() == 1 ? 255 : raster.Bits() == 4 ? 17 : 1;
    const auto grey = static_cast<std::uint8_t>(value * step);
    return {grey, grey, grey};
}

PixelReader::PixelReader(const RasterImage& raster, PixelForm form, std::size_t total_bytes)
    : raster_(raster), form_(form), streams_(total_bytes >= kStreamedFrom) {
    if (raster.Bits() <= 8) colors_ = ColorsOf(raster);
}

void PixelReader::Read(int x, int y, std::span<std::uint8_t> out) {
    if (!streams_) {
        ReadCached(x, y, out);
        return;
    }
    const auto pixel_bytes = static_cast<std::size_t>(form_);
    if (IsStoredForm()) {
        StreamCopy(StoredPixels(x, y, out.size() / pixel_bytes), out.data());
        return;
    }
    // Pieces that stay in the nearest cache between being made and being copied past it.
    alignas(64) std::array<std::uint8_t, kPiecePixels * 4> piece;
    while (!out.empty()) {
        const std::size_t bytes = std::min(out.size(), kPiecePixels * pixel_bytes);
        const auto made = std::span(piece).first(bytes);
        ReadCached(x, y, made);
        StreamCopy(made, out.data());
        out = out.subspan(bytes);
        x += static_cast<int>(kPiecePixels);
    }
}

void PixelReader::ReadCached(int x, int y, std::span<std::uint8_t> out) {
    switch (form_) {
        case PixelForm::kValues:
            ReadValues(x, y, out);
            break;
        case PixelForm::kBgr:
            ReadBgr(x, y, out);
            break;
        case PixelForm::kBgra:
            ReadBgra(x, y, out);
            break;
    }
}

bool PixelReader::IsStoredForm() const {
    return raster_.Bits() == 8 * static_cast<int>(form_);
}

std::span<const std::uint8_t> PixelReader::StoredPixels(int x, int y, std::size_t count) const {
    const auto pixel_bytes = static_cast<std::size_t>(raster_.Bits() / 8);
    return raster_.PictureRow(y).subspan(static_cast<std::size_t>(x) * pixel_bytes,
                                         count * pixel_bytes);
}

std::span<const std::uint8_t> PixelReader::Indices(int x, int y, std::size_t count) {
    if (raster_.Bits() == 8) return StoredPixels(x, y, count);
    const auto indices = Scratch(count);
    UnpackIndices(raster_.PictureRow(y), raster_.Bits(), x, indices);
    return indices;
}

std::span<std::uint8_t> PixelReader::Scratch(std::size_t bytes) {
    if (scratch_.size() < bytes) scratch_.resize(bytes);
    return std::span(scratch_).first(bytes);
}

void PixelReader::ReadValues(int x, int y, std::span<std::uint8_t> out) {
    switch (raster_.Bits()) {
        case 16: {
            const auto colors = Scratch(out.size() * 3);
            Bgr24From16(StoredPixels(x, y, out.size()), colors);
            GreyFromBgr(colors, 3, out);
            break;
        }
        case 24:
        case 32:
            GreyFromBgr(StoredPixels(x, y, out.size()),
                        static_cast<std::size_t>(raster_.Bits() / 8), out);
            break;
        default:
            UnpackIndices(raster_.PictureRow(y), raster_.Bits(), x, out);
            break;
    }
}

void PixelReader::ReadBgr(int x, int y, std::span<std::uint8_t> out) {
    const std::size_t count = out.size() / 3;
    switch (raster_.Bits()) {
        case 16:
            Bgr24From16(StoredPixels(x, y, count), out);
            break;
        case 24:
            std::memcpy(out.data(), StoredPixels(x, y, count).data(), out.size());
            break;
        case 32:
            Bgr24From32(StoredPixels(x, y, count), out);
            break;
        default:
            ExpandTo24(Indices(x, y, count), colors_, out);
            break;
    }
}

void PixelReader::ReadBgra(int x, int y, std::span<std::uint8_t> out) {
    const std::size_t count = out.size() / 4;
    switch (raster_.Bits()) {
        case 16: {
            const auto colors = Scratch(count * 3);
            Bgr24From16(StoredPixels(x, y, count), colors);
            Bgra32From24(colors, out);
            break;
        }
        case 24:
            Bgra32From24(StoredPixels(x, y, count), out);
            break;
        case 32:
            std::memcpy(out.data(), StoredPixels(x, y, count).data(), out.size());
            break;
        default:
            ExpandTo32(Indices(x, y, count), colors_, out);
            break;
    }
}

void CopyPixels(const RasterImage& raster, int depth, Rect rect, std::uint8_t* out) {
    if ((depth != 8 && depth != 24 && depth != 32) || !raster.HasBlock()) return;
    const Rect inside = Clip(rect, raster.PixelSize());
    if (inside.IsEmpty()) return;
    const auto pixel_bytes = static_cast<std::size_t>(depth / 8);
    const std::size_t out_row_bytes = static_cast<std::size_t>(rect.width) * pixel_bytes;
    const std::size_t left_bytes =
        static_cast<std::size_t>(std::int64_t{inside.x} - rect.x) * pixel_bytes;
    const std::size_t run_bytes = static_cast<std::size_t>(inside.width) * pixel_bytes;
    PixelReader reader(raster, static_cast<PixelForm>(pixel_bytes),
                       run_bytes * static_cast<std::size_t>(inside.height));
    for (int y = inside.y; y < inside.y + inside.height; ++y) {
        const auto row = static_cast<std::size_t>(std::int64_t{y} - rect.y);
        reader.Read(inside.x, y, {out + row * out_row_bytes + left_bytes, run_bytes});
    }
}

}  // namespace rastrel
