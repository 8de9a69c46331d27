// Writing GIF files: the layout and the codes, byte for byte, and what cannot be written.

#include <random>

#include "support/gif_recipe.h"
#include "support/images.h"
#include "support/messages.h"
#include "support/plain_lzw.h"
#include "support/plain_quantizer.h"

namespace rastrel_test {
namespace {

/// The file that an image must become: 256 colours, one image, blocks of 254 bytes.
Bytes FileAsTold(const TestImage& image, const std::vector<Rgb>& colors) {
    Bytes indices(static_cast<std::size_t>(image.Width() * image.Height()));
    Rastrel_GetImageByte(image, indices.data(), 8, 0, 0, image.Width(), image.Height());
    GifRecipe recipe;
    recipe.signature = "GIF87a";
    recipe.screen_flags = 0xe0;
    recipe.global_table = colors;
    recipe.global_table.resize(256);
    recipe.width = image.Width();
    recipe.height = image.Height();
    recipe.data = EncodePlainly(indices);
    recipe.block = 254;
    return recipe.File();
}

Bytes Saved(const TestImage& image) {
    const TestFolder folder;
    const TestImage copy;
    EXPECT_EQ(Rastrel_Copy(copy, image), 1);
    EXPECT_EQ(Rastrel_Save(copy, folder.Path("a.gif").c_str(), -1), 1);
    return FileBytes(folder.Path("a.gif"));
}

std::vector<Rgb> SomeColors(int count) {
    std::vector<Rgb> colors;
    for (int i = 0; i < count; ++i)
        colors.push_back({255 - i, i * 7 % 256, i});
    return colors;
}

TEST(GifWrite, SmallestFileByteForByte) {
    const TestImage image(2, 1, 8);
    SetPalette(image, {{1, 2, 3}, {4, 5, 6}});
    Draw(image, {"1."});
    FieldWriter expected;
    expected.Text("GIF87a").U16(2).U16(1).U8({0xe7, 0, 0});
    expected.U8({1, 2, 3, 4, 5, 6}).Raw(Bytes(762));
    expected.U8({0x2c}).U16(0).U16(0).U16(2).U16(1).U8({0});
    // Codes 256, 1, 0, 257 of nine bits.
    expected.U8({8, 5, 0x00, 0x03, 0x00, 0x08, 0x08, 0, 0x3b});
    EXPECT_EQ(Saved(image), expected.Done());
}

TEST(GifWrite, GivesTheFilesOfTheClassicCoder) {
    std::mt19937 random(11);
    for (const auto& [width, height] : {std::pair{1, 1}, {3, 2}, {47, 33}, {300, 200}, {1, 500}}) {
        for (const unsigned colors : {1u, 2u, 3u, 16u, 100u, 256u}) {
            for (const unsigned run : {1u, 2u, 30u, 1000u}) {
                const TestImage image(width, height, 8);
                std::uint8_t index = 0;
                for (int y = 0; y < height; ++y) {
                    for (int x = 0; x < width; ++x) {
                        if (random() % run == 0)
                            index = static_cast<std::uint8_t>(random() % colors);
                        Rastrel_SetIndex(image, x, y, index);
                    }
                }
                const std::vector<Rgb> palette = SomeColors(static_cast<int>(colors));
                SetPalette(image, palette);
                ASSERT_EQ(Saved(image), FileAsTold(image, palette))
                    << width << " x " << height << ", " << colors << " colours, runs of " << run;
            }
        }
    }
}

TEST(GifWrite, LongRunsGiveTheClassicCodes) {
    // Strings of one index alone, then of two, in lengths around every step of the search.
    const TestImage image(60000, 9, 8);
    for (int y = 0; y < 9; ++y) {
        for (int x = 0; x < 60000; ++x)
            Rastrel_SetIndex(image, x, y, y < 6 ? 7 : x * (x % 1000) / 5000 % (y - 4));
    }
    SetPalette(image, SomeColors(8));
    EXPECT_EQ(Saved(image), FileAsTold(image, SomeColors(8)));
}

TEST(GifWrite, ShallowImagesAreWidened) {
    for (const int bits : {1, 4}) {
        const TestImage image(47, 33, bits);
        FillWithPattern(image);
        const std::vector<Rgb> palette = SomeColors(1 << bits);
        SetPalette(image, palette);
        EXPECT_EQ(Saved(image), FileAsTold(image, palette)) << bits;
    }
}

TEST(GifWrite, ImagesWithoutPaletteAreGrey) {
    for (const int bits : {1, 4, 8}) {
        const TestImage image(9, 3, bits);
        FillWithPattern(image);
        std::vector<Rgb> greys;
        for (int i = 0; i < 1 << bits; ++i) {
            const int grey = i * 255 / ((1 << bits) - 1);
            greys.push_back({grey, grey, grey});
        }
        EXPECT_EQ(Saved(image), FileAsTold(image, greys)) << bits;
    }
}

TEST(GifWrite, AnImageBecomesGif) {
    const TestFolder folder;
    const TestImage image(5, 4, 8);
    Rastrel_SetGrayPalette(image);
    ASSERT_EQ(Rastrel_Save(image, folder.Path("a.GIF").c_str(), -1), 1);
    EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_GIF);
    EXPECT_EQ(image.Description(), "GIF Format, 8 bit.");
}

TEST(GifWrite, DeepImagesAreRefusedWithAMessage) {
    const TestFolder folder;
    const std::string path = folder.Write("old.gif", Text("as it was"));
    for (const int bits : {24, 32}) {
        const TestImage image(3, 2, bits);
        const std::string before = image.Fingerprint();
        int result = -1;
        EXPECT_EQ(MessageOf([&] { result = Rastrel_Save(image, path.c_str(), -1); }),
                  "GIF Images must be 8 bit or less");
        EXPECT_EQ(result, 0);
        EXPECT_EQ(image.Fingerprint(), before);
        EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_BMP);
    }
    EXPECT_EQ(FileText(path), "as it was");
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"old.gif"});
}

TEST(GifWrite, PlacesThatTakeNoFileGiveAMessage) {
    const TestFolder folder;
    const TestImage image(3, 2, 8);
    int result = -1;
    EXPECT_EQ(MessageOf([&] {
                  result = Rastrel_Save(image, folder.Path("no/such/folder.gif").c_str(), -1);
              }),
              "Can't open GIF for writing");
    EXPECT_EQ(result, 0);
}

TEST(GifWrite, SidesBeyondTheirFieldsAreRefused) {
    const TestFolder folder;
    for (const auto& [width, height] : {std::pair{65536, 1}, {1, 65536}}) {
        const TestImage image(width, height, 8);
        EXPECT_EQ(Rastrel_Save(image, folder.Path("a.gif").c_str(), -1), 0);
    }
    EXPECT_TRUE(folder.Names().empty());
    const TestImage widest(65535, 1, 8);
    EXPECT_EQ(Rastrel_Save(widest, folder.Path("a.gif").c_str(), -1), 1);
    const TestImage back;
    ASSERT_EQ(Rastrel_Read(back, folder.Path("a.gif").c_str(), -1), 1);
    EXPECT_EQ(back.Width(), 65535);
}

TEST(Tiff2Gif, ReducesColoursToThePaletteOfTheWhole) {
    const TestFolder folder;
    const std::string tiff = folder.Path("scene.dat");
    const std::string gif = folder.Path("scene.gif");
    const TestImage scene(120, 450, 24);  // higher than the bands that others would read it in
    FillWithPattern(scene);
    ASSERT_EQ(Rastrel_Save(scene, tiff.c_str(), RASTREL_TYPE_TIFF), 1);
    ASSERT_EQ(Rastrel_Tiff2Gif(tiff.c_str(), gif.c_str()), 1);
    Bytes pixels(std::size_t{120} * 450 * 3);
    Rastrel_GetImageByte(scene, pixels.data(), 24, 0, 0, 120, 450);
    const auto chosen = ChoosePlainly(pixels, 256);
    const TestImage result;
    ASSERT_EQ(Rastrel_Read(result, gif.c_str(), -1), 1);
    Bytes indices(pixels.size() / 3);
    Rastrel_GetImageByte(result, indices.data(), 8, 0, 0, 120, 450);
    EXPECT_EQ(indices, MapPlainly(pixels, chosen));
    const auto palette = result.Palette();
    ASSERT_EQ(palette.size(), 256u);
    for (std::size_t i = 0; i < chosen.size(); ++i)
        EXPECT_EQ(palette[i], (Rgb{chosen[i][2], chosen[i][1], chosen[i][0]})) << i;
}

TEST(Tiff2Gif, KeepsWhatNeedsNoReduction) {
    const TestFolder folder;
    const std::string tiff = folder.Path("a.tif");
    const std::string gif = folder.Path("a.gif");
    for (const int bits : {1, 4, 8, 24}) {
        const TestImage image(20, 10, bits);  // no more colours than a palette holds
        FillWithPattern(image);
        if (bits <= 8) SetPalette(image, SomeColors(1 << bits));
        if (bits == 1) Rastrel_SetGrayPalette(image);
        ASSERT_EQ(Rastrel_Save(image, tiff.c_str(), RASTREL_TYPE_TIFF), 1);
        ASSERT_EQ(Rastrel_Tiff2Gif(tiff.c_str(), gif.c_str()), 1) << bits;
        const TestImage loaded;
        const TestImage result;
        ASSERT_EQ(Rastrel_Read(loaded, tiff.c_str(), -1), 1);
        ASSERT_EQ(Rastrel_Read(result, gif.c_str(), -1), 1);
        for (int y = 0; y < 10; ++y) {
            for (int x = 0; x < 20; ++x)
                ASSERT_EQ(result.ColorAt(x, y), loaded.ColorAt(x, y)) << bits;
        }
    }
}

TEST(Tiff2Gif, FailsWithoutSourceOrTarget) {
    const TestFolder folder;
    const std::string tiff = folder.Path("a.tif");
    const std::string gif = folder.Path("a.gif");
    const TestImage image(3, 2, 8);
    Rastrel_SetGrayPalette(image);
    ASSERT_EQ(Rastrel_Save(image, tiff.c_str(), -1), 1);
    EXPECT_EQ(Rastrel_Tiff2Gif(nullptr, gif.c_str()), 0);
    EXPECT_EQ(Rastrel_Tiff2Gif(tiff.c_str(), nullptr), 0);
    EXPECT_EQ(Rastrel_Tiff2Gif(folder.Path("none.tif").c_str(), gif.c_str()), 0);
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.tif"});
    int result = -1;
    EXPECT_EQ(MessageOf([&] {
                  result =
                      Rastrel_Tiff2Gif(tiff.c_str(), folder.Path("no/such/folder.gif").c_str());
              }),
              "Can't open GIF for writing");
    EXPECT_EQ(result, 0);
}

}  // namespace
}  // namespace rastrel_test
