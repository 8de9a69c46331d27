// The bitmap block as the interface shows it: rows, header, colour table, single pixels, palettes.

#include "support/images.h"

namespace rastrel_test {
namespace {

TEST(Raster, RowsArePaddedToFourBytes) {
    struct Case {
        int width, bits, row_bytes;
    };
    for (const Case& c : {Case{1, 1, 4},
                          {32, 1, 4},
                          {33, 1, 8},
                          {1, 4, 4},
                          {9, 4, 8},
                          {5, 8, 8},
                          {3, 24, 12},
                          {4, 24, 12},
                          {5, 24, 16},
                          {3, 32, 12}}) {
        const TestImage image(c.width, 2, c.bits);
        EXPECT_EQ(Rastrel_GetEffWidth(image), c.row_bytes) << c.width << " at " << c.bits;
    }
}

TEST(Raster, NewBlocksCarryHeaderAndStandardTable) {
    struct Case {
        int bits;
        std::uint32_t colors;
    };
    for (const Case& c : {Case{1, 8}, {4, 16}, {8, 256}, {24, 0}, {32, 0}}) {
        const TestImage image(5, 3, c.bits);
        EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_BMP);
        const std::uint8_t* header = Rastrel_GetRawImage(image) - 40 - 4 * c.colors;
        const Bytes fields(header, header + 40);
        EXPECT_EQ(U32At(fields, 0), 40u);
        EXPECT_EQ(U32At(fields, 4), 5u);
        EXPECT_EQ(U32At(fields, 8), 3u);
        EXPECT_EQ(U32At(fields, 12), 1u | static_cast<std::uint32_t>(c.bits) << 16);
        EXPECT_EQ(U32At(fields, 16), 0u);
        EXPECT_EQ(U32At(fields, 20), static_cast<std::uint32_t>(Rastrel_GetEffWidth(image) * 3));
        EXPECT_EQ(U32At(fields, 32), c.colors) << c.bits;

        Bytes expected;
        const Bytes standard = FieldWriter()
                                   .U32(0x000000)
                                   .U32(0x800000)
                                   .U32(0x008000)
                                   .U32(0x808000)
                                   .U32(0x000080)
                                   .U32(0x800080)
                                   .U32(0x008080)
                                   .U32(0xc0c0c0)
                                   .U32(0x808080)
                                   .U32(0xff0000)
                                   .U32(0x00ff00)
                                   .U32(0xffff00)
                                   .U32(0x0000ff)
                                   .U32(0xff00ff)
                                   .U32(0x00ffff)
                                   .U32(0xffffff)
                                   .Done();
        for (std::uint32_t group = 0; group < c.colors / 16; ++group)
            expected.insert(expected.end(), standard.begin(), standard.end());
        expected.resize(std::size_t{4} * c.colors);  // the eight entries of 1 bit stay black
        EXPECT_EQ(Bytes(header + 40, header + 40 + expected.size()), expected) << c.bits;
        EXPECT_EQ(image.StoredBytes(), Bytes(image.StoredBytes().size())) << "pixels start as 0";
    }
}

TEST(Raster, KeepsIndicesWhereTheyBelong) {
    const TestImage one(10, 2, 1);
    Draw(one, {"1.1.......", ".......111"});
    EXPECT_EQ(one.StoredBytes(), (Bytes{0x01, 0xc0, 0, 0, 0xa0, 0x00, 0, 0}));
    EXPECT_EQ(one.Indices(), (Picture{"1.1.......", ".......111"}));
    EXPECT_EQ(Rastrel_SetIndex(one, 0, 0, 2), 1);
    EXPECT_EQ(Rastrel_GetIndex(one, 0, 0), 1) << "any index but 0 sets the bit";

    const TestImage four(3, 1, 4);
    Draw(four, {"1af"});
    EXPECT_EQ(four.StoredBytes(), (Bytes{0x1a, 0xf0, 0, 0}));
    EXPECT_EQ(Rastrel_SetIndex(four, 1, 0, 0x2c), 1);
    EXPECT_EQ(four.Indices(), (Picture{"1cf"})) << "the neighbours keep their values";

    const TestImage eight(3, 2, 8);
    Draw(eight, {"123", "abc"});
    EXPECT_EQ(eight.StoredBytes(), (Bytes{10, 11, 12, 0, 1, 2, 3, 0})) << "bottom row first";
}

TEST(Raster, HasNoPixelsOutsideItself) {
    for (const int bits : {1, 4, 8, 24, 32}) {
        const TestImage image(3, 2, bits);
        FillWithPattern(image);
        const Bytes before = image.StoredBytes();
        for (const auto& [x, y] : {std::pair{-1, 0}, {0, -1}, {3, 0}, {0, 2}, {1 << 30, 1 << 30}}) {
            EXPECT_EQ(Rastrel_GetIndex(image, x, y), -1);
            EXPECT_EQ(Rastrel_SetIndex(image, x, y, 1), 0);
            EXPECT_FALSE(image.ColorAt(x, y));
            EXPECT_EQ(Rastrel_SetRGB(image, x, y, 9, 9, 9), 0);
        }
        EXPECT_EQ(image.StoredBytes(), before);
    }
}

TEST(Raster, DeepPixelsHaveColoursAndNoIndex) {
    const TestImage image(3, 2, 24);
    EXPECT_EQ(Rastrel_SetRGB(image, 2, 1, 10, 20, 30 + 256), 1);
    const Bytes stored = image.StoredBytes();
    EXPECT_EQ(Bytes(stored.begin() + 18, stored.begin() + 21), (Bytes{30, 20, 10}));
    EXPECT_EQ(image.ColorAt(2, 1), (Rgb{10, 20, 30}));
    EXPECT_EQ(Rastrel_GetIndex(image, 2, 1), -1);
    EXPECT_EQ(Rastrel_SetIndex(image, 2, 1, 1), 0);

    const TestImage deep(2, 1, 32);
    EXPECT_EQ(Rastrel_SetRGB(deep, 1, 0, 1, 2, 3), 1);
    EXPECT_EQ(deep.StoredBytes(), (Bytes{0, 0, 0, 0, 3, 2, 1, 0})) << "alpha is left alone";
}

TEST(Raster, GreyRastersTakeColoursAsThreeBytes) {
    // What Rastrel_Create makes is not palettised, so the colour's bytes go to the pixel's place
    // and on into those that follow, even with a palette, and past the last pixel.
    const TestImage image(4, 2, 8);
    EXPECT_EQ(Rastrel_SetGrayPalette(image), 1);
    EXPECT_EQ(Rastrel_SetRGB(image, 2, 0, 1, 2, 3), 1);
    EXPECT_EQ(image.StoredBytes(), (Bytes{0, 0, 3, 2, 1, 0, 0, 0}));
    EXPECT_EQ(Rastrel_SetRGB(image, 3, 1, 7, 8, 9), 1);
    EXPECT_EQ(image.StoredBytes().back(), 9);

    const TestImage bits(8, 1, 1);
    EXPECT_EQ(Rastrel_SetRGB(bits, 7, 0, 255, 0, 0x81), 1);
    EXPECT_EQ(bits.StoredBytes(), (Bytes{0x81, 0, 0xff, 0}));
    EXPECT_EQ(bits.ColorAt(0, 0), (Rgb{255, 0, 0x81})) << "without a palette it reads them back";
}

TEST(Raster, PalettisedRastersTakeTheNearestEntry) {
    const TestImage image;
    ASSERT_EQ(Rastrel_CreateFromByte(image, Bytes(4).data(), 2, 2), 1);
    ASSERT_EQ(SetPalette(image, {{0, 0, 0}, {200, 0, 0}, {210, 0, 0}, {0, 0, 200}, {200, 0, 0}}),
              1);
    EXPECT_EQ(Rastrel_SetRGB(image, 0, 0, 204, 0, 0), 1);
    EXPECT_EQ(Rastrel_SetRGB(image, 1, 0, 205, 0, 0), 1);  // as far from 200 as from 210
    EXPECT_EQ(Rastrel_SetRGB(image, 0, 1, 0, 10, 180), 1);
    EXPECT_EQ(Rastrel_SetRGB(image, 1, 1, 206, 1, 1), 1);
    EXPECT_EQ(image.Indices(), (Picture{"32", "11"}));
    EXPECT_EQ(image.ColorAt(1, 1), (Rgb{210, 0, 0}));
}

TEST(Raster, IndicesBeyondThePaletteHaveNoColour) {
    const TestImage image(2, 1, 8);
    ASSERT_EQ(SetPalette(image, {{1, 2, 3}, {4, 5, 6}}), 1);
    Rastrel_SetIndex(image, 0, 0, 1);
    Rastrel_SetIndex(image, 1, 0, 2);
    EXPECT_EQ(image.ColorAt(0, 0), (Rgb{4, 5, 6}));
    EXPECT_FALSE(image.ColorAt(1, 0));
}

TEST(Raster, HasNoTransparentColourAtFirst) {
    const TestImage image(2, 2, 8);
    ASSERT_EQ(Rastrel_SetGrayPalette(image), 1);
    std::uint8_t red = 7;
    std::uint8_t green = 7;
    std::uint8_t blue = 7;
    EXPECT_EQ(Rastrel_GetTransparentColor(image, &red, &green, &blue), 0);
    EXPECT_EQ((Rgb{red, green, blue}), (Rgb{0, 0, 0}));
    EXPECT_EQ(Rastrel_GetTransparentColor(image, nullptr, nullptr, nullptr), 0);
}

TEST(Palette, IsStoredAndReachesTheColourTable) {
    const TestImage image(2, 2, 4);
    EXPECT_TRUE(image.Palette().empty());
    ASSERT_EQ(SetPalette(image, {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}), 1);
    EXPECT_EQ(image.Palette(), (std::vector<Rgb>{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}));
    const std::uint8_t* table = Rastrel_GetRawImage(image) - 64;
    EXPECT_EQ(Bytes(table, table + 16), (Bytes{3, 2, 1, 0, 6, 5, 4, 0, 9, 8, 7, 0, 0, 128, 128, 0}))
        << "entries that the palette lacks keep their colours";
}

TEST(Palette, GivesNoMoreThanAskedFor) {
    const TestImage image(2, 2, 8);
    ASSERT_EQ(SetPalette(image, {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}), 1);
    Bytes red(3, 99);
    Bytes green(3, 99);
    Bytes blue(3, 99);
    EXPECT_EQ(Rastrel_GetPalette(image, 2, red.data(), green.data(), blue.data()), 2);
    EXPECT_EQ(red, (Bytes{1, 4, 99}));
    EXPECT_EQ(blue, (Bytes{3, 6, 99}));
    EXPECT_EQ(Rastrel_GetPalette(image, 0, red.data(), green.data(), blue.data()), 0);
    EXPECT_EQ(Rastrel_GetPalette(image, -3, red.data(), green.data(), blue.data()), 0);
}

TEST(Palette, RefusesWhatIsNone) {
    const TestImage image(2, 2, 8);
    const Bytes channel(300, 1);
    for (const int count : {0, -1, 257, 1 << 30})
        EXPECT_EQ(Rastrel_SetPalette(image, count, channel.data(), channel.data(), channel.data()),
                  0);
    EXPECT_EQ(Rastrel_SetPalette(image, 2, channel.data(), nullptr, channel.data()), 0);
    EXPECT_TRUE(image.Palette().empty());
    EXPECT_EQ(Rastrel_SetPalette(image, 256, channel.data(), channel.data(), channel.data()), 1);
    EXPECT_EQ(image.Palette().size(), 256u);
}

TEST(Palette, IsCopiedBetweenImages) {
    const TestImage source(2, 2, 8);
    const TestImage target(3, 3, 8);
    EXPECT_EQ(Rastrel_CopyPalette(target, source), 0) << "the source has none";
    ASSERT_EQ(SetPalette(source, {{1, 2, 3}, {4, 5, 6}}), 1);
    EXPECT_EQ(Rastrel_CopyPalette(target, source), 1);
    EXPECT_EQ(target.Palette(), source.Palette());
    EXPECT_EQ(Rastrel_CopyPalette(source, source), 1);
    EXPECT_EQ(source.Palette().size(), 2u);
}

TEST(Palette, GreyIsARampAtAnyDepth) {
    for (const int bits : {1, 4, 8, 24, 32}) {
        const TestImage image(2, 2, bits);
        EXPECT_EQ(Rastrel_SetGrayPalette(image), 1);
        const auto colors = image.Palette();
        ASSERT_EQ(colors.size(), 256u);
        for (int i = 0; i < 256; ++i)
            EXPECT_EQ(colors[static_cast<std::size_t>(i)], (Rgb{i, i, i}));
    }
    // The palette then answers for pixels that have no index: theirs counts as the last.
    const TestImage deep(1, 1, 24);
    Rastrel_SetGrayPalette(deep);
    EXPECT_EQ(deep.ColorAt(0, 0), (Rgb{255, 255, 255}));
}

}  // namespace
}  // namespace rastrel_test
