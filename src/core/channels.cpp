#include "core/channels.h"

#include <vector>

#include "core/pixel_reader.h"

namespace rastrel {

bool CombineChannels(RasterImage& target, const RasterImage& red, const RasterImage& green,
                     const RasterImage& blue) {
    if (!red.HasPlainRows() || !green.HasPlainRows() || !blue.HasPlainRows()) return false;
    if (green.PixelSize() != red.PixelSize() || blue.PixelSize() != red.PixelSize()) return false;
    RasterImage combined;
    if (!combined.Create(red.Width(), red.Height(), 24, kColorTypeColor)) return false;

    // Channel by channel; each pass reads whole colours and keeps one of their bytes.
    struct Channel {
        const RasterImage& source;
        std::size_t byte;
    };
    std::vector<std::uint8_t> colors(static_cast<std::size_t>(red.Width()) * 3);
    for (const Channel& channel : {Channel{blue, 0}, Channel{green, 1}, Channel{red, 2}}) {
        PixelReader reader(channel.source, PixelForm::kBgr);
        for (int y = 0; y < combined.Height(); ++y) {
            reader.Read(0, y, colors);
            const auto row = combined.PictureRow(y);
            for (std::size_t at = channel.byte; at < colors.size(); at += 3)
                row[at] = colors[at];
        }
    }
    target.RemovePalette();
    target.ReplaceBlock(combined.DetachBlock(), kColorTypeColor);
    target.SetTransparentIndex(-1);
    return true;
}

}  // namespace rastrel
