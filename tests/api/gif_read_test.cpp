// Reading GIF files: what stands before the pixels, the codes, and all that can be wrong with them.

#include <random>

#include "support/gif_recipe.h"
#include "support/images.h"
#include "support/plain_lzw.h"

namespace rastrel_test {
namespace {

const std::vector<Rgb> kFourColors = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12}};

int ReadGif(const TestImage& image, const Bytes& bytes) {
    const TestFolder folder;
    return Rastrel_Read(image, folder.Write("a.gif", bytes).c_str(), -1);
}

/// The codes of pixels below 4 in an alphabet of 4, each by itself.
Bytes SinglePixelCodes(const Picture& rows) {
    CodePacker codes;
    for (const std::string& row : rows) {
        for (const char c : row) {
            codes.Put(4, 3);
            codes.Put(c == '.' ? 0 : static_cast<unsigned>(c - '0'), 3);
        }
    }
    codes.Put(5, 3);
    return codes.Bytes();
}

/// A file of a picture of indices below 4.
GifRecipe SmallGif(const Picture& rows) {
    GifRecipe recipe;
    recipe.global_table = kFourColors;
    recipe.width = static_cast<int>(rows.front().size());
    recipe.height = static_cast<int>(rows.size());
    recipe.code_size = 2;
    recipe.data = SinglePixelCodes(rows);
    return recipe;
}

TEST(GifRead, GivesIndicesAndPalette) {
    const TestImage image;
    ASSERT_EQ(ReadGif(image, SmallGif({".123", "3.1."}).File()), 1);
    EXPECT_EQ(image.Depth(), 8);
    EXPECT_EQ(image.Indices(), (Picture{".123", "3.1."}));
    EXPECT_EQ(image.Palette(), kFourColors);
    EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_GIF);
    EXPECT_EQ(image.Description(), "GIF Format, 8 bit.");
    EXPECT_EQ(Rastrel_SetRGB(image, 0, 0, 10, 11, 12), 1) << "it has a palette's colour type";
    EXPECT_EQ(Rastrel_GetIndex(image, 0, 0), 3);
}

TEST(GifRead, SignatureIsGif8) {
    for (const auto& [signature, result] :
         {std::pair{"GIF87a", 1}, {"GIF89a", 1}, {"GIF8xy", 1}, {"GIF77a", 0}, {"gif89a", 0}}) {
        GifRecipe recipe = SmallGif({"12"});
        recipe.signature = signature;
        EXPECT_EQ(ReadGif(TestImage(), recipe.File()), result) << signature;
    }
}

TEST(GifRead, TablesGiveThePalette) {
    GifRecipe recipe = SmallGif({"12"});
    recipe.local_table = {{100, 0, 0}, {0, 100, 0}};
    const TestImage image;
    recipe.image_flags = kLocalTable;
    ASSERT_EQ(ReadGif(image, recipe.File()), 1);
    EXPECT_EQ(image.Palette(), recipe.local_table);
    recipe.global_table.clear();
    recipe.screen_flags = 0x02;
    ASSERT_EQ(ReadGif(image, recipe.File()), 1);
    EXPECT_EQ(image.Palette(), recipe.local_table) << "without a global table";
    recipe.local_table.clear();
    recipe.image_flags = 0;
    ASSERT_EQ(ReadGif(image, recipe.File()), 1);
    EXPECT_EQ(image.Palette(), std::vector<Rgb>(8)) << "without any";
}

TEST(GifRead, ExtensionsArePassedOver) {
    const Bytes comment =
        FieldWriter().U8({0x21, 0xfe, 5}).Text("hello").U8({2, 0x2c, 0x3b, 0}).Done();
    const Bytes looping =
        FieldWriter().U8({0x21, 0xff, 11}).Text("NETSCAPE2.0").U8({3, 1, 0, 0, 0}).Done();
    const Bytes empty_control = {0x21, 0xf9, 0};
    const Bytes long_control = {0x21, 0xf9, 5, 1, 0, 0, 2, 9, 0};
    struct Case {
        const char* what;
        std::vector<Bytes> extensions;
        int result;
        int transparent;
    };
    const Case cases[] = {
        {"none", {}, 1, -1},
        {"a comment", {comment}, 1, -1},
        {"transparent", {GraphicControl(1, 2)}, 1, 2},
        {"not transparent", {GraphicControl(0, 2)}, 1, -1},
        {"all kinds", {looping, comment, GraphicControl(9, 3), comment}, 1, 3},
        {"the last transparent one", {GraphicControl(1, 1), GraphicControl(1, 2)}, 1, 2},
        {"an empty control", {empty_control}, 1, -1},
        {"a control too long", {long_control}, 0, -1},
        {"an index without entry", {GraphicControl(1, 200)}, 1, -1},
    };
    for (const Case& c : cases) {
        GifRecipe recipe = SmallGif({"12"});
        for (const Bytes& extension : c.extensions)
            recipe.extensions.insert(recipe.extensions.end(), extension.begin(), extension.end());
        const TestImage image;
        EXPECT_EQ(ReadGif(image, recipe.File()), c.result) << c.what;
        std::uint8_t red = 0;
        const int has_color = Rastrel_GetTransparentColor(image, &red, nullptr, nullptr);
        EXPECT_EQ(has_color, c.transparent >= 0 ? 1 : 0) << c.what;
        EXPECT_EQ(red,
                  c.transparent >= 0 ? kFourColors[static_cast<std::size_t>(c.transparent)][0] : 0);
    }
}

TEST(GifRead, TransparencyGoesWithTheNextFile) {
    GifRecipe recipe = SmallGif({"12"});
    recipe.extensions = GraphicControl(1, 1);
    const TestImage image;
    ASSERT_EQ(ReadGif(image, recipe.File()), 1);
    EXPECT_EQ(Rastrel_GetTransparentColor(image, nullptr, nullptr, nullptr), 1);
    ASSERT_EQ(ReadGif(image, SmallGif({"12"}).File()), 1);
    EXPECT_EQ(Rastrel_GetTransparentColor(image, nullptr, nullptr, nullptr), 0);
}

TEST(GifRead, InterlacedRowsFindTheirPlaces) {
    for (std::size_t height = 1; height <= 40; ++height) {
        Picture rows;
        for (std::size_t y = 0; y < height; ++y)
            rows.push_back({"123."[y % 4], "123."[y / 4 % 4], "123."[y / 16]});
        Picture stored;
        for (const auto& [first, step] : {std::pair{0u, 8u}, {4u, 8u}, {2u, 4u}, {1u, 2u}}) {
            for (std::size_t y = first; y < height; y += step)
                stored.push_back(rows[y]);
        }
        GifRecipe recipe = SmallGif(stored);
        recipe.image_flags = kInterlaced;
        const TestImage image;
        ASSERT_EQ(ReadGif(image, recipe.File()), 1);
        EXPECT_EQ(image.Indices(), rows) << height;
    }
}

TEST(GifRead, DataMayBeCutAnyhow) {
    Bytes pixels;
    for (int i = 0; i < 47 * 33; ++i)
        pixels.push_back(static_cast<std::uint8_t>(i * i / 97));
    GifRecipe recipe;
    recipe.global_table.resize(256);
    recipe.width = 47;
    recipe.height = 33;
    recipe.data = EncodePlainly(pixels);
    for (const std::size_t block : {1u, 2u, 7u, 254u, 255u}) {
        recipe.block = block;
        const TestImage image;
        ASSERT_EQ(ReadGif(image, recipe.File()), 1);
        Bytes read(pixels.size());
        Rastrel_GetImageByte(image, read.data(), 8, 0, 0, 47, 33);
        EXPECT_EQ(read, pixels) << block;
    }
}

/// Reads codes as an image and compares it with what the plain decoder makes of them.
void ExpectDecodedAsTold(const Bytes& data, int code_size, int width, int height,
                         const std::string& what) {
    GifRecipe recipe;
    recipe.global_table.resize(256);
    recipe.width = width;
    recipe.height = height;
    recipe.code_size = code_size;
    recipe.data = data;
    const TestImage image;
    ASSERT_EQ(ReadGif(image, recipe.File()), 1) << what;
    const auto most = static_cast<std::size_t>(width * height);
    Bytes expected = DecodePlainly(data, static_cast<unsigned>(code_size), most);
    expected.resize(most);
    Bytes read(most);
    Rastrel_GetImageByte(image, read.data(), 8, 0, 0, width, height);
    EXPECT_EQ(read, expected) << what;
}

TEST(GifRead, AnyCodesGiveWhatThePlainDecoderGives) {
    std::mt19937 random(5);
    for (int code_size = 2; code_size <= 9; ++code_size) {
        for (int round = 0; round < 60; ++round) {
            // Bits of which more and more are 0: from noise to many clear and low codes.
            Bytes data(random() % 6000);
            for (std::uint8_t& byte : data) {
                byte = static_cast<std::uint8_t>(random());
                for (int i = 0; i < round % 4; ++i)
                    byte &= static_cast<std::uint8_t>(random());
            }
            ExpectDecodedAsTold(data, code_size, 150, 100,
                                std::to_string(code_size) + " bits, " + std::to_string(round));
        }
    }
}

TEST(GifRead, FullDictionariesStayInUse) {
    // Never cleared: behind 4096 codes, strings of all ages are used for a long time.
    std::mt19937 engine(6);
    const auto random = [&engine] { return static_cast<unsigned>(engine()); };
    for (const int code_size : {2, 8}) {
        CodePacker codes;
        unsigned next = (1u << code_size) + 2;
        auto width = static_cast<unsigned>(code_size) + 1;
        for (int i = 0; i < 30000; ++i) {
            unsigned code = random() % next;
            // The newest ones make long strings.
            if (i % 3 != 0) code = next - 1 - random() % 3;
            if (i == 0 || code >> 1 == 1u << (code_size - 1)) code = 0;
            codes.Put(code, width);
            if (i > 0 && next < 4096 && ++next == 1u << width && width < 12) ++width;
        }
        ExpectDecodedAsTold(codes.Bytes(), code_size, 2000, 1500, std::to_string(code_size));
    }
}

TEST(GifRead, BadCodeSizesAreRefused) {
    for (const int code_size : {0, 1, 10, 12, 255}) {
        GifRecipe recipe = SmallGif({"12"});
        recipe.code_size = code_size;
        EXPECT_EQ(ReadGif(TestImage(), recipe.File()), 0) << code_size;
    }
}

TEST(GifRead, CutFilesKeepWhatWasDecoded) {
    Bytes pixels;
    for (int i = 0; i < 40 * 20; ++i)
        pixels.push_back(static_cast<std::uint8_t>(1 + i / 3 % 200));
    GifRecipe recipe;
    recipe.global_table.resize(256);
    recipe.extensions = GraphicControl(1, 2);
    recipe.width = 40;
    recipe.height = 20;
    recipe.data = EncodePlainly(pixels);
    recipe.block = 100;
    const Bytes whole = recipe.File();
    const std::size_t first_block =
        whole.size() - 2 - recipe.data.size() - (recipe.data.size() + 99) / 100;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        const TestImage image(3, 3, 24);
        const std::string before = image.Fingerprint();
        const int result = ReadGif(image, cut);
        ASSERT_EQ(result, length >= first_block ? 1 : 0) << length;
        if (result == 0) {
            EXPECT_EQ(image.Width(), 0) << "a change of format ends the old image";
            continue;
        }
        const std::size_t behind = length - first_block;
        const std::size_t data = std::min(behind - (behind + 100) / 101, recipe.data.size());
        Bytes expected = DecodePlainly(
            Bytes(recipe.data.begin(), recipe.data.begin() + static_cast<std::ptrdiff_t>(data)), 8,
            pixels.size());
        expected.resize(pixels.size());
        Bytes read(pixels.size());
        Rastrel_GetImageByte(image, read.data(), 8, 0, 0, 40, 20);
        ASSERT_EQ(read, expected) << length;
    }
}

TEST(GifRead, FailedReadsLeaveTheImage) {
    const TestImage image;
    ASSERT_EQ(ReadGif(image, SmallGif({".123", "3.1."}).File()), 1);
    const std::string before = image.Fingerprint();
    GifRecipe recipe = SmallGif({"12"});
    recipe.code_size = 1;
    EXPECT_EQ(ReadGif(image, recipe.File()), 0);
    EXPECT_EQ(ReadGif(image, Text("GIF89a")), 0);
    EXPECT_EQ(ReadGif(image, {}), 0);
    EXPECT_EQ(image.Fingerprint(), before);
}

TEST(GifRead, SizesThatLie) {
    struct Case {
        int width, height, result;
    };
    for (const Case& c : {Case{0, 2, 0},
                          {2, 0, 0},
                          {0, 0, 0},
                          {65535, 65535, 0},   // beyond what a bitmap can be
                          {40000, 40000, 0},   // beyond what the few bytes can become
                          {8000, 8000, 1}}) {  // little enough to be zeros for the most part
        GifRecipe recipe = SmallGif({"12"});
        recipe.width = c.width;
        recipe.height = c.height;
        const TestImage image;
        EXPECT_EQ(ReadGif(image, recipe.File()), c.result) << c.width << " x " << c.height;
        const TestFolder folder;
        int width = -1;
        int height = -1;
        int bits = -1;
        EXPECT_EQ(
            Rastrel_ReadInfo(folder.Write("a.gif", recipe.File()).c_str(), &width, &height, &bits),
            1)
            << "the header is there";
        EXPECT_EQ(width, c.width);
        EXPECT_EQ(height, c.height);
        EXPECT_EQ(bits, 8);
        if (c.result == 1) {
            EXPECT_EQ(Rastrel_GetIndex(image, 1, c.height - 1), 2);
            EXPECT_EQ(Rastrel_GetIndex(image, c.width - 1, 0), 0);
        }
    }
}

TEST(GifRead, PixelsTooManyGoNowhere) {
    GifRecipe recipe = SmallGif({"123", "321", "222"});
    recipe.height = 2;
    const TestImage image;
    ASSERT_EQ(ReadGif(image, recipe.File()), 1);
    EXPECT_EQ(image.Indices(), (Picture{"123", "321"}));
}

TEST(GifRead, OnlyTheFirstImageCounts) {
    Bytes two = SmallGif({"12"}).File();
    const Bytes second = SmallGif({"333"}).File();
    two.pop_back();
    two.insert(two.end(), second.begin() + 25, second.end());
    const TestImage image;
    ASSERT_EQ(ReadGif(image, two), 1);
    EXPECT_EQ(image.Indices(), (Picture{"12"}));
}

}  // namespace
}  // namespace rastrel_test
