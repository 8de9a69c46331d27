// BMP files: layouts read and written byte by byte, and files that lie.

#include <limits>

#include "support/images.h"

namespace rastrel_test {
namespace {

/// Writes the bytes as a BMP file and reads it; the result of Rastrel_Read.
int ReadBytes(const TestImage& image, const Bytes& bytes, int type = RASTREL_TYPE_BMP) {
    const TestFolder folder;
    const std::string path = folder.Write("image.dat", bytes);
    int result = Rastrel_Read(image, path.c_str(), type);
    int width = -1;
    int height = -1;
    int bits = -1;
    if (type == RASTREL_TYPE_BMP) {
        const std::string as_bmp = folder.Write("image.bmp", bytes);
        const int info = Rastrel_ReadInfo(as_bmp.c_str(), &width, &height, &bits);
        if (result == 1) {
            EXPECT_EQ(info, 1);
            EXPECT_EQ(width, image.Width());
            EXPECT_EQ(height, image.Height());
            EXPECT_EQ(bits, image.Depth());
        }
    }
    return result;
}

Bytes SavedBytes(const TestImage& image) {
    const TestFolder folder;
    const std::string path = folder.Path("saved.bmp");
    EXPECT_EQ(Rastrel_Save(image, path.c_str(), -1), 1);
    return FileBytes(path);
}

/// 3 x 2 pixels of 24 bits; each row has 3 bytes of padding.
BmpRecipe TrueColorRecipe() {
    BmpRecipe recipe;
    recipe.pixels = {1, 2, 3, 4,  5,  6,  7,  8,  9,  0, 0, 0,   // bottom row
                     9, 8, 7, 10, 11, 12, 13, 14, 15, 0, 0, 0};  // top row
    return recipe;
}

TEST(BmpRead, TrueColour) {
    const TestImage image;
    ASSERT_EQ(ReadBytes(image, TrueColorRecipe().File()), 1);
    EXPECT_EQ(image.Depth(), 24);
    EXPECT_TRUE(image.Palette().empty());
    EXPECT_EQ(image.ColorAt(0, 0), (Rgb{3, 2, 1}));
    EXPECT_EQ(image.ColorAt(2, 1), (Rgb{15, 14, 13}));
    EXPECT_EQ(image.Description(), "Windows Bitmap, 24 bit.\nNo compression.");
    EXPECT_EQ(SavedBytes(image).size(), TrueColorRecipe().File().size());
}

TEST(BmpRead, RowsFromTheTopDownAreTurnedOver) {
    const TestImage image;
    BmpRecipe recipe = TrueColorRecipe();
    recipe.height = -2;
    ASSERT_EQ(ReadBytes(image, recipe.File()), 1);
    EXPECT_EQ(image.Height(), 2);
    EXPECT_EQ(image.ColorAt(0, 1), (Rgb{3, 2, 1}));
    EXPECT_EQ(image.ColorAt(0, 0), (Rgb{7, 8, 9}));
}

TEST(BmpRead, PaletteOfStatedAndOfUnstatedLength) {
    BmpRecipe recipe;
    recipe.bits = 4;
    recipe.colors_used = 3;
    recipe.table = {1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 77};
    recipe.pixels = {0x01, 0x20, 0, 0, 0x21, 0x00, 0, 0};
    const TestImage image;
    ASSERT_EQ(ReadBytes(image, recipe.File()), 1);
    EXPECT_EQ(image.Palette(), (std::vector<Rgb>{{3, 2, 1}, {6, 5, 4}, {9, 8, 7}}));
    EXPECT_EQ(image.Indices(), (Picture{"21.", ".12"}));
    EXPECT_EQ(Rastrel_SetRGB(image, 0, 0, 7, 5, 3), 1);
    EXPECT_EQ(Rastrel_GetIndex(image, 0, 0), 1) << "what was read takes the nearest entry";

    recipe.colors_used = 0;
    recipe.table.resize(64, 5);
    ASSERT_EQ(ReadBytes(image, recipe.File()), 1);
    EXPECT_EQ(image.Palette().size(), 16u);
    EXPECT_EQ(U32At(Bytes(Rastrel_GetRawImage(image) - 104, Rastrel_GetRawImage(image)), 32), 16u)
        << "the header in memory tells the count";
}

TEST(BmpRead, CoreHeaderWithThreeByteColours) {
    BmpRecipe recipe;
    recipe.header_size = 12;
    recipe.bits = 1;
    recipe.width = 9;
    recipe.table = {1, 2, 3, 4, 5, 6};
    recipe.pixels = {0x80, 0x80, 0, 0, 0x01, 0x00, 0, 0};
    recipe.pixels.resize(40);  // a reader takes 40 bytes for the header at first
    const TestImage image;
    ASSERT_EQ(ReadBytes(image, recipe.File()), 1);
    EXPECT_EQ(image.Palette(), (std::vector<Rgb>{{3, 2, 1}, {6, 5, 4}}));
    EXPECT_EQ(image.Indices(), (Picture{".......1.", "1.......1"}));
    const Bytes saved = SavedBytes(image);
    EXPECT_EQ(U32At(saved, 14), 40u);
    EXPECT_EQ(U32At(saved, 10), 54u + 8u);
}

TEST(BmpRead, BareBitmapWithoutFileHeader) {
    const Bytes file = TrueColorRecipe().File();
    const TestImage image;
    ASSERT_EQ(ReadBytes(image, Bytes(file.begin() + 14, file.end())), 1);
    EXPECT_EQ(image.ColorAt(0, 0), (Rgb{3, 2, 1}));
    EXPECT_EQ(image.ColorAt(0, 1), (Rgb{7, 8, 9}));
}

TEST(BmpRead, LongerAndShorterHeaders) {
    for (const std::uint32_t size : {16u, 40u, 52u, 56u, 64u, 108u, 124u}) {
        BmpRecipe recipe;
        recipe.header_size = size;
        recipe.bits = 4;
        recipe.width = 2;
        recipe.height = 1;
        recipe.table = Bytes(64, 9);
        recipe.table[4] = 200;  // entry 1's blue
        recipe.pixels = {0x1f, 0, 0, 0};
        const TestImage image;
        ASSERT_EQ(ReadBytes(image, recipe.File()), 1) << size;
        EXPECT_EQ(image.ColorAt(0, 0), (Rgb{9, 9, 200})) << size;
        EXPECT_EQ(image.ColorAt(1, 0), (Rgb{9, 9, 9})) << size;
        EXPECT_EQ(U32At(SavedBytes(image), 14), 40u) << "it can be saved";
    }
}

TEST(BmpRead, PixelsWhereTheFileSaysTheyAre) {
    BmpRecipe recipe = TrueColorRecipe();
    recipe.pixel_offset = 54 + 10;
    recipe.pixels.insert(recipe.pixels.begin(), 10, 0xee);
    const TestImage image;
    ASSERT_EQ(ReadBytes(image, recipe.File()), 1);
    EXPECT_EQ(image.ColorAt(0, 0), (Rgb{3, 2, 1}));
    recipe = TrueColorRecipe();
    recipe.pixel_offset = 0;
    ASSERT_EQ(ReadBytes(image, recipe.File()), 1) << "0: behind the colour table";
    EXPECT_EQ(image.ColorAt(0, 0), (Rgb{3, 2, 1}));
}

TEST(BmpRead, ColourTableOfATrueColourFileIsOnlyAHint) {
    BmpRecipe recipe = TrueColorRecipe();
    recipe.colors_used = 2;
    recipe.table = {50, 50, 50, 0, 60, 60, 60, 0};
    const TestImage image;
    ASSERT_EQ(ReadBytes(image, recipe.File()), 1);
    EXPECT_TRUE(image.Palette().empty());
    EXPECT_EQ(image.ColorAt(0, 0), (Rgb{3, 2, 1}));
}

TEST(BmpRead, MorePaletteEntriesThanIndices) {
    BmpRecipe recipe;
    recipe.bits = 8;
    recipe.colors_used = 300;
    recipe.table = Bytes(1200, 7);
    recipe.pixels = {1, 2, 255, 0, 4, 5, 6, 0};
    const TestImage image;
    ASSERT_EQ(ReadBytes(image, recipe.File()), 1);
    EXPECT_EQ(image.Palette().size(), 256u);
    EXPECT_EQ(Rastrel_GetIndex(image, 2, 0), 255);
    const Bytes saved = SavedBytes(image);
    EXPECT_EQ(saved.size(), recipe.File().size());
    EXPECT_EQ(Bytes(saved.end() - 8, saved.end()), recipe.pixels);
}

TEST(BmpRead, SixteenBitsKeepTheirBytes) {
    BmpRecipe recipe;
    recipe.bits = 16;
    recipe.width = 2;
    recipe.height = 1;
    recipe.pixels = {0x1f, 0x00, 0xe0, 0x7f};  // blue; yellow and full green
    const TestImage image;
    ASSERT_EQ(ReadBytes(image, recipe.File()), 1);
    EXPECT_EQ(image.Depth(), 16);
    EXPECT_EQ(image.StoredBytes(), recipe.pixels);
    Bytes colors(6);
    EXPECT_EQ(Rastrel_GetImageByte(image, colors.data(), 24, 0, 0, 2, 1), 1);
    EXPECT_EQ(colors, (Bytes{255, 0, 0, 0, 255, 255}));
}

TEST(BmpRead, BitFieldsMoveThePixelsByTheMasksThatAreNotKept) {
    BmpRecipe recipe;
    recipe.bits = 32;
    recipe.compression = 3;
    recipe.width = 5;
    recipe.height = 1;
    recipe.table = FieldWriter().U32(0xff0000).U32(0xff00).U32(0xff).Done();  // the masks
    for (int i = 1; i <= 20; ++i)
        recipe.pixels.push_back(static_cast<std::uint8_t>(i));
    const TestImage image;
    ASSERT_EQ(ReadBytes(image, recipe.File()), 1);
    EXPECT_EQ(image.StoredBytes(),
              (Bytes{13, 14, 15, 16, 17, 18, 19, 20, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    const TestImage copy;
    ASSERT_EQ(Rastrel_Copy(copy, image), 1);
    EXPECT_EQ(copy.StoredBytes(), image.StoredBytes());
    EXPECT_EQ(Rastrel_SetRGB(image, 4, 0, 1, 2, 3), 1) << "the last pixel is within the block";
}

TEST(BmpRead, RunLengthDataStayAsTheyStand) {
    BmpRecipe recipe;
    recipe.bits = 8;
    recipe.compression = 1;
    recipe.width = 40;
    recipe.height = 3;
    recipe.table = Bytes(1024, 3);
    recipe.pixels = {40, 1, 0, 0, 40, 2, 0, 0, 40, 3, 0, 1};
    recipe.image_size = 12;
    const TestImage image;
    ASSERT_EQ(ReadBytes(image, recipe.File()), 1);
    EXPECT_EQ(Rastrel_GetEffWidth(image), 40);
    const Bytes stored = image.StoredBytes();
    EXPECT_EQ(Bytes(stored.begin(), stored.begin() + 12), recipe.pixels);
    EXPECT_EQ(image.Description(), "Windows Bitmap, 8 bit.\nNo compression.");

    const Bytes saved = SavedBytes(image);
    ASSERT_EQ(saved.size(), recipe.File().size());
    EXPECT_EQ(Bytes(saved.end() - 12, saved.end()), recipe.pixels);
    EXPECT_EQ(U32At(saved, 34), 12u);

    const std::string before = image.Fingerprint();
    EXPECT_EQ(Rastrel_Conv8To24(image), 0);
    EXPECT_EQ(Rastrel_Conv8To1(image), 0);
    EXPECT_EQ(Rastrel_ExtractPortion(image, 0, 0, 5, 2), 0);
    EXPECT_EQ(image.Fingerprint(), before);
    EXPECT_EQ(Rastrel_Fill(image, 3, 3, 3), 1) << "every pixel is new: plain rows from now on";
    EXPECT_EQ(SavedBytes(image).size(), 54u + 1024u + 120u);
}

TEST(BmpWrite, LaysTheFileOutByteByByte) {
    const TestImage image;
    ASSERT_EQ(Rastrel_Create(image, 3, 2, 4), 1);
    Draw(image, {"123", "abc"});
    ASSERT_EQ(SetPalette(image, {{1, 2, 3}, {4, 5, 6}}), 1);
    FieldWriter expected;
    expected.Text("BM").U32(14 + 40 + 64 + 8).U16(0).U16(0).U32(14 + 40 + 64);
    expected.U32(40).I32(3).I32(2).U16(1).U16(4).U32(0).U32(8).I32(0).I32(0).U32(16).U32(0);
    expected.U8({3, 2, 1, 0, 6, 5, 4, 0});
    expected.U32(0x008000).U32(0x808000).U32(0x000080).U32(0x800080).U32(0x008080).U32(0xc0c0c0);
    expected.U32(0x808080).U32(0xff0000).U32(0x00ff00).U32(0xffff00).U32(0x0000ff).U32(0xff00ff);
    expected.U32(0x00ffff).U32(0xffffff);
    expected.U8({0xab, 0xc0, 0, 0, 0x12, 0x30, 0, 0});
    EXPECT_EQ(SavedBytes(image), expected.Done());
}

TEST(BmpWrite, RastersWithoutPaletteGetTheSystemsColours) {
    const TestImage image(2, 2, 1);
    const Bytes saved = SavedBytes(image);
    EXPECT_EQ(U32At(saved, 10), 54u + 32u) << "a 1-bit table has eight entries";
    EXPECT_EQ(U32At(saved, 46), 8u);
    EXPECT_EQ(U32At(saved, 58), 0x800000u) << "the second of them is dark red";

    const TestImage deep(2, 2, 8);
    EXPECT_EQ(U32At(SavedBytes(deep), 54 + 4 * 8), 0xc0dcc0u);
    EXPECT_EQ(U32At(SavedBytes(deep), 54 + 4 * 19), 0xffffffu);
    EXPECT_EQ(U32At(SavedBytes(deep), 54 + 4 * 20), 0x000080u) << "beyond twenty: as created";
}

TEST(BmpWrite, ReadsBackTheSameAtEveryDepth) {
    const TestFolder folder;
    for (const int bits : {1, 4, 8, 24, 32}) {
        const TestImage image(47, 33, bits);
        FillWithPattern(image);
        if (bits <= 8) {
            ASSERT_EQ(SetPalette(image, {{9, 8, 7}, {255, 254, 253}, {0, 128, 255}}), 1);
        }
        const std::string path = folder.Path(std::to_string(bits) + ".bmp");
        ASSERT_EQ(Rastrel_Save(image, path.c_str(), -1), 1);
        const TestImage back;
        ASSERT_EQ(Rastrel_Read(back, path.c_str(), -1), 1);
        EXPECT_EQ(back.StoredBytes(), image.StoredBytes()) << bits;
        const std::string again = folder.Path("again.bmp");
        ASSERT_EQ(Rastrel_Save(back, again.c_str(), -1), 1);
        EXPECT_EQ(FileBytes(again), FileBytes(path)) << bits;
    }
}

TEST(BmpWrite, BoundsTheTableSizeTo16Bits) {
    // 16,386 colours are 65,544 bytes, which counts as 8: the file's rows start where entry 2
    // stood.
    BmpRecipe recipe = TrueColorRecipe();
    recipe.colors_used = 16386;
    recipe.table = Bytes(65544, 0x42);
    const TestImage image;
    ASSERT_EQ(ReadBytes(image, recipe.File()), 1);
    EXPECT_EQ(image.ColorAt(0, 0), (Rgb{3, 2, 1}));
    const Bytes saved = SavedBytes(image);
    EXPECT_EQ(saved.size(), 14u + 40u + 8u + 24u);
    EXPECT_EQ(U32At(saved, 10), 62u);
    EXPECT_EQ(U32At(saved, 62), 0x008000u) << "the third of the system's colours";
}

TEST(BmpRead, FilesCutAtAnyByteFailOrLoad) {
    std::vector<Bytes> files = {TrueColorRecipe().File()};
    BmpRecipe palettised;
    palettised.bits = 8;
    palettised.colors_used = 4;
    palettised.table = Bytes(16, 8);
    palettised.pixels = {1, 2, 3, 0, 3, 2, 1, 0};
    files.push_back(palettised.File());
    BmpRecipe core = palettised;
    core.header_size = 12;
    core.bits = 1;
    core.table = Bytes(6, 8);
    core.pixels.resize(40);
    files.push_back(core.File());
    for (const Bytes& whole : files) {
        const bool is_core = whole[14] == 12;
        for (std::size_t length = 0; length < whole.size(); ++length) {
            const TestImage image;
            const int result = ReadBytes(
                image, Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
            EXPECT_EQ(result, length >= 54 ? 1 : 0) << length << (is_core ? " of core" : "");
            if (result == 1) {
                EXPECT_EQ(image.Width(), 3);
                EXPECT_EQ(image.StoredBytes().size(),
                          static_cast<std::size_t>(Rastrel_GetEffWidth(image)) * 2);
            }
        }
    }
}

TEST(BmpRead, MissingPixelsAreZero) {
    Bytes file = TrueColorRecipe().File();
    file.resize(54 + 13);
    const TestImage image;
    ASSERT_EQ(ReadBytes(image, file), 1);
    EXPECT_EQ(image.ColorAt(0, 0), (Rgb{3, 2, 1}));
    EXPECT_EQ(image.ColorAt(0, 1), (Rgb{0, 0, 9}));
    EXPECT_EQ(image.ColorAt(2, 1), (Rgb{0, 0, 0}));
}

TEST(BmpRead, RefusesHeadersThatMakeNoBitmap) {
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    struct Case {
        const char* what;
        std::function<void(BmpRecipe&)> spoil;
    };
    const std::vector<Case> cases = {
        {"zero width", [](BmpRecipe& r) { r.width = 0; }},
        {"negative width", [](BmpRecipe& r) { r.width = -3; }},
        {"zero height", [](BmpRecipe& r) { r.height = 0; }},
        {"most negative height", [](BmpRecipe& r) { r.height = kLeast; }},
        {"overflowing product", [](BmpRecipe& r) { r.width = r.height = kMost; }},
        {"product that wraps to little",
         [](BmpRecipe& r) { r.width = 0x10000, r.height = 0x10000; }},
        {"no depth", [](BmpRecipe& r) { r.bits = 0; }},
        {"odd depth", [](BmpRecipe& r) { r.bits = 7; }},
        {"huge depth", [](BmpRecipe& r) { r.bits = 65535; }},
        {"negative height of run-length data",
         [](BmpRecipe& r) { r.bits = 8, r.compression = 1, r.height = -2; }},
        {"run-length data of true colour", [](BmpRecipe& r) { r.compression = 1; }},
        {"embedded JPEG", [](BmpRecipe& r) { r.compression = 4; }},
        {"four billion colours", [](BmpRecipe& r) { r.colors_used = 0xffffffff; }},
        {"a billion colours", [](BmpRecipe& r) { r.bits = 8, r.colors_used = 0x40000000; }},
        {"run-length data of four billion bytes",
         [](BmpRecipe& r) { r.bits = 8, r.compression = 1, r.image_size = 0xffffffff; }},
        {"a gigabyte of pixels in a few bytes",
         [](BmpRecipe& r) { r.width = 20000, r.height = 20000; }},
        {"a gigabyte of run-length data in a few bytes",
         [](BmpRecipe& r) { r.bits = 8, r.compression = 1, r.image_size = 1u << 30; }},
    };
    const TestImage image;
    ASSERT_EQ(ReadBytes(image, TrueColorRecipe().File()), 1);
    const std::string before = image.Fingerprint();
    for (const Case& c : cases) {
        BmpRecipe recipe = TrueColorRecipe();
        c.spoil(recipe);
        EXPECT_EQ(ReadBytes(image, recipe.File()), 0) << c.what;
        EXPECT_EQ(image.Fingerprint(), before) << c.what << ": the old image must stay";
    }
    for (const std::uint32_t size : {0u, 1u, 11u, 13u, 15u, 125u, 0xffffffffu}) {
        Bytes file = TrueColorRecipe().File();
        PutU32(file, 14, size);
        EXPECT_EQ(ReadBytes(image, file), 0) << "header size " << size;
    }
}

TEST(BmpRead, ReadsOnInSpiteOfFieldsThatNobodyNeeds) {
    struct Case {
        const char* what;
        std::function<void(Bytes&)> spoil;
    };
    for (const Case& c : {
             Case{"file size 0", [](Bytes& f) { PutU32(f, 2, 0); }},
             {"file size of four billion", [](Bytes& f) { PutU32(f, 2, 0xffffffff); }},
             {"image size 1", [](Bytes& f) { PutU32(f, 34, 1); }},
             {"image size of four billion", [](Bytes& f) { PutU32(f, 34, 0xffffffff); }},
             {"77 planes", [](Bytes& f) { f[26] = 77; }},
             {"mad resolution", [](Bytes& f) { PutU32(f, 38, 0x80000000); }},
         }) {
        Bytes file = TrueColorRecipe().File();
        c.spoil(file);
        const TestImage image;
        EXPECT_EQ(ReadBytes(image, file), 1) << c.what;
        EXPECT_EQ(image.ColorAt(2, 1), (Rgb{15, 14, 13})) << c.what;
    }
    Bytes file = TrueColorRecipe().File();
    PutU32(file, 10, 0xfffffff0);
    const TestImage image;
    EXPECT_EQ(ReadBytes(image, file), 1) << "pixels beyond the end";
    EXPECT_EQ(image.StoredBytes(), Bytes(24));
}

}  // namespace
}  // namespace rastrel_test
