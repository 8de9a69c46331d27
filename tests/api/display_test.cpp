// Drawing: pixels read back from the device, against what the image's own pixels say.

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>

#include "support/device.h"
#include "support/gif_recipe.h"
#include "support/images.h"

namespace rastrel_test {
namespace {

constexpr Rgb kBackground = {10, 200, 90};
constexpr int kLeast = std::numeric_limits<int>::min();
constexpr int kMost = std::numeric_limits<int>::max();

/// Colours of which no two are alike, neither black nor white among them.
std::vector<Rgb> ManyColors(int count) {
    std::vector<Rgb> colors;
    for (int i = 0; i < count; ++i)
        colors.push_back({i, 255 - i / 2, (i * 7 + 3) % 250});
    return colors;
}

/// Gives an image a pattern and, up to 8 bits, a palette.
void Paint(const TestImage& image) {
    FillWithPattern(image);
    if (image.Depth() <= 8) {
        ASSERT_EQ(SetPalette(image, ManyColors(1 << image.Depth())), 1);
    }
}

/// The colour that each pixel of a device should have: from its place, or the background.
using Expected = std::function<std::optional<Rgb>(int x, int y)>;

/// A pixel of the picture, whose rows count from the bottom.
std::optional<Rgb> Pixel(const TestImage& image, int x, int y) {
    return image.ColorAt(x, y);
}

/// Compares the whole device; tells the first pixel that differs.
testing::AssertionResult Shows(const TestDevice& device, const Expected& expected) {
    for (int y = 0; y < device.Height(); ++y) {
        for (int x = 0; x < device.Width(); ++x) {
            const Rgb want = expected(x, y).value_or(kBackground);
            const Rgb have = device.At(x, y);
            if (have == want) continue;
            return testing::AssertionFailure()
                   << "at " << x << ", " << y << ": have " << testing::PrintToString(have)
                   << ", want " << testing::PrintToString(want);
        }
    }
    return testing::AssertionSuccess();
}

/// Makes one of an 8-bit image's indices the transparent one, as a file states it.
void MakeTransparent(const TestImage& image, int index) {
    const TestFolder folder;
    const std::string name = folder.Path("transparent.gif");
    ASSERT_EQ(Rastrel_Save(image, name.c_str(), RASTREL_TYPE_GIF), 1);
    Bytes file = FileBytes(name);
    const Bytes control = GraphicControl(1, index);
    constexpr std::ptrdiff_t kBehindGlobalTable = 13 + 3 * 256;
    file.insert(file.begin() + kBehindGlobalTable, control.begin(), control.end());
    folder.Write("transparent.gif", file);
    ASSERT_EQ(Rastrel_Read(image, name.c_str(), RASTREL_TYPE_GIF), 1);
    ASSERT_EQ(Rastrel_GetTransparentColor(image, nullptr, nullptr, nullptr), 1);
}

TEST(Draw, ShowsTheWholeImageAtEveryDepth) {
    for (const int bits : {1, 4, 8, 24, 32}) {
        const TestImage image(13, 7, bits);
        Paint(image);
        const TestDevice device(20, 12, kBackground);
        ASSERT_EQ(Rastrel_Draw(image, device.Handle(), 3, 2, -1, -1, 0, 0), 1);
        EXPECT_TRUE(Shows(device, [&](int x, int y) { return Pixel(image, x - 3, 8 - y); }))
            << bits << " bits";
    }
}

TEST(Draw, ShowsPartsWhereTheyBelong) {
    struct Case {
        const char* what;
        int x, y, width, height, source_x, source_y;
    };
    const Case cases[] = {
        {"inside both", 4, 3, 5, 4, 2, 1},
        {"beyond the upper left of the device", -3, -2, 9, 6, 1, 1},
        {"beyond the lower right of the device", 15, 9, 9, 6, 1, 1},
        {"beyond the right and the top of the image", 2, 1, 8, 6, 9, 4},
        {"the image's height from a higher row on", 1, 1, -1, -1, 0, 3},
        {"before the image's columns", 5, 1, 6, 5, -3, 0},
        {"outside the device", 20, 0, 5, 5, 0, 0},
        {"outside the image", 1, 1, 5, 5, 13, 0},
        {"no columns", 1, 1, 0, 5, 0, 0},
        {"at the ends of the numbers", kMost, kMost, kMost, kMost, 0, 0},
    };
    for (const Case& c : cases) {
        for (const int bits : {1, 4, 8, 24, 32}) {
            const TestImage image(13, 7, bits);
            Paint(image);
            const TestDevice device(20, 12, kBackground);
            EXPECT_EQ(Rastrel_Draw(image, device.Handle(), c.x, c.y, c.width, c.height, c.source_x,
                                   c.source_y),
                      1);
            const int width = c.width == -1 ? 13 : c.width;
            const int height = c.height == -1 ? 7 : c.height;
            EXPECT_TRUE(Shows(device,
                              [&](int x, int y) -> std::optional<Rgb> {
                                  const std::int64_t column = std::int64_t{x} - c.x;
                                  const std::int64_t row = std::int64_t{y} - c.y;
                                  if (column < 0 || column >= width || row < 0 || row >= height)
                                      return std::nullopt;
                                  return Pixel(image, c.source_x + static_cast<int>(column),
                                               c.source_y + height - 1 - static_cast<int>(row));
                              }))
                << c.what << ", " << bits << " bits";
        }
    }
}

TEST(Draw, SucceedsWithoutADeviceAndFailsWithoutARaster) {
    const TestImage image(3, 2, 24);
    EXPECT_EQ(Rastrel_Draw(image, nullptr, 0, 0, -1, -1, 0, 0), 1);
    EXPECT_EQ(Rastrel_Stretch(image, nullptr, 0, 0, -1, -1, 0, 0, -1, -1), 0);
    const TestImage empty;
    const TestDevice device(4, 4, kBackground);
    EXPECT_EQ(Rastrel_Draw(empty, device.Handle(), 0, 0, -1, -1, 0, 0), 0);
    EXPECT_EQ(Rastrel_Draw(-1, device.Handle(), 0, 0, -1, -1, 0, 0), 0);
    EXPECT_EQ(Rastrel_Stretch(empty, device.Handle(), 0, 0, -1, -1, 0, 0, -1, -1), 0);
    EXPECT_EQ(Rastrel_Stretch(99999, device.Handle(), 0, 0, -1, -1, 0, 0, -1, -1), 0);
}

TEST(Stretch, EnlargesEveryDepth) {
    for (const int bits : {1, 4, 8, 24, 32}) {
        const TestImage image(11, 5, bits);
        Paint(image);
        const TestDevice device(40, 20, kBackground);
        // Columns 2 to 8 and the rows 1 to 3, three times as wide and four times as high.
        ASSERT_EQ(Rastrel_Stretch(image, device.Handle(), 5, 3, 21, 12, 2, 1, 7, 3), 1);
        EXPECT_TRUE(Shows(device,
                          [&](int x, int y) -> std::optional<Rgb> {
                              if (x < 5 || x >= 26 || y < 3 || y >= 15) return std::nullopt;
                              return Pixel(image, 2 + (x - 5) / 3, 3 - (y - 3) / 4);
                          }))
            << bits << " bits";
    }
}

TEST(Stretch, TakesWhatIsLeftOutForTheWhole) {
    struct Case {
        const char* what;
        int width, height, source_x, source_y, source_width, source_height;
        int shown_width, shown_height;  ///< of the source
    };
    const Case cases[] = {
        {"all", -1, -1, 0, 0, -1, -1, 8, 6},
        {"twice as large", 16, 12, 0, 0, -1, -1, 8, 6},
        {"the rest of the image", 4, 3, 4, 3, -1, -1, 4, 3},
        {"the rest of the image, twice as large", -1, -1, 4, 3, -1, -1, 4, 3},
        {"the rest of its width", 6, 2, 2, 1, -1, 2, 6, 2},
    };
    const TestImage image(8, 6, 24);
    Paint(image);
    for (const Case& c : cases) {
        const TestDevice device(20, 15, kBackground);
        ASSERT_EQ(Rastrel_Stretch(image, device.Handle(), 1, 1, c.width, c.height, c.source_x,
                                  c.source_y, c.source_width, c.source_height),
                  1);
        const int times_x = (c.width == -1 ? 8 : c.width) / c.shown_width;
        const int times_y = (c.height == -1 ? 6 : c.height) / c.shown_height;
        EXPECT_TRUE(Shows(device, [&](int x, int y) -> std::optional<Rgb> {
            if (x < 1 || x > c.shown_width * times_x || y < 1 || y > c.shown_height * times_y)
                return std::nullopt;
            return Pixel(image, c.source_x + (x - 1) / times_x,
                         c.source_y + c.shown_height - 1 - (y - 1) / times_y);
        })) << c.what;
    }
}

TEST(Stretch, LeavesOutWhatLiesOutside) {
    const TestImage image(6, 4, 8);
    Paint(image);
    const TestDevice device(12, 10, kBackground);
    // The source begins two columns and one row outside, the destination ends outside.
    ASSERT_EQ(Rastrel_Stretch(image, device.Handle(), 0, 0, 20, 12, -2, -1, 10, 6), 1);
    EXPECT_TRUE(
        Shows(device, [&](int x, int y) { return Pixel(image, x / 2 - 2, -1 + 5 - y / 2); }));
}

TEST(Stretch, MirrorsNegativeSizes) {
    const TestImage image(5, 3, 24);
    Paint(image);
    const TestDevice device(12, 8, kBackground);
    // From column 9 and row 5 backward.
    ASSERT_EQ(Rastrel_Stretch(image, device.Handle(), 9, 5, -5, -3, 0, 0, 5, 3), 1);
    EXPECT_TRUE(Shows(device, [&](int x, int y) -> std::optional<Rgb> {
        if (x < 5 || x > 9 || y < 3 || y > 5) return std::nullopt;
        return Pixel(image, 9 - x, y - 3);
    }));
}

TEST(Stretch, CutsLargeSourcesWithoutASeam) {
    struct Case {
        int width, height, times;
    };
    // Odd sides and sides just above the limit, those that are cut twice, and one side alone.
    const Case cases[] = {{2001, 3, 1}, {2000, 2, 2}, {3, 1025, 1}, {1026, 1030, 1}, {4099, 5, 1}};
    for (const Case& c : cases) {
        for (const int bits : {1, 8, 24}) {
            const TestImage image(c.width, c.height, bits);
            Paint(image);
            const TestDevice device(c.width * c.times + 2, c.height * c.times + 2, kBackground);
            ASSERT_EQ(Rastrel_Stretch(image, device.Handle(), 1, 1, c.width * c.times,
                                      c.height * c.times, 0, 0, c.width, c.height),
                      1);
            EXPECT_TRUE(Shows(device,
                              [&](int x, int y) -> std::optional<Rgb> {
                                  if (x < 1 || y < 1) return std::nullopt;
                                  return Pixel(image, (x - 1) / c.times,
                                               c.height - 1 - (y - 1) / c.times);
                              }))
                << c.width << " x " << c.height << ", " << bits << " bits";
        }
    }
}

TEST(Stretch, CutsPartsOfAnImageAndMissingSizesToo) {
    const TestImage image(1500, 9, 8);
    Paint(image);
    const TestDevice device(1500, 12, kBackground);
    // Rows 2 to 6 of the picture's columns from 100 on; the height is what is left above row 2.
    ASSERT_EQ(Rastrel_Stretch(image, device.Handle(), 0, 0, 1400, 7, 100, 2, 1400, -1), 1);
    EXPECT_TRUE(Shows(device, [&](int x, int y) -> std::optional<Rgb> {
        if (y >= 7) return std::nullopt;
        return Pixel(image, x + 100, 8 - y);
    }));
}

TEST(Stretch, ReducesToPixelsOfTheImage) {
    // Which pixels are chosen is the device's affair, not whether they are pixels of the image in
    // their order.
    const TestImage image(4096, 4, 24);
    for (int x = 0; x < 4096; ++x) {
        for (int y = 0; y < 4; ++y)
            Rastrel_SetRGB(image, x, y, x / 256, x % 256, y);
    }
    const TestDevice device(1000, 2, kBackground);
    ASSERT_EQ(Rastrel_Stretch(image, device.Handle(), 0, 0, 1000, 2, 0, 0, 4096, 4), 1);
    for (int x = 0; x < 1000; ++x) {
        const Rgb color = device.At(x, 0);
        const double column = color[0] * 256 + color[1];
        EXPECT_NEAR(column, (x + 0.5) * 4.096, 8) << x;
        EXPECT_GE(color[2], 2) << "the upper half shows above";
        EXPECT_LT(device.At(x, 1)[2], 2);
    }
}

TEST(Stretch, DrawsNothingQuicklyForSenselessSizes) {
    const TestImage image(5, 5, 8);
    Paint(image);
    struct Case {
        int x, y, width, height, source_x, source_y, source_width, source_height;
    };
    const Case cases[] = {
        {kMost, kMost, 100, 100, 0, 0, 5, 5},
        {0, 0, 0, 10, 0, 0, 5, 5},
        {0, 0, 10, 10, 0, 0, 0, 5},
        {0, 0, 10, 10, 5, 0, kMost, kMost},
        {0, 0, 10, 10, kMost, kMost, kMost, 2000},
        {0, 0, kMost, kMost, kLeast, kLeast, 2000, 2000},
        {kLeast, 0, 50, 10, 0, 0, 5, 5},
    };
    for (const Case& c : cases) {
        const TestDevice device(10, 10, kBackground);
        EXPECT_EQ(Rastrel_Stretch(image, device.Handle(), c.x, c.y, c.width, c.height, c.source_x,
                                  c.source_y, c.source_width, c.source_height),
                  1)
            << &c - cases;
        EXPECT_TRUE(Shows(device, [](int, int) { return std::nullopt; })) << &c - cases;
    }
}

TEST(Stretch, FindsTheImageInAVastSource) {
    const TestImage image(4, 4, 24);
    Rastrel_Fill(image, 1, 2, 3);
    const TestDevice device(8, 8, kBackground);
    // 2^30 columns and rows to 8 pixels: the image is under no pixel's centre, and it is left out
    // without walking through all the rest.
    EXPECT_EQ(Rastrel_Stretch(image, device.Handle(), 0, 0, 8, 8, 0, 0, 1 << 30, 1 << 30), 1);
}

TEST(Stretch, LeavesTheBackgroundUnderTransparentPixels) {
    struct Case {
        const char* what;
        int width, height, times;
    };
    const Case cases[] = {
        {"one to one", 17, 9, 1}, {"enlarged", 17, 9, 3}, {"in parts", 1100, 1030, 1}};
    for (const Case& c : cases) {
        const TestImage image(c.width, c.height, 8);
        Paint(image);
        MakeTransparent(image, 77);
        // Every third pixel is transparent.
        for (int i = 0; i < c.width * c.height; i += 3)
            Rastrel_SetIndex(image, i % c.width, i / c.width, 77);
        const std::string before = image.Fingerprint();
        const TestDevice device(c.width * c.times, c.height * c.times, kBackground);
        ASSERT_EQ(Rastrel_Stretch(image, device.Handle(), 0, 0, device.Width(), device.Height(), 0,
                                  0, c.width, c.height),
                  1);
        EXPECT_TRUE(Shows(device, [&](int x, int y) -> std::optional<Rgb> {
            const int column = x / c.times;
            const int row = c.height - 1 - y / c.times;
            if (Rastrel_GetIndex(image, column, row) == 77) return std::nullopt;
            return Pixel(image, column, row);
        })) << c.what;
        EXPECT_EQ(image.Fingerprint(), before) << c.what;
    }
}

TEST(Stretch, LeavesTheBackgroundAtOneBitToo) {
    const TestImage image(9, 4, 8);
    ASSERT_EQ(SetPalette(image, {{200, 30, 40}, {50, 60, 70}}), 1);
    Draw(image, {"1.1.1.1.1", ".1.1.1.1.", "111111111", "........."});
    MakeTransparent(image, 1);
    ASSERT_EQ(Rastrel_Conv8To1(image), 1);
    const TestDevice device(9, 4, kBackground);
    ASSERT_EQ(Rastrel_Stretch(image, device.Handle(), 0, 0, -1, -1, 0, 0, -1, -1), 1);
    EXPECT_TRUE(Shows(device, [&](int x, int y) -> std::optional<Rgb> {
        if (Rastrel_GetIndex(image, x, 3 - y) == 1) return std::nullopt;
        return Rgb{200, 30, 40};
    }));
}

TEST(Stretch, LeavesTransparentImagesAsTheyAreWhenTheDeviceFails) {
    const TestImage image(20, 10, 8);
    Paint(image);
    MakeTransparent(image, 5);
    const std::string before = image.Fingerprint();
    Rastrel_Stretch(image, TestDevice::Broken(), 0, 0, -1, -1, 0, 0, -1, -1);
    EXPECT_EQ(image.Fingerprint(), before);
    const TestImage opaque(20, 10, 24);
    EXPECT_EQ(Rastrel_Stretch(opaque, TestDevice::Broken(), 0, 0, -1, -1, 0, 0, -1, -1), 0);
    EXPECT_EQ(Rastrel_Draw(opaque, TestDevice::Broken(), 0, 0, -1, -1, 0, 0), 1);
}

TEST(Stretch, DrawsSixteenBits) {
    // Five bits a channel, blue lowest: a red, a green, a blue and a white pixel.
    BmpRecipe recipe;
    recipe.width = 4;
    recipe.height = 1;
    recipe.bits = 16;
    recipe.pixels = FieldWriter().U16(0x7c00).U16(0x03e0).U16(0x001f).U16(0x7fff).Done();
    const TestFolder folder;
    const TestImage image;
    ASSERT_EQ(Rastrel_Read(image, folder.Write("a.bmp", recipe.File()).c_str(), -1), 1);
    const TestDevice device(8, 1, kBackground);
    ASSERT_EQ(Rastrel_Stretch(image, device.Handle(), 0, 0, 8, 1, 0, 0, -1, -1), 1);
    const Rgb colors[] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 255}};
    EXPECT_TRUE(Shows(device, [&](int x, int) { return colors[x / 2]; }));
    ASSERT_EQ(Rastrel_Draw(image, device.Handle(), 2, 0, 3, 1, 1, 0), 1);
    EXPECT_EQ(device.At(2, 0), colors[1]);
    EXPECT_EQ(device.At(4, 0), colors[3]);
}

}  // namespace
}  // namespace rastrel_test
