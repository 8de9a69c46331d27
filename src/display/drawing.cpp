// The draw and stretch operations of RasterImage, for every device.

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "display/draw_device.h"

namespace rastrel {

DeviceColors TableColors(const RasterImage& raster) {
    DeviceColors colors = {};
    if (raster.Bits() > 8) return colors;
    const auto table = raster.Block().ColorTable();
    const std::size_t count = std::min(colors.size(), table.size() / 4);
    for (std::size_t i = 0; i < count; ++i) {
        colors[i] = table[4 * i] | std::uint32_t{table[4 * i + 1]} << 8 |
                    std::uint32_t{table[4 * i + 2]} << 16;
    }
    return colors;
}

namespace {

/// As a width or height: the raster's.
constexpr int kWhole = -1;

/// A single call of a device is given no more source pixels a side.
constexpr int kMostSourceSide = 1024;

constexpr std::uint32_t kBlack = 0;
constexpr std::uint32_t kWhite = 0x00ffffff;
constexpr std::uint32_t kUnusedByte = 0xff000000;

/// Holds the raster's palette, if it has one, selected.
class PaletteSelection {
  public:
    PaletteSelection(DrawDevice& device, const RasterImage& raster)
        : device_(device), selects_(raster.GetPalette() != nullptr) {
        if (selects_) device_.SelectPalette(*raster.GetPalette());
    }
    PaletteSelection(const PaletteSelection&) = delete;
    PaletteSelection& operator=(const PaletteSelection&) = delete;
    ~PaletteSelection() {
        if (selects_) device_.DeselectPalette();
    }

  private:
    DrawDevice& device_;
    bool selects_;
};

int ClampToInt(std::int64_t value) {
    return static_cast<int>(std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

/// The pixels that a side of a rectangle covers, first to one past the last: a negative length
/// extends from the start, included, downward.
std::pair<std::int64_t, std::int64_t> Covered(int start, int length) {
    const std::int64_t from = start;
    return length < 0 ? std::pair(from + length + 1, from + 1) : std::pair(from, from + length);
}

/// One side of a rectangle cut in two, the first half being the larger for a positive length.
struct Halves {
    explicit Halves(int length)
        : first(static_cast<int>((std::int64_t{length} + 1) / 2)), second(length - first) {}
    int first;
    int second;
};

/// One stretch of one raster, cut into parts where the source is large.
class StretchedPicture {
  public:
    StretchedPicture(DrawDevice& device, const RasterImage& raster)
        : device_(device), raster_(raster) {
        const DeviceColors colors = TableColors(raster);
        const int transparent = raster.TransparentIndex();
        if (raster.Bits() <= 8 && transparent >= 0) {
            is_transparent_ = true;
            AddTransparentPasses(colors, static_cast<std::size_t>(transparent));
        } else {
            passes_.push_back({RasterOperation::kCopy, colors});
        }
    }

    /// True when every part was drawn; a part that has nothing to draw counts as drawn.
    [[nodiscard]] bool DrawInParts(Rect destination, Rect source) const {
        if (HasNothing(destination, source)) return true;
        if (source.width <= kMostSourceSide && source.height <= kMostSourceSide)
            return DrawAtOnce(destination, source);
        const Halves widths(destination.width);
        const Halves heights(destination.height);
        const Halves source_widths(source.width);
        const Halves source_heights(source.height);
        bool all = true;
        for (const bool lower : {false, true}) {
            for (const bool right : {false, true}) {
                const Rect part = {
                    ClampToInt(std::int64_t{destination.x} + (right ? widths.first : 0)),
                    ClampToInt(std::int64_t{destination.y} + (lower ? heights.first : 0)),
                    right ? widths.second : widths.first, lower ? heights.second : heights.first};
                // The source's y goes up: what shows above begins behind what shows below.
                const Rect source_part = {
                    ClampToInt(std::int64_t{source.x} + (right ? source_widths.first : 0)),
                    ClampToInt(std::int64_t{source.y} + (lower ? 0 : source_heights.second)),
                    right ? source_widths.second : source_widths.first,
                    lower ? source_heights.second : source_heights.first};
                all = DrawInParts(part, source_part) && all;
            }
        }
        return all;
    }

    [[nodiscard]] bool DrawAtOnce(Rect destination, Rect source) const {
        if (HasNothing(destination, source)) return true;
        bool drawn = true;
        for (const Pass& pass : passes_) {
            drawn = device_.StretchPixels({raster_, pass.colors}, destination, source,
                                          pass.operation) &&
                    drawn;
        }
        return drawn || is_transparent_;
    }

  private:
    struct Pass {
        RasterOperation operation;
        DeviceColors colors;
    };

    /// Two passes: the first clears the device where the picture is opaque, the second paints it
    /// in. It is the colours that change between them and never the pixels, so that nothing has to
    /// be put back, whatever the device does.
    void AddTransparentPasses(const DeviceColors& colors, std::size_t transparent) {
        DeviceColors mask = {};
        DeviceColors painted = colors;
        if (transparent < mask.size()) {
            mask[transparent] = kWhite | kUnusedByte;
            painted[transparent] = kBlack;
        }
        passes_.push_back({RasterOperation::kAnd, mask});
        passes_.push_back({RasterOperation::kOr, painted});
    }

    [[nodiscard]] bool HasNothing(const Rect& destination, const Rect& source) const {
        if (destination.width == 0 || destination.height == 0) return true;
        const auto misses = [](int start, int length, int limit) {
            const auto [from, end] = Covered(start, length);
            return from == end || end <= 0 || from >= limit;
        };
        return misses(source.x, source.width, raster_.Width()) ||
               misses(source.y, source.height, raster_.Height());
    }

    DrawDevice& device_;
    const RasterImage& raster_;
    bool is_transparent_ = false;
    std::vector<Pass> passes_;
};

}  // namespace

bool RasterImage::Draw(DrawDevice* device, Rect destination, int source_x, int source_y) {
    if (!HasBlock()) return false;
    if (device == nullptr) return true;
    const PaletteSelection selection(*device, *this);
    device->ChoosePixelsWhenScaling();
    if (destination.width == kWhole) destination.width = width_;
    if (destination.height == kWhole) destination.height = height_;
    if (destination.IsEmpty()) return true;
    const DeviceColors colors = TableColors(*this);
    device->SetPixels({*this, colors}, destination, source_x, source_y);
    return true;
}

bool RasterImage::Stretch(DrawDevice* device, Rect destination, Rect source) {
    if (!HasBlock() || device == nullptr) return false;
    const PaletteSelection selection(*device, *this);
    device->ChoosePixelsWhenScaling();
    const StretchedPicture picture(*device, *this);
    // It is the sizes that are asked for which count: what stands for the whole is drawn at once,
    // unless the other side is cut.
    const bool is_cut = source.width > kMostSourceSide || source.height > kMostSourceSide;
    if (destination.width == kWhole) destination.width = width_;
    if (destination.height == kWhole) destination.height = height_;
    if (source.width == kWhole) source.width = ClampToInt(std::int64_t{width_} - source.x);
    if (source.height == kWhole) source.height = ClampToInt(std::int64_t{height_} - source.y);
    return is_cut ? picture.DrawInParts(destination, source)
                  : picture.DrawAtOnce(destination, source);
}

}  // namespace rastrel
