// What only surfaces in memory have: their bytes, and bitmaps that are surfaces.

#include <cstdlib>
#include <memory>

#include "support/device.h"
#include "support/images.h"

namespace rastrel_test {
namespace {

/// A surface within a larger buffer, every byte of which has the same value at first.
class FramedSurface {
  public:
    static constexpr std::uint8_t kUntouched = 0x5a;

    FramedSurface(int width, int height, int spare_bytes)
        : stride_(width * 4 + spare_bytes),
          bytes_(static_cast<std::size_t>(stride_ * (height + 2)), kUntouched),
          surface_{width, height, stride_, bytes_.data() + stride_ + 1} {}

    [[nodiscard]] RastrelDC Handle() { return &surface_; }
    [[nodiscard]] Bytes Pixel(int x, int y) const {
        const std::uint8_t* pixel = surface_.pixels + y * stride_ + x * 4;
        return {pixel, pixel + 4};
    }
    /// How many bytes outside the surface's pixels have changed.
    [[nodiscard]] int ChangedOutside() const {
        int changed = 0;
        for (std::size_t i = 0; i < bytes_.size(); ++i) {
            const auto place = static_cast<std::ptrdiff_t>(i) - stride_ - 1;
            const bool inside = place >= 0 && place < stride_ * surface_.height &&
                                place % stride_ < surface_.width * 4;
            if (!inside && bytes_[i] != kUntouched) ++changed;
        }
        return changed;
    }

  private:
    int stride_;
    Bytes bytes_;
    RastrelSurface surface_;
};

TEST(Surface, IsWrittenWithinItsPixelsOnly) {
    for (const int bits : {1, 4, 8, 24, 32}) {
        for (int width = 1; width < 80; width += 3) {
            const TestImage image(width + 5, 6, bits);
            FillWithPattern(image);
            FramedSurface surface(width, 4, 7);
            EXPECT_EQ(Rastrel_Draw(image, surface.Handle(), -2, -1, -1, -1, 0, 0), 1);
            EXPECT_EQ(Rastrel_Stretch(image, surface.Handle(), -3, -2, 2 * width, 9, 0, 0, -1, -1),
                      1);
            EXPECT_EQ(surface.ChangedOutside(), 0) << width << " wide, " << bits << " bits";
        }
    }
}

TEST(Surface, HasZeroOrTheAlphaInItsUnusedByte) {
    struct Case {
        int bits;
        Bytes pixel;
    };
    const Case cases[] = {{1, {3, 2, 1, 0}},
                          {4, {3, 2, 1, 0}},
                          {8, {3, 2, 1, 0}},
                          {24, {7, 7, 7, 0}},
                          {32, {7, 7, 7, 7}}};
    for (const Case& c : cases) {
        const TestImage image(40, 2, c.bits);
        std::fill_n(Rastrel_GetRawImage(image), 2 * Rastrel_GetEffWidth(image),
                    static_cast<std::uint8_t>(c.bits <= 8 ? 0 : 7));
        if (c.bits <= 8) SetPalette(image, {{1, 2, 3}, {4, 5, 6}});
        FramedSurface drawn(40, 2, 0);
        Rastrel_Draw(image, drawn.Handle(), 0, 0, -1, -1, 0, 0);
        FramedSurface stretched(80, 4, 0);
        Rastrel_Stretch(image, stretched.Handle(), 0, 0, 80, 4, 0, 0, -1, -1);
        for (const int x : {0, 17, 39}) {
            EXPECT_EQ(drawn.Pixel(x, 1), c.pixel) << c.bits << " bits, at " << x;
            EXPECT_EQ(stretched.Pixel(x, 1), c.pixel) << c.bits << " bits, at " << x;
        }
    }
}

TEST(Surface, TakesThePixelUnderEachCentre) {
    const TestImage image(100, 100, 8);
    Rastrel_SetGrayPalette(image);
    for (int i = 0; i < 10000; ++i)
        Rastrel_SetIndex(image, i % 100, i / 100, i % 100);
    for (const int width : {1, 2, 3, 7, 64, 99, 100, 101, 250, 333}) {
        const TestDevice device(width, 1, {});
        ASSERT_EQ(Rastrel_Stretch(image, device.Handle(), 0, 0, width, 1, 0, 0, 100, 100), 1);
        for (int x = 0; x < width; ++x)
            ASSERT_EQ(device.At(x, 0)[0], (2 * x + 1) * 100 / (2 * width)) << width << ", " << x;
    }
}

TEST(Surface, ThatMakesNoSenseIsLeftAlone) {
    const TestImage image(3, 3, 24);
    Bytes pixels(100, 9);
    RastrelSurface surfaces[] = {{3, 3, 11, pixels.data()},
                                 {0, 3, 12, pixels.data()},
                                 {3, -1, 12, pixels.data()},
                                 {3, 3, -12, pixels.data()},
                                 {3, 3, 12, nullptr}};
    for (RastrelSurface& surface : surfaces) {
        EXPECT_EQ(Rastrel_Stretch(image, &surface, 0, 0, -1, -1, 0, 0, -1, -1), 0);
        EXPECT_EQ(Rastrel_Draw(image, &surface, 0, 0, -1, -1, 0, 0), 1);
        const TestImage made;
        EXPECT_EQ(Rastrel_CreateFromBitmap(made, &surface), 0);
        EXPECT_EQ(Rastrel_GetImageType(made), -1);
    }
    EXPECT_EQ(pixels, Bytes(100, 9));
}

TEST(Surface, ShowsRunLengthCodedImages) {
    struct Case {
        const char* what;
        std::uint32_t compression;
        int bits;
        Bytes data;
        Picture shown;
    };
    const Case cases[] = {
        {"runs, a literal and a move of 8 bits",
         1,
         8,
         {4, 1, 0, 3, 2, 3, 1, 0, 0, 0, 1, 2, 0, 2, 3, 1, 2, 3, 0, 1},
         {"....33.", "2......", "1111231"}},
        {"runs and a literal of 4 bits",
         2,
         4,
         {5, 0x12, 0, 0, 0, 5, 0x31, 0x23, 0x10, 0, 0, 1},
         {".......", "31231..", "12121.."}},
        {"cut off within a literal", 1, 8, {3, 1, 0, 9, 1, 1}, {".......", ".......", "111...."}},
        {"more than there is room for",
         1,
         8,
         {200, 3, 0, 2, 255, 255, 9, 1},
         {".......", ".......", "3333333"}},
    };
    for (const Case& c : cases) {
        BmpRecipe recipe;
        recipe.width = 7;
        recipe.height = 3;
        recipe.bits = static_cast<std::uint16_t>(c.bits);
        recipe.compression = c.compression;
        recipe.image_size = static_cast<std::uint32_t>(c.data.size());
        recipe.colors_used = 4;
        recipe.table = {9, 9, 9, 0, 10, 0, 0, 0, 0, 20, 0, 0, 0, 0, 30, 0};
        recipe.pixels = c.data;
        const TestFolder folder;
        const TestImage image;
        ASSERT_EQ(Rastrel_Read(image, folder.Write("a.bmp", recipe.File()).c_str(), -1), 1)
            << c.what;
        const Bytes before = image.StoredBytes();
        const TestDevice device(7, 3, {1, 1, 1});
        ASSERT_EQ(Rastrel_Stretch(image, device.Handle(), 0, 0, -1, -1, 0, 0, -1, -1), 1) << c.what;
        const Rgb colors[] = {{9, 9, 9}, {0, 0, 10}, {0, 20, 0}, {30, 0, 0}};
        for (int y = 0; y < 3; ++y) {
            for (int x = 0; x < 7; ++x) {
                const char shown =
                    c.shown[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
                EXPECT_EQ(device.At(x, y), colors[shown == '.' ? 0 : shown - '0'])
                    << c.what << " at " << x << ", " << y;
            }
        }
        EXPECT_EQ(image.StoredBytes(), before) << c.what;
    }
}

TEST(Bitmap, IsASurfaceInOneBlock) {
    for (const int bits : {1, 4, 8, 24, 32}) {
        const TestImage image(13, 7, bits);
        FillWithPattern(image);
        if (bits <= 8) Rastrel_SetGrayPalette(image);
        const std::unique_ptr<RastrelSurface, decltype(&std::free)> bitmap(
            Rastrel_Copy2HBitmap(image), &std::free);
        ASSERT_NE(bitmap, nullptr);
        EXPECT_EQ(bitmap->width, 13);
        EXPECT_EQ(bitmap->height, 7);
        const TestImage again;
        ASSERT_EQ(Rastrel_CreateFromBitmap(again, bitmap.get()), 1);
        EXPECT_EQ(again.Depth(), 32);
        EXPECT_EQ(Rastrel_GetImageType(again), RASTREL_TYPE_BMP);
        for (int y = 0; y < 7; ++y) {
            for (int x = 0; x < 13; ++x)
                ASSERT_EQ(again.ColorAt(x, y), image.ColorAt(x, y)) << bits << " bits";
        }
        Bytes pixels(13 * 7 * 4);
        Rastrel_GetImageByte(again, pixels.data(), 32, 0, 0, 13, 7);
        for (std::size_t i = 3; i < pixels.size(); i += 4)
            ASSERT_EQ(pixels[i], 255) << "the unused byte is no alpha";
    }
}

TEST(Bitmap, IsNoneWithoutAnImage) {
    const TestImage empty;
    EXPECT_EQ(Rastrel_Copy2HBitmap(empty), nullptr);
    EXPECT_EQ(Rastrel_Copy2HBitmap(-1), nullptr);
    EXPECT_EQ(Rastrel_CreateFromBitmap(-1, nullptr), 0);
    const TestImage image(3, 3, 24);
    EXPECT_EQ(Rastrel_CreateFromBitmap(image, nullptr), 0);
    EXPECT_EQ(Rastrel_GetImageType(image), -1) << "the old image is gone all the same";
}

TEST(Desktop, IsNotThere) {
    const TestImage image(3, 3, 24);
    EXPECT_EQ(Rastrel_CopyToClipboard(image, nullptr), 0);
    std::array<char, 260> name = {'x'};
    int type = 77;
    EXPECT_EQ(Rastrel_DialogSave(image, name.data(), &type), 0);
    EXPECT_EQ(name[0], 'x');
    EXPECT_EQ(type, 77);
    int window = 0;
    EXPECT_EQ(Rastrel_CreateFromWindow(image, &window), 0);
    EXPECT_EQ(Rastrel_CreateFromWindowEX(image, &window, 0, 0, -1, -1, 1), 0);
}

}  // namespace
}  // namespace rastrel_test
