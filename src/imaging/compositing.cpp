#include "imaging/compositing.h"

#include <algorithm>
#include <vector>

#include "imaging/color_operations.h"
#include "imaging/image_colors.h"

namespace rastrel {

namespace {

template <class Operation>
void ComposeTrueColor(RasterImage& target, const RasterImage& other, const Operation& operation) {
    const std::size_t row_bytes = 3 * static_cast<std::size_t>(target.Width());
    PixelReader other_reader(other, PixelForm::kBgr);
    std::vector<std::uint8_t> other_row(other.Bits() == 24 ? 0 : row_bytes);
    std::vector<std::uint8_t> own_row(target.Bits() == 24 ? 0 : row_bytes);
    for (int y = 0; y < target.Height(); ++y) {
        BgrRun b = other_row;
        if (other.Bits() == 24)
            b = other.PictureRow(y).first(row_bytes);
        else
            other_reader.Read(0, y, other_row);
        const auto row = target.PictureRow(y);
        if (target.Bits() == 24) {
            operation.Run(row.first(row_bytes), b, row.data());
            continue;
        }
        Bgr24From32(row.first(own_row.size() / 3 * 4), own_row);
        operation.Run(own_row, b, own_row.data());
        for (std::size_t x = 0; x < own_row.size() / 3; ++x)
            std::copy_n(own_row.data() + 3 * x, 3, row.data() + 4 * x);
    }
}

template <class Operation>
void ComposePalettised(RasterImage& target, const RasterImage& other, const Operation& operation) {
    const auto width = static_cast<std::size_t>(target.Width());
    PixelReader other_reader(other, PixelForm::kBgr);
    NearestIndices nearest(*target.GetPalette());
    const auto entries = target.GetPalette()->Entries();
    std::vector<std::uint8_t> other_row(3 * width);
    std::vector<std::uint8_t> indices(width);
    for (int y = 0; y < target.Height(); ++y) {
        other_reader.Read(0, y, other_row);
        const auto row = target.PictureRow(y);
        UnpackIndices(row, target.Bits(), 0, indices);
        for (std::size_t x = 0; x < width; ++x) {
            const std::uint8_t* b = other_row.data() + 3 * x;
            const auto written =
                operation.At(entries[indices[x]], Color{.red = b[2], .green = b[1], .blue = b[0]});
            if (written) indices[x] = nearest.Of(*written);
        }
        PackIndices(indices, target.Bits(), row);
    }
}

/// Pixel by pixel: what one writes another may read, where pixels overlap.
template <class Operation>
void ComposePixels(RasterImage& target, const RasterImage& other, const Operation& operation) {
    for (int y = 0; y < target.Height(); ++y) {
        for (int x = 0; x < target.Width(); ++x) {
            const auto a = target.GetRgb(x, y);
            const auto b = other.GetRgb(x, y);
            const auto written = a && b ? operation.At(*a, *b) : std::nullopt;
            if (written) target.SetRgb(x, y, *written);
        }
    }
}

template <class Operation>
void Compose(RasterImage& target, const RasterImage& other, const Operation& operation) {
    const bool by_rows = ReadsByRows(target) && (&other == &target || ReadsByRows(other));
    if (by_rows && IsTrueColor(target))
        ComposeTrueColor(target, other, operation);
    else if (by_rows && IsPalettised(target))
        ComposePalettised(target, other, operation);
    else
        ComposePixels(target, other, operation);
}

}  // namespace

bool ApplyMask(RasterImage& target, const RasterImage& mask, bool invert, Color paint) {
    if (target.PixelSize() != mask.PixelSize()) return false;
    Compose(target, mask, MaskPainting(invert, paint));
    return true;
}

void ShiftBrightness(RasterImage& image, std::optional<Color> key, int offset) {
    if (offset == 0 || offset > 255 || offset < -255) return;
    Compose(image, image, BrightnessShift(key, offset));
}

bool Blend(RasterImage& first, const RasterImage& second, std::optional<Color> key, double weight,
           BlendMode mode) {
    if (first.PixelSize() != second.PixelSize()) return false;
    Compose(first, second, Blending(key, weight, mode));
    return true;
}

bool ReplaceColor(RasterImage& target, const RasterImage& source, Color color, int tolerance,
                  Color new_color) {
    if (target.PixelSize() != source.PixelSize()) return false;
    Compose(target, source, ColorReplacement(color, tolerance, new_color));
    return true;
}

}  // namespace rastrel
