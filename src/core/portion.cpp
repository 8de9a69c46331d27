#include "core/portion.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "core/pixel_rows.h"

namespace rastrel {

namespace {

/// Every reduction-th pixel of pixel_bytes bytes.
void PickPixels(std::span<const std::uint8_t> from, std::size_t pixel_bytes, std::size_t reduction,
                std::span<std::uint8_t> to) {
    if (reduction == 1) {
        std::copy_n(from.begin(), to.size(), to.begin());
        return;
    }
    const std::uint8_t* in = from.data();
    for (std::size_t at = 0; at < to.size(); at += pixel_bytes, in += pixel_bytes * reduction)
        std::memcpy(&to[at], in, pixel_bytes);
}

/// Copies the kept pixels of an inside part of the source into the target, which has their size.
class PortionCopy {
  public:
    PortionCopy(const RasterImage& source, Rect inside, int reduction)
        : source_(source), inside_(inside), reduction_(static_cast<std::size_t>(reduction)) {}

    void To(const RasterImage& target) {
        const auto width = static_cast<std::size_t>(target.Width());
        for (int y = 0; y < target.Height(); ++y) {
            const auto from = source_.PictureRow(inside_.y + y * static_cast<int>(reduction_));
            if (source_.Bits() >= 8)
                CopyBytes(from, target.PictureRow(y), width);
            else
                CopyIndices(from, target.PictureRow(y), width);
        }
    }

  private:
    void CopyBytes(std::span<const std::uint8_t> from, std::span<std::uint8_t> to,
                   std::size_t width) const {
        const auto pixel_bytes = static_cast<std::size_t>(source_.Bits() / 8);
        PickPixels(from.subspan(static_cast<std::size_t>(inside_.x) * pixel_bytes), pixel_bytes,
                   reduction_, to.first(width * pixel_bytes));
    }
    void CopyIndices(std::span<const std::uint8_t> from, std::span<std::uint8_t> to,
                     std::size_t width) {
        unpacked_.resize(static_cast<std::size_t>(inside_.width));
        picked_.resize(width);
        UnpackIndices(from, source_.Bits(), inside_.x, unpacked_);
        PickPixels(unpacked_, 1, reduction_, picked_);
        PackIndices(picked_, source_.Bits(), to);
    }

    const RasterImage& source_;
    Rect inside_;
    std::size_t reduction_;
    std::vector<std::uint8_t> unpacked_;
    std::vector<std::uint8_t> picked_;
};

/// How many of length places are kept when every step-th is.
int KeptOf(int length, int step) {
    return (length - 1) / step + 1;
}

}  // namespace

bool ExtractPortion(RasterImage& raster, Rect part, int reduction) {
    const Rect inside = Clip(part, raster.PixelSize());
    if (inside.IsEmpty() || reduction < 1 || !raster.HasPlainRows()) return false;
    const DibHeader old = raster.Block().Header();
    DibHeader header = old;
    header.width = KeptOf(inside.width, reduction);
    header.height = KeptOf(inside.height, reduction);
    header.compression = kDibUncompressed;
    header.image_size = DibImageSize(header);
    header.x_resolution = old.x_resolution / reduction;
    header.y_resolution = old.y_resolution / reduction;
    DibBlock block = DibBlock::ForHeader(header);
    if (!block) return false;
    const auto table = raster.Block().ColorTable();
    std::copy(table.begin(), table.end(), block.ColorTable().begin());
    RasterImage portion;
    portion.ReplaceBlock(std::move(block));
    PortionCopy(raster, inside, reduction).To(portion);
    raster.ReplaceBlock(portion.DetachBlock());
    return true;
}

}  // namespace rastrel
