// Reading TIFF files: every form of samples, what files leave out or say wrongly, parts.

#include <functional>

#include "support/images.h"
#include "support/tiff_recipe.h"

namespace rastrel_test {
namespace {

constexpr int kMinIsWhite = 0;
constexpr int kMinIsBlack = 1;
constexpr int kRgb = 2;
constexpr int kPalette = 3;
constexpr int kNoPhotometric = -1;

int Read(const TestImage& image, const TestFolder& folder, const Bytes& file) {
    return Rastrel_Read(image, folder.Write("a.tif", file).c_str(), -1);
}

/// A colour a pixel, rows from the top.
std::vector<Rgb> Colors(const TestImage& image) {
    std::vector<Rgb> colors;
    for (int y = image.Height() - 1; y >= 0; --y) {
        for (int x = 0; x < image.Width(); ++x)
            colors.push_back(image.ColorAt(x, y).value_or(Rgb{-1, -1, -1}));
    }
    return colors;
}

TEST(TiffRead, OneSampleBecomesAnIndex) {
    struct Case {
        const char* what;
        TiffRecipe recipe;
        Picture indices;
        std::vector<Rgb> palette;
        const char* description;
    };
    const Case cases[] = {
        {"1 bit",
         TiffRecipe(10, 2, 1, 1, kMinIsBlack, {0xa0, 0x40, 0x01, 0x80}),
         {"1.1......1", ".......11."},
         {{0, 0, 0}, {255, 255, 255}},
         "1-bit, formato min-is-black"},
        {"1 bit, white first",
         TiffRecipe(8, 1, 1, 1, kMinIsWhite, {0x81}),
         {"1......1"},
         {{255, 255, 255}, {0, 0, 0}},
         "1-bit, formato min-is-white"},
        {"2 bits",
         TiffRecipe(5, 1, 2, 1, kMinIsBlack, {0x1b, 0x80}),
         {".1232"},
         {{0, 0, 0}, {85, 85, 85}, {170, 170, 170}, {255, 255, 255}},
         "2-bit, formato min-is-black"},
        {"16 bits",
         TiffRecipe(3, 1, 16, 1, kMinIsBlack, {0x7f, 0x00, 0x80, 0x01, 0xff, 0x08}),
         {".19"},
         {},
         "16-bit, formato min-is-black"},
        {"no photometric",
         TiffRecipe(2, 1, 8, 1, kNoPhotometric, {3, 35}),
         {"3z"},
         {},
         "8-bit, formato min-is-black"},
        {"palette",
         TiffRecipe(3, 1, 2, 1, kPalette, {0x30})
             .Set(kColorMap, {0xff00, 0x0101, 0, 0x8000, 0, 0x7fff, 0, 0, 0, 0, 0xffff, 0x4040}),
         {".3."},
         {{255, 0, 0}, {1, 127, 0}, {0, 0, 255}, {128, 0, 64}},
         "2-bit, formato Palette"},
        {"palette of bytes",
         TiffRecipe(2, 1, 1, 1, kPalette, {0x40}).Set(kColorMap, {10, 20, 30, 40, 50, 255}),
         {".1"},
         {{10, 30, 50}, {20, 40, 255}},
         "1-bit, formato Palette"},
    };
    LogFolder log;
    for (const Case& c : cases) {
        const TestImage image;
        ASSERT_EQ(Read(image, log.Folder(), c.recipe.File()), 1) << c.what;
        EXPECT_EQ(image.Depth(), 8) << c.what;
        EXPECT_EQ(image.Indices(), c.indices) << c.what;
        if (!c.palette.empty()) {
            EXPECT_EQ(image.Palette(), c.palette) << c.what;
        }
        EXPECT_EQ(image.Description(), std::string("TIFF Format, 8 bit.\nTIFF, ") + c.description +
                                           ".  (" + std::to_string(c.recipe.File().size()) +
                                           " bytes)\nImmagine non compressa.");
    }
}

TEST(TiffRead, SeveralSamplesBecomeColours) {
    struct Case {
        const char* what;
        TiffRecipe recipe;
        std::vector<Rgb> colors;
    };
    TiffRecipe planes(2, 1, 8, 4, kRgb, {1, 4});
    planes.Set(kPlanarConfiguration, {2});
    planes.chunks = {{1, 4}, {2, 5}, {3, 6}, {99, 99}};
    const Case cases[] = {
        {"three", TiffRecipe(2, 1, 8, 3, kRgb, {1, 2, 3, 4, 5, 6}), {{1, 2, 3}, {4, 5, 6}}},
        {"four", TiffRecipe(2, 1, 8, 4, kRgb, {1, 2, 3, 99, 4, 5, 6, 99}), {{1, 2, 3}, {4, 5, 6}}},
        {"planes", planes, {{1, 2, 3}, {4, 5, 6}}},
        {"no photometric", TiffRecipe(1, 1, 8, 3, kNoPhotometric, {7, 8, 9}), {{7, 8, 9}}},
        {"4 bits", TiffRecipe(2, 1, 4, 3, kRgb, {0x0f, 0x81, 0x23}), {{0, 255, 136}, {17, 34, 51}}},
        {"1 bit",
         TiffRecipe(3, 1, 1, 3, kRgb, {0x8d, 0x80}),
         {{255, 0, 0}, {0, 255, 255}, {0, 255, 255}}},
        {"16 bits to the nearest",
         TiffRecipe(1, 1, 16, 3, kRgb, {0x80, 0x00, 0x81, 0, 0xff, 0xff}),
         {{0, 1, 255}}},
        {"white first", TiffRecipe(1, 1, 8, 3, kMinIsWhite, {0, 1, 255}), {{255, 254, 0}}},
    };
    const TestFolder folder;
    for (const Case& c : cases) {
        const TestImage image;
        ASSERT_EQ(Read(image, folder, c.recipe.File()), 1) << c.what;
        EXPECT_EQ(image.Depth(), 24) << c.what;
        EXPECT_EQ(Colors(image), c.colors) << c.what;
    }
}

TEST(TiffRead, TilesReachBeyondTheImage) {
    TiffRecipe recipe(17, 18, 8, 1, kMinIsBlack, {});
    recipe.Tiled(16, 16).chunks.clear();
    for (int tile = 1; tile <= 4; ++tile)
        recipe.chunks.emplace_back(256, static_cast<std::uint8_t>(tile));
    const TestFolder folder;
    const TestImage image;
    ASSERT_EQ(Read(image, folder, recipe.File()), 1);
    const Picture picture = image.Indices();
    ASSERT_EQ(picture.size(), 18u);
    EXPECT_EQ(picture[15], "11111111111111112");
    EXPECT_EQ(picture[16], "33333333333333334");
}

TEST(TiffRead, OnlyTheEndThatIsUpCountsOfAnOrientation) {
    LogFolder log;
    for (std::uint32_t orientation = 1; orientation <= 8; ++orientation) {
        TiffRecipe recipe(2, 2, 8, 1, kMinIsBlack, {1, 2, 3, 4});
        recipe.Set(kOrientation, {orientation});
        const TestImage image;
        ASSERT_EQ(Read(image, log.Folder(), recipe.File()), 1);
        const bool bottom_up = orientation == 3 || orientation == 4 || orientation >= 7;
        EXPECT_EQ(image.Indices(), bottom_up ? (Picture{"34", "12"}) : (Picture{"12", "34"}));
        const bool plain = orientation == 1 || orientation == 4;
        EXPECT_EQ(log.NewText(), plain ? ""
                                       : std::string("\nWARNING:\n\nWarning,LoadTIFF():using ") +
                                             (bottom_up ? "bottom" : "top") +
                                             "-left orientation\n\n");
    }
}

TEST(TiffRead, WhatHasNoPathFailsWithAWordInTheLog) {
    struct Case {
        TiffRecipe recipe;
        const char* text;
    };
    const Case cases[] = {
        {TiffRecipe(1, 1, 12, 1, kMinIsBlack, {0, 0}), "Sorry, can not handle 12-bit pictures"},
        {TiffRecipe(1, 1, 32, 1, kMinIsBlack, {0, 0, 0, 0}),
         "Sorry, can not handle 32-bit pictures"},
        {TiffRecipe(1, 1, 8, 2, kMinIsBlack, {0, 0}), "Sorry, can not handle 2-channel images"},
        {TiffRecipe(1, 1, 8, 5, kRgb, {0, 0, 0, 0, 0}), "Sorry, can not handle 5-channel images"},
        {TiffRecipe(1, 1, 8, 1, kRgb, {0}), "Unknown photometric tag 2"},
        {TiffRecipe(1, 1, 8, 4, 5, {0, 0, 0, 0}), "Unknown photometric tag 5"},
        {TiffRecipe(1, 1, 4, 1, kPalette, {0}), "couldn't open file"},
        {TiffRecipe(1, 1, 16, 1, kMinIsBlack, {0, 0}).Set(kSampleFormat, {3}),
         "Can not handle format"},
    };
    LogFolder log;
    const TestImage image;
    ASSERT_EQ(Read(image, log.Folder(), TiffRecipe(2, 1, 8, 1, kMinIsBlack, {1, 2}).File()), 1);
    const std::string before = image.Fingerprint();
    EXPECT_EQ(log.NewText(), "") << "nothing to say of a sound file";
    for (const Case& c : cases) {
        EXPECT_EQ(Read(image, log.Folder(), c.recipe.File()), 0) << c.text;
        const std::string text = log.NewText();
        EXPECT_NE(text.find(std::string("\nFATAL ERROR:\n\nLoadTIFF():") + c.text + "\n\n"),
                  std::string::npos)
            << c.text << " in: " << text;
        EXPECT_EQ(image.Fingerprint(), before) << c.text;
    }
    EXPECT_EQ(Rastrel_Read(image, "missing.tif", -1), 0);
    EXPECT_EQ(log.NewText(), "\nFATAL ERROR:\n\nLoadTIFF():couldn't open file\n\n");
    EXPECT_EQ(Read(image, log.Folder(), TiffRecipe(1, 1, 8, 1, kNoPhotometric, {1}).File()), 1);
    EXPECT_EQ(log.NewText(), "\nNo \"PhotometricInterpretation\" tag, assuming min-is-black\n\n");
}

TEST(TiffRead, FilesThatLieOfTheirSizeFail) {
    const std::function<void(TiffRecipe&)> lies[] = {
        [](TiffRecipe& r) { r.stated_offset = 0xfffffff0; },
        [](TiffRecipe& r) { r.stated_offset = 4000; },
        [](TiffRecipe& r) { r.Set(kImageWidth, {2000000000}); },
        [](TiffRecipe& r) { r.Set(kImageLength, {2000000000}).Set(kRowsPerStrip, {2000000000}); },
        [](TiffRecipe& r) { r.Set(kImageWidth, {0xffffffff}); },
        [](TiffRecipe& r) { r.Set(kImageWidth, {40000}).Set(kImageLength, {40000}); },
        [](TiffRecipe& r) {
            r.Set(kImageWidth, {40000}).Set(kImageLength, {40000}).Set(kRowsPerStrip, {40000});
        },
        [](TiffRecipe& r) { r.Tiled(65536, 65536); },
        [](TiffRecipe& r) { r.Tiled(0x7ffffff0, 0x7ffffff0); },
        [](TiffRecipe& r) { r.Set(kRowsPerStrip, {0}); },
    };
    const TestFolder folder;
    int number = 0;
    for (const auto& lie : lies) {
        ++number;
        for (const std::uint32_t compression : {1u, 5u, 8u, 32773u}) {
            TiffRecipe recipe(4, 3, 8, 3, kRgb, Bytes(36, 0x11));
            recipe.Set(kCompression, {compression});
            lie(recipe);
            const TestImage image;
            EXPECT_EQ(Read(image, folder, recipe.File()), 0) << number << ' ' << compression;
            EXPECT_EQ(image.Width(), 0);
        }
    }
}

TEST(TiffRead, CutFilesFailAtEveryLength) {
    const TestFolder folder;
    const TestImage source(5, 4, 24);
    FillWithPattern(source);
    for (const int compression : {1, 5, 8, 32773}) {
        Rastrel_SetQuality(source, compression);
        ASSERT_EQ(Rastrel_Save(source, folder.Path("whole.tif").c_str(), -1), 1);
        const Bytes whole = FileBytes(folder.Path("whole.tif"));
        for (std::size_t length = 0; length < whole.size(); ++length) {
            const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
            const TestImage image;
            const int read = Read(image, folder, cut);
            // The directory stands last; what it may lose is its link to the next.
            if (length + 4 < whole.size()) {
                EXPECT_EQ(read, 0) << compression << ' ' << length;
            }
        }
    }
}

TEST(TiffRead, SpoiltFilesNeverBreakAnything) {
    const TestFolder folder;
    const TestImage source(16, 16, 24);
    FillWithPattern(source);
    for (const int compression : {1, 7, 8}) {
        Rastrel_SetQuality(source, compression);
        ASSERT_EQ(Rastrel_Save(source, folder.Path("whole.tif").c_str(), -1), 1);
        const Bytes whole = FileBytes(folder.Path("whole.tif"));
        const std::size_t directory = U32At(whole, 4);
        for (std::size_t at = directory; at < whole.size(); ++at) {
            for (const std::uint8_t value : Bytes{0x00, 0xff}) {
                Bytes spoilt = whole;
                spoilt[at] = value;
                const TestImage image;
                if (Read(image, folder, spoilt) == 1) {
                    EXPECT_GT(image.Width(), 0);
                }
            }
        }
    }
}

TEST(TiffRead, PartsAreWhatTheWholeHoldsThere) {
    const TestFolder folder;
    TiffRecipe strips(5, 4, 8, 1, kMinIsBlack, {});
    strips.Set(kRowsPerStrip, {2});
    strips.chunks = {{1, 2, 3, 4, 5, 11, 12, 13, 14, 15}, {21, 22, 23, 24, 25, 31, 32, 33, 34, 35}};
    TiffRecipe from_bottom = strips;
    from_bottom.Set(kOrientation, {4});
    struct Case {
        int x, y, width, height, reduction;
    };
    for (const TiffRecipe& recipe : {strips, from_bottom}) {
        const std::string path = folder.Write("a.tif", recipe.File());
        for (const Case& c : {Case{1, 1, 3, 2, 1},
                              {-2, -2, 4, 4, 1},
                              {4, 3, 9, 9, 1},
                              {0, 0, 5, 4, 2},
                              {1, 0, 4, 4, 3},
                              {0, 0, 5, 4, 9}}) {
            const TestImage whole;
            ASSERT_EQ(Rastrel_Read(whole, path.c_str(), -1), 1);
            ASSERT_EQ(Rastrel_ExtractPortion(whole, c.x, c.y, c.width, c.height), 1);
            Picture expected;
            for (std::size_t y = 0; y < whole.Indices().size();
                 y += static_cast<std::size_t>(c.reduction)) {
                std::string row;
                for (std::size_t x = 0; x < whole.Indices()[y].size();
                     x += static_cast<std::size_t>(c.reduction))
                    row += whole.Indices()[y][x];
                expected.push_back(row);
            }
            const TestImage part;
            EXPECT_EQ(Rastrel_ReadPartialEx(part, path.c_str(), -1, c.x, c.y, c.width, c.height,
                                            c.reduction),
                      1);
            EXPECT_EQ(part.Indices(), expected) << c.x << ' ' << c.y << ' ' << c.reduction;
        }
        const TestImage part;
        EXPECT_EQ(Rastrel_ReadPartial(part, path.c_str(), -1, 5, 0, 2, 2), 0) << "beside it";
        EXPECT_EQ(Rastrel_ReadPartialEx(part, path.c_str(), -1, 0, 0, 2, 2, 0), 0);
    }
}

TEST(TiffRead, PartsNeedOnlyTheirStrips) {
    TiffRecipe recipe(2, 3, 8, 1, kMinIsBlack, {});
    recipe.Set(kRowsPerStrip, {1}).Set(kCompression, {32773});
    // The middle strip ends in a run that is not there.
    recipe.chunks = {{1, 5, 6}, {0x81}, {1, 7, 8}};
    const TestFolder folder;
    const std::string path = folder.Write("a.tif", recipe.File());
    const TestImage image;
    EXPECT_EQ(Rastrel_Read(image, path.c_str(), -1), 0);
    EXPECT_EQ(Rastrel_ReadPartial(image, path.c_str(), -1, 0, 2, 2, 1), 1);
    EXPECT_EQ(image.Indices(), (Picture{"78"}));
    EXPECT_EQ(Rastrel_ReadPartial(image, path.c_str(), -1, 0, 1, 2, 1), 0);
    EXPECT_EQ(image.Indices(), (Picture{"78"})) << "left as it was";
}

TEST(TiffRead, InformationCountsTheBitsOfAllSamples) {
    const TestFolder folder;
    struct Case {
        int bits;
        int samples;
        int depth;
    };
    for (const Case& c : {Case{1, 1, 1}, {8, 1, 8}, {8, 3, 24}, {16, 4, 64}, {12, 2, 24}}) {
        const TiffRecipe recipe(3, 2, c.bits, c.samples, kMinIsBlack, Bytes(48));
        int width = 0;
        int height = 0;
        int bits = 0;
        ASSERT_EQ(
            Rastrel_ReadInfo(folder.Write("a.tif", recipe.File()).c_str(), &width, &height, &bits),
            1);
        EXPECT_EQ(width, 3);
        EXPECT_EQ(height, 2);
        EXPECT_EQ(bits, c.depth);
    }
}

TEST(TiffRead, DepthsBeyondAnIntAreTheGreatest) {
    const TestFolder folder;
    const TiffRecipe recipe(3, 2, 63752, 60099, kMinIsBlack, Bytes(48));
    int bits = 0;
    // Some builds of libtiff refuse the tag as too long.
    if (Rastrel_ReadInfo(folder.Write("a.tif", recipe.File()).c_str(), nullptr, nullptr, &bits) !=
        0)
        EXPECT_EQ(bits, 0x7fffffff);
    else
        EXPECT_EQ(bits, 0);
}

TEST(TiffRead, CompressionsHaveTheirTexts) {
    const TestFolder folder;
    struct Case {
        int compression;
        int bits;
        const char* text;
    };
    for (const Case& c : {Case{1, 8, "Immagine non compressa."},
                          {2, 1, "CCITT modified Huffman RLE."},
                          {3, 1, "CCITT Group 3 fax encoding."},
                          {4, 1, "CCITT Group 4 fax encoding."},
                          {5, 8, "Compressione LZW."},
                          {7, 24, "Compressione non nota."},
                          {8, 8, "Compressione non nota."},
                          {32773, 4, "Compressione Packbits (RLE)."}}) {
        const TestImage image(8, 8, c.bits);
        Rastrel_SetQuality(image, c.compression);
        ASSERT_EQ(Rastrel_Save(image, folder.Path("a.tif").c_str(), -1), 1);
        ASSERT_EQ(Rastrel_Read(image, folder.Path("a.tif").c_str(), -1), 1);
        const std::string text = image.Description();
        EXPECT_EQ(text.substr(text.rfind('\n') + 1), c.text);
    }
}

}  // namespace
}  // namespace rastrel_test
