#include "imaging/color_operations.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "imaging/color_operations_kernels.h"

namespace rastrel {

namespace {

simd::Bgr BgrOf(Color color) {
    return {color.blue, color.green, color.red};
}

std::uint8_t Shifted(std::uint8_t channel, int offset) {
    return static_cast<std::uint8_t>(std::clamp(channel + offset, 0, 255));
}

/// Toward zero, and into the range; 0 for what is no number.
std::uint8_t Truncated(double value) {
    if (!(value > 0)) return 0;
    return static_cast<std::uint8_t>(std::min(value, 255.0));
}

/// The pixels from one on that a kernel left over, one by one.
template <class Operation>
void RunOneByOne(const Operation& operation, std::size_t first, BgrRun a, BgrRun b,
                 std::uint8_t* out) {
    for (std::size_t at = 3 * first; at + 3 <= a.size(); at += 3) {
        const Color own = ColorAt(a.data() + at);
        const auto written = operation.At(own, ColorAt(b.data() + at));
        const simd::Bgr result = BgrOf(written.value_or(own));
        std::copy(result.begin(), result.end(), out + at);
    }
}

double Applied(BlendMode mode, double a, double b) {
    const auto screened = [](double x, double y, double times) {
        return 255 - times * (255 - x) * (255 - y) / 255;
    };
    switch (mode) {
        case BlendMode::kMultiply:
            return a * b / 255;
        case BlendMode::kScreen:
            return screened(a, b, 1);
        case BlendMode::kOverlay:
            return a < 128 ? 2 * a * b / 255 : screened(a, b, 2);
        case BlendMode::kDarken:
            return std::min(a, b);
        case BlendMode::kLighten:
            return std::max(a, b);
        case BlendMode::kDifference:
            return std::abs(a - b);
        case BlendMode::kAdd:
            return a + b;
        default:
            return b;
    }
}

}  // namespace

std::optional<Color> MaskPainting::At(Color /*a*/, Color b) const {
    const bool has_zero = b.red == 0 || b.green == 0 || b.blue == 0;
    const bool has_other = b.red != 0 || b.green != 0 || b.blue != 0;
    return (invert_ ? has_other : has_zero) ? std::optional(paint_) : std::nullopt;
}

void MaskPainting::Run(BgrRun a, BgrRun b, std::uint8_t* out) const {
    const std::size_t done =
        simd::PaintMasked(a.data(), b.data(), a.size() / 3, invert_, BgrOf(paint_), out);
    RunOneByOne(*this, done, a, b, out);
}

std::optional<Color> BrightnessShift::At(Color a, Color /*b*/) const {
    if (key_ == a) return std::nullopt;
    return Color{.red = Shifted(a.red, offset_),
                 .green = Shifted(a.green, offset_),
                 .blue = Shifted(a.blue, offset_)};
}

void BrightnessShift::Run(BgrRun a, BgrRun /*b*/, std::uint8_t* out) const {
    // Pieces that stay in the first-level cache, as pixels of the key colour are put back.
    constexpr std::size_t kPieceBytes = 3072;
    std::array<std::uint8_t, kPieceBytes> before;
    for (std::size_t at = 0; at < a.size(); at += kPieceBytes) {
        const BgrRun piece = a.subspan(at, std::min(kPieceBytes, a.size() - at));
        if (key_) std::copy(piece.begin(), piece.end(), before.begin());
        const std::size_t done = simd::ShiftBytes(piece.data(), piece.size(), offset_, out + at);
        for (std::size_t i = done; i < piece.size(); ++i)
            out[at + i] = Shifted(piece[i], offset_);
        if (!key_) continue;
        const simd::Bgr key = BgrOf(*key_);
        const std::size_t pixels = piece.size() / 3;
        for (std::size_t i =
                 simd::KeepWhereKey(before.data(), pixels, key, before.data(), out + at);
             i < pixels; ++i) {
            if (ColorAt(before.data() + 3 * i) == *key_)
                std::copy(key.begin(), key.end(), out + at + 3 * i);
        }
    }
}

std::uint8_t Blending::Channel(std::uint8_t a, std::uint8_t b) const {
    const double applied = std::clamp(Applied(mode_, a, b), 0.0, 255.0);
    return Truncated(a * (1 - weight_) + applied * weight_);
}

std::optional<Color> Blending::At(Color a, Color b) const {
    if (key_ == b) return a;
    return Color{.red = Channel(a.red, b.red),
                 .green = Channel(a.green, b.green),
                 .blue = Channel(a.blue, b.blue)};
}

void Blending::BlendBytes(BgrRun a, BgrRun b, std::uint8_t* out) const {
    std::size_t i = 0;
    if (std::isfinite(weight_))
        i = simd::BlendBytes(a.data(), b.data(), a.size(), weight_, mode_, out);
    for (; i < a.size(); ++i)
        out[i] = Channel(a[i], b[i]);
}

void Blending::Run(BgrRun a, BgrRun b, std::uint8_t* out) const {
    if (!key_) {
        BlendBytes(a, b, out);
        return;
    }
    constexpr std::size_t kPieceBytes = 3072;
    std::array<std::uint8_t, kPieceBytes> blended;
    const simd::Bgr key = BgrOf(*key_);
    for (std::size_t at = 0; at < a.size(); at += kPieceBytes) {
        const BgrRun own = a.subspan(at, std::min(kPieceBytes, a.size() - at));
        const BgrRun other = b.subspan(at, own.size());
        const std::size_t pixels = own.size() / 3;
        BlendBytes(own, other, blended.data());
        for (std::size_t i =
                 simd::KeepWhereKey(other.data(), pixels, key, own.data(), blended.data());
             i < pixels; ++i) {
            if (ColorAt(other.data() + 3 * i) == *key_)
                std::copy_n(own.data() + 3 * i, 3, blended.data() + 3 * i);
        }
        std::copy_n(blended.data(), own.size(), out + at);
    }
}

ColorReplacement::ColorReplacement(Color color, int tolerance, Color new_color)
    : color_(color), tolerance_(std::min(tolerance, 255)), new_color_(new_color) {}

std::optional<Color> ColorReplacement::At(Color /*a*/, Color b) const {
    const auto is_near = [this](int x, int y) { return std::abs(x - y) <= tolerance_; };
    const bool replaces = is_near(b.red, color_.red) && is_near(b.green, color_.green) &&
                          is_near(b.blue, color_.blue);
    return replaces ? new_color_ : b;
}

void ColorReplacement::Run(BgrRun a, BgrRun b, std::uint8_t* out) const {
    std::size_t done = 0;
    if (tolerance_ >= 0)
        done = simd::ReplaceNear(b.data(), b.size() / 3, BgrOf(color_),
                                 static_cast<std::uint8_t>(tolerance_), BgrOf(new_color_), out);
    RunOneByOne(*this, done, a, b, out);
}

}  // namespace rastrel
