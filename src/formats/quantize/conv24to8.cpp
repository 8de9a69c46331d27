#include "formats/quantize/conv24to8.h"

#include <algorithm>
#include <new>
#include <numeric>
#include <utility>
#include <vector>

#include "core/converted_image.h"
#include "core/pixel_reader.h"
#include "formats/quantize/median_cut.h"
#include "formats/quantize/nearest_color.h"

namespace rastrel {

namespace {

constexpr int kMostColors = 256;
constexpr int kUsualColors = 255;

/// The rows of a raster as 24-bit pixels, without a copy where that is what they are.
class Rows24 {
  public:
    explicit Rows24(const RasterImage& raster)
        : raster_(raster),
          reader_(raster, PixelForm::kBgr),
          row_bytes_(static_cast<std::size_t>(raster.Width()) * 3),
          copy_(raster.Bits() == 24 ? 0 : row_bytes_) {}

    /// Row y from the top. It stays until the next call.
    [[nodiscard]] std::span<const std::uint8_t> Row(int y) {
        if (copy_.empty()) return raster_.PictureRow(y).first(row_bytes_);
        reader_.Read(0, y, copy_);
        return copy_;
    }

  private:
    const RasterImage& raster_;
    PixelReader reader_;
    std::size_t row_bytes_;
    std::vector<std::uint8_t> copy_;
};

/// Fills the rows of an image of 8 bits from those of a raster of the same size.
template <class LookUp>
void FillRows(const RasterImage& raster, const RasterImage& indexed, LookUp look_up) {
    Rows24 rows(raster);
    const auto width = static_cast<std::size_t>(raster.Width());
    for (int y = 0; y < raster.Height(); ++y)
        look_up(rows.Row(y), indexed.PictureRow(y).first(width));
}

Color ColorOf(const ColorParts& parts) {
    return {.red = parts[2], .green = parts[1], .blue = parts[0]};
}

ColorParts PartsOf(const Color& color) {
    return {color.blue, color.green, color.red};
}

/// What colours of the histogram's scale are in that of pixels.
Palette FullScale(std::span<const ColorParts> colors, int maximum) {
    std::vector<Color> full;
    for (ColorParts parts : colors) {
        for (std::uint8_t& part : parts)
            part = static_cast<std::uint8_t>(part * 255 / maximum);
        full.push_back(ColorOf(parts));
    }
    return Palette(full);
}

/// A palette and, for each colour by its place in the histogram, the index that it becomes.
struct Reduction {
    Palette palette;
    std::vector<std::uint8_t> indices;
};

/// All colours, sorted.
Reduction KeepColors(const ColorHistogram& histogram) {
    const std::vector<CountedColor> colors = histogram.Colors();
    std::vector<std::size_t> order(colors.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&colors](std::size_t a, std::size_t b) {
        return colors[a].parts < colors[b].parts;
    });
    std::vector<Color> sorted;
    std::vector<std::uint8_t> indices(colors.size());
    for (const std::size_t place : order) {
        indices[place] = static_cast<std::uint8_t>(sorted.size());
        sorted.push_back(ColorOf(colors[place].parts));
    }
    return {Palette(sorted), std::move(indices)};
}

/// Each colour becomes the nearest of those chosen, both at the histogram's scale.
std::vector<std::uint8_t> NearestIndices(std::span<const CountedColor> colors,
                                         std::span<const ColorParts> chosen) {
    const NearestColor nearest(chosen, ColorDistance::kSquares);
    std::vector<std::uint8_t> indices;
    indices.reserve(colors.size());
    for (const CountedColor& color : colors)
        indices.push_back(nearest.Find(color.parts));
    return indices;
}

/// Runs a step of the reduction; false, with its text as status, when memory does not suffice.
template <class Step>
bool Succeeds(Step step, std::string& status, const char* text) {
    try {
        step();
        return true;
    } catch (const std::bad_alloc&) {
        status = text;
        return false;
    }
}

/// Of the colours counted wanted ones, by median cut.
std::optional<Reduction> Ppmquant(const ColorHistogram& histogram, std::size_t wanted,
                                  std::string& status) {
    std::vector<CountedColor> colors;
    std::vector<ColorParts> chosen;
    Reduction reduction = {Palette({}), {}};
    if (!Succeeds([&] { colors = histogram.Colors(); }, status,
                  "ran out of memory generating histogram") ||
        !Succeeds([&] { chosen = MedianCut(colors, wanted); }, status,
                  "unable to malloc in mediancut()") ||
        !Succeeds([&] { reduction.indices = NearestIndices(colors, chosen); }, status,
                  "ran out of memory allocating hash table"))
        return std::nullopt;
    reduction.palette = FullScale(chosen, histogram.Maximum());
    return reduction;
}

void Replace(RasterImage& raster, DibBlock block, const Palette& palette) {
    raster.RemovePalette();
    raster.ReplaceBlock(std::move(block), kColorTypePalettised);
    raster.SetPalette(palette);
    raster.SetTransparentIndex(-1);
}

/// The nearest entries of a palette, remembered for the colours met last.
class CityBlockIndices {
  public:
    explicit CityBlockIndices(std::span<const ColorParts> colors)
        : nearest_(colors, ColorDistance::kCityBlock), met_(kSlots) {
        // Slots are made for black, which only the first is looked up for.
        met_[0] = nearest_.Find({});
    }

    void LookUp(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out) {
        const std::uint8_t* pixel = pixels.data();
        for (std::uint8_t& index : out) {
            index = Index({pixel[0], pixel[1], pixel[2]});
            pixel += 3;
        }
    }

  private:
    static constexpr std::size_t kSlots = 32768;

    [[nodiscard]] std::uint8_t Index(const ColorParts& color) {
        const std::uint32_t key =
            std::uint32_t{color[0]} << 16 | std::uint32_t{color[1]} << 8 | color[2];
        std::uint32_t& met = met_[key * 0x9e3779b1u >> 17];
        if (met >> 8 != key) met = key << 8 | nearest_.Find(color);
        return static_cast<std::uint8_t>(met);
    }

    NearestColor nearest_;
    std::vector<std::uint32_t> met_;  ///< by hash: the colour and, lowest, its index
};

}  // namespace

void AddColors(const RasterImage& raster, ColorHistogram& histogram) {
    Rows24 rows(raster);
    for (int y = 0; y < raster.Height(); ++y)
        histogram.Add(rows.Row(y));
}

Palette MedianCutPalette(const ColorHistogram& histogram, std::size_t wanted) {
    return FullScale(MedianCut(histogram.Colors(), wanted), histogram.Maximum());
}

std::optional<IndexedImage> Conv24to8(const RasterImage& raster, int maximum, std::string& status) {
    ConvertedImage indexed(raster, 8);
    if (!indexed.HasBlock()) {
        status = "Conv24to8() - impossibile allocare memoria per l'immagine ad 8 bit";
        return std::nullopt;
    }
    const auto wanted =
        static_cast<std::size_t>(maximum <= 0 ? kUsualColors : std::min(maximum, kMostColors));
    ColorHistogram histogram;
    if (!Succeeds([&] { AddColors(raster, histogram); }, status,
                  "ran out of memory computing hash table"))
        return std::nullopt;
    const bool keeps_all = histogram.Maximum() == 255 && histogram.Size() <= wanted;
    const auto reduction = keeps_all ? KeepColors(histogram) : Ppmquant(histogram, wanted, status);
    if (!reduction) return std::nullopt;
    if (keeps_all) status = "Compressione dei colori non necessaria.";
    const ColorIndices indices(histogram, reduction->indices);
    FillRows(raster, indexed, [&indices](auto row, auto out) { indices.LookUp(row, out); });
    return IndexedImage{indexed.DetachBlock(), reduction->palette};
}

bool ReduceTo8Bits(RasterImage& raster) {
    if (!raster.HasBlock()) return false;
    if (raster.Bits() <= 8) return true;
    std::string status;
    auto indexed = Conv24to8(raster, kUsualColors, status);
    if (!indexed) return false;
    Replace(raster, std::move(indexed->block), indexed->palette);
    return true;
}

bool ReduceTo8Bits(RasterImage& raster, const Palette& palette) {
    if (!raster.HasBlock()) return false;
    if (raster.Bits() <= 8) return true;
    std::vector<ColorParts> colors;
    for (const Color& color : palette.Entries())
        colors.push_back(PartsOf(color));
    CityBlockIndices indices(colors);
    ConvertedImage indexed(raster, 8);
    if (!indexed.HasBlock()) return false;
    FillRows(raster, indexed, [&indices](auto row, auto out) { indices.LookUp(row, out); });
    Replace(raster, indexed.DetachBlock(), palette);
    return true;
}

}  // namespace rastrel
