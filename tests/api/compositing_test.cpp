// Masks, brightness, blending and replacement of colours, against what is told for one pixel: read
// the colours, write one.

#include <cmath>
#include <functional>
#include <limits>

#include "support/images.h"

namespace rastrel_test {
namespace {

using Rule = std::function<std::optional<Rgb>(const Rgb& own, const Rgb& other)>;

/// Applies a rule by the functions for single pixels.
void ApplyByPixels(const TestImage& target, int other, const Rule& rule) {
    for (int y = 0; y < target.Height(); ++y) {
        for (int x = 0; x < target.Width(); ++x) {
            const auto own = target.ColorAt(x, y);
            std::uint8_t r = 0;
            std::uint8_t g = 0;
            std::uint8_t b = 0;
            if (!own || Rastrel_GetRGB(other, x, y, &r, &g, &b) != 1) continue;
            if (const auto written = rule(*own, {r, g, b}))
                Rastrel_SetRGB(target, x, y, (*written)[0], (*written)[1], (*written)[2]);
        }
    }
}

/// The kinds of images that differ in how their colours are read and written.
struct Kind {
    const char* name;
    int bits;
    std::size_t palette;   ///< its length, 0 for none
    bool palettised_type;  ///< written through the palette
};

const std::vector<Kind> kKinds = {
    {"24 bits", 24, 0, false},
    {"32 bits", 32, 0, false},
    {"8 bits", 8, 256, true},
    {"8 bits, short palette", 8, 100, true},
    {"8 bits by threes", 8, 256, false},
    {"8 bits without palette", 8, 0, false},
    {"4 bits", 4, 16, true},
    {"1 bit", 1, 2, true},
};

/// An image with few colours, so that keys and masks find some: black, white, pure red and others.
void Make(const TestImage& image, const Kind& kind, int width, int height, unsigned seed) {
    ASSERT_EQ(Rastrel_Create(image, width, height, kind.bits), 1);
    if (kind.palettised_type && kind.bits == 8) {
        const Bytes indices(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        ASSERT_EQ(Rastrel_CreateFromByte(image, indices.data(), width, height), 1);
    }
    std::vector<Rgb> colors;
    for (std::size_t i = 0; i < kind.palette; ++i) {
        const int level = static_cast<int>(i * 255 / (kind.palette - 1));
        colors.push_back(i % 3 == 0 ? Rgb{level, 255 - level, 7} : Rgb{level, level, level});
    }
    if (kind.palette > 0) SetPalette(image, colors);
    FillWithPattern(image, seed);
    if (kind.bits < 24) return;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int level = (x + y) % 2 * 255;
            const int which = (x * 7 + y * 5 + static_cast<int>(seed)) % 4;
            if (which == 0) Rastrel_SetRGB(image, x, y, level, level, level);
            if (which == 1) Rastrel_SetRGB(image, x, y, 255, 0, 0);
        }
    }
}

using Call = std::function<int(int target, int other)>;

/// Does a call on an image that is its own second one, and the rule by pixels on a copy.
void CompareWithItself(const Call& call, const Rule& rule) {
    for (const Kind& kind : kKinds) {
        SCOPED_TRACE(std::string(kind.name) + " with itself");
        const TestImage target;
        const TestImage expected;
        Make(target, kind, 70, 5, 3);
        Rastrel_Copy(expected, target);
        ApplyByPixels(expected, expected, rule);
        ASSERT_EQ(call(target, target), 1);
        ASSERT_EQ(target.StoredBytes(), expected.StoredBytes());
    }
}

/// The same for a pair of every two kinds, too.
void CompareAllKinds(const Call& call, const Rule& rule) {
    for (const Kind& own : kKinds) {
        for (const Kind& other : kKinds) {
            for (const int width : {1, 37, 130}) {
                SCOPED_TRACE(std::string(own.name) + " with " + other.name);
                const TestImage target;
                const TestImage expected;
                const TestImage second;
                Make(target, own, width, 9, 1);
                Make(second, other, width, 9, 2);
                Rastrel_Copy(expected, target);
                ApplyByPixels(expected, second, rule);
                ASSERT_EQ(call(target, second), 1);
                ASSERT_EQ(target.StoredBytes(), expected.StoredBytes());
            }
        }
    }
    CompareWithItself(call, rule);
}

TEST(ApplyMask, PaintsAsTold) {
    const Rgb paint = {200, 30, 90};
    for (const int invert : {0, 1}) {
        CompareAllKinds(
            [=](int target, int mask) {
                return Rastrel_ApplyMask(target, mask, invert, paint[0], paint[1], paint[2]);
            },
            [=](const Rgb&, const Rgb& mask) -> std::optional<Rgb> {
                bool paints = false;
                for (const int channel : mask)
                    paints = paints || (invert != 0 ? channel != 0 : channel == 0);
                return paints ? std::optional(paint) : std::nullopt;
            });
    }
}

TEST(ApplyMask, PureRedIsPaintedBothWays) {
    const TestImage mask(1, 1, 24);
    Rastrel_Fill(mask, 255, 0, 0);
    for (const int invert : {0, 1}) {
        const TestImage target(1, 1, 24);
        EXPECT_EQ(Rastrel_ApplyMask(target, mask, invert, 1, 2, 3), 1);
        EXPECT_EQ(target.ColorAt(0, 0), (Rgb{1, 2, 3}));
    }
}

TEST(Luminance, ShiftsAllButTheKey) {
    for (const int flag : {0, 1}) {
        for (const int offset : {-255, -17, 1, 40, 255}) {
            CompareWithItself(
                [=](int target, int) { return Rastrel_Luminance(target, flag, 255, 0, 0, offset); },
                [=](const Rgb& own, const Rgb&) -> std::optional<Rgb> {
                    if (flag != 0 && own == Rgb{255, 0, 0}) return std::nullopt;
                    Rgb shifted = own;
                    for (int& channel : shifted)
                        channel = std::min(std::max(channel + offset, 0), 255);
                    return shifted;
                });
        }
    }
}

TEST(Luminance, OffsetsOutOfRangeChangeNothing) {
    const TestImage image(5, 4, 24);
    FillWithPattern(image);
    const Bytes before = image.StoredBytes();
    for (const int offset : {0, 256, 300, -256, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(Rastrel_Luminance(image, 0, 0, 0, 0, offset), 1) << offset;
        EXPECT_EQ(image.StoredBytes(), before) << offset;
    }
}

/// The blended channel, as the formulas are told.
int Blended(int mode, int a, int b, double weight) {
    const double x = a;
    const double y = b;
    const double screen = (255 - x) * (255 - y) / 255;
    const double applied[] = {y,
                              x * y / 255,
                              255 - screen,
                              a < 128 ? 2 * x * y / 255 : 255 - 2 * (255 - x) * (255 - y) / 255,
                              std::min(x, y),
                              std::max(x, y),
                              std::abs(x - y),
                              x + y};
    const double clamped = std::min(std::max(applied[mode], 0.0), 255.0);
    const double value = x * (1 - weight) + clamped * weight;
    if (std::isnan(value)) return 0;
    return static_cast<int>(std::min(std::max(std::trunc(value), 0.0), 255.0));
}

TEST(Fusion, BlendsAsTheFormulas) {
    for (int mode = 0; mode < 8; ++mode) {
        for (const double weight : {0.0, 0.3, 1.0, -0.5, 2.75}) {
            for (const int flag : {0, 1}) {
                CompareAllKinds(
                    [=](int first, int second) {
                        return mode == 0
                                   ? Rastrel_Fusion(first, second, flag, 255, 255, 255, weight)
                                   : Rastrel_FusionEx(first, second, flag, 255, 255, 255, weight,
                                                      mode);
                    },
                    [=](const Rgb& a, const Rgb& b) -> std::optional<Rgb> {
                        if (flag != 0 && b == Rgb{255, 255, 255}) return a;
                        Rgb result;
                        for (std::size_t i = 0; i < 3; ++i)
                            result[i] = Blended(mode, a[i], b[i], weight);
                        return result;
                    });
            }
        }
    }
}

TEST(Fusion, EveryPairOfChannels) {
    // 65,536 grey pixels: every a with every b, and enough of them for tables to pay.
    const TestImage first(256, 256, 24);
    const TestImage second(256, 256, 24);
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x)
            Rastrel_SetRGB(second, x, y, x, x, x);
    }
    const double infinite = std::numeric_limits<double>::infinity();
    for (int mode = 0; mode < 8; ++mode) {
        for (const double weight :
             {0.1, 0.3, 0.5, 0.7, 0.999, -3.0, 1e300, infinite, std::nan("")}) {
            for (int y = 0; y < 256; ++y) {
                for (int x = 0; x < 256; ++x)
                    Rastrel_SetRGB(first, x, y, y, y, y);
            }
            ASSERT_EQ(Rastrel_FusionEx(first, second, 0, 0, 0, 0, weight, mode), 1);
            int wrong = 0;
            for (int y = 0; y < 256; ++y) {
                for (int x = 0; x < 256; ++x)
                    wrong += first.ColorAt(x, y)->front() != Blended(mode, y, x, weight) ? 1 : 0;
            }
            EXPECT_EQ(wrong, 0) << "mode " << mode << ", weight " << weight;
        }
    }
}

TEST(Modify, ReplacesColoursWithinTheTolerance) {
    for (const int tolerance : {-1, 0, 20, 255, 1000}) {
        CompareAllKinds(
            [=](int target, int source) {
                return Rastrel_Modify(target, source, 250, 10, 5, 9, 8, 7, tolerance);
            },
            [=](const Rgb&, const Rgb& source) -> std::optional<Rgb> {
                const bool is_near = std::abs(source[0] - 250) <= tolerance &&
                                     std::abs(source[1] - 10) <= tolerance &&
                                     std::abs(source[2] - 5) <= tolerance;
                return is_near ? Rgb{9, 8, 7} : source;
            });
    }
}

TEST(Compositing, RefusesWhatDoesNotFit) {
    const TestImage image(4, 3, 24);
    FillWithPattern(image);
    const TestImage wider(5, 3, 24);
    const TestImage higher(4, 4, 24);
    const TestImage empty;
    const Bytes before = image.StoredBytes();
    for (const int other : {int{wider}, int{higher}, int{empty}, -1, 9999}) {
        EXPECT_EQ(Rastrel_ApplyMask(image, other, 0, 1, 2, 3), 0);
        EXPECT_EQ(Rastrel_Fusion(image, other, 0, 0, 0, 0, 0.5), 0);
        EXPECT_EQ(Rastrel_Fusion(other, image, 0, 0, 0, 0, 0.5), 0);
        EXPECT_EQ(Rastrel_Modify(image, other, 0, 0, 0, 1, 1, 1, 5), 0);
    }
    for (const int mode : {-1, 8, 100})
        EXPECT_EQ(Rastrel_FusionEx(image, image, 0, 0, 0, 0, 0.5, mode), 0);
    EXPECT_EQ(Rastrel_Luminance(empty, 0, 0, 0, 0, 5), 0);
    EXPECT_EQ(image.StoredBytes(), before);
}

}  // namespace
}  // namespace rastrel_test
