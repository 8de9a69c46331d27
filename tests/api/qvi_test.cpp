// QVI files: a BMP's headers, then the pixels as one LZO stream behind two length words.

#include "support/images.h"

namespace rastrel_test {
namespace {

Bytes SavedAs(const TestImage& image, const std::string& name) {
    const TestFolder folder;
    EXPECT_EQ(Rastrel_Save(image, folder.Path(name).c_str(), -1), 1);
    return FileBytes(folder.Path(name));
}

int ReadQvi(const TestImage& image, const Bytes& bytes) {
    const TestFolder folder;
    return Rastrel_Read(image, folder.Write("image.qvi", bytes).c_str(), -1);
}

TEST(Qvi, DiffersFromBmpOnlyInItsPixels) {
    for (const int bits : {1, 4, 8, 24, 32}) {
        const TestImage image(47, 33, bits);
        FillWithPattern(image);
        const std::string before = image.Fingerprint();
        const Bytes bmp = SavedAs(image, "a.bmp");
        const Bytes qvi = SavedAs(image, "a.qvi");
        const std::size_t pixels = U32At(bmp, 10);
        EXPECT_EQ(Bytes(qvi.begin(), qvi.begin() + static_cast<std::ptrdiff_t>(pixels)),
                  Bytes(bmp.begin(), bmp.begin() + static_cast<std::ptrdiff_t>(pixels)));
        EXPECT_EQ(U32At(qvi, pixels), U32At(qvi, 34)) << "the expanded length";
        EXPECT_EQ(U32At(qvi, pixels + 4), qvi.size() - pixels - 8) << "nothing follows the stream";
        EXPECT_EQ(U32At(qvi, 2), bmp.size()) << "the length of the plain file";

        const TestImage back;
        ASSERT_EQ(ReadQvi(back, qvi), 1);
        EXPECT_EQ(back.StoredBytes(), image.StoredBytes()) << bits;
        EXPECT_EQ(image.Fingerprint(), before) << "saving changes no pixel";
    }
}

TEST(Qvi, TellsItsNameAndNoCompression) {
    const TestImage image(5, 5, 8);
    SavedAs(image, "a.qvi");
    EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_QVI);
    EXPECT_EQ(image.Description(), "Norvanta Image format, 8 bit.");
}

TEST(Qvi, SizeIsKnownWithoutPixels) {
    const TestFolder folder;
    const TestImage image(47, 33, 4);
    ASSERT_EQ(Rastrel_Save(image, folder.Path("a.qvi").c_str(), -1), 1);
    int width = 0;
    int height = 0;
    int bits = 0;
    EXPECT_EQ(Rastrel_ReadInfo(folder.Path("a.qvi").c_str(), &width, &height, &bits), 1);
    EXPECT_EQ(width, 47);
    EXPECT_EQ(height, 33);
    EXPECT_EQ(bits, 4);
}

TEST(Qvi, CutStreamsLoadWithWhatTheyHold) {
    const TestImage image(40, 40, 8);
    Rastrel_Fill(image, 200, 200, 200);
    const Bytes whole = SavedAs(image, "a.qvi");
    const std::size_t pixels = U32At(whole, 10);
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const TestImage back;
        const int result = ReadQvi(
            back, Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
        EXPECT_EQ(result, length >= 54 ? 1 : 0) << length;
        if (length >= 54 && length < pixels + 8) {
            EXPECT_EQ(back.StoredBytes(), Bytes(1600)) << length;
        }
        if (length == whole.size()) {
            EXPECT_EQ(back.StoredBytes(), image.StoredBytes());
        }
    }
}

TEST(Qvi, DamagedStreamsAndLengthsLoad) {
    const TestImage image(40, 40, 8);
    FillWithPattern(image);
    const Bytes whole = SavedAs(image, "a.qvi");
    const std::size_t pixels = U32At(whole, 10);
    for (const std::uint32_t expanded : {0u, 1u, 1599u, 1601u, 0x7fffffffu, 0xffffffffu}) {
        for (const std::uint32_t compressed : {0u, 1u, 0x7fffffffu, 0xffffffffu}) {
            Bytes damaged = whole;
            PutU32(damaged, pixels, expanded);
            PutU32(damaged, pixels + 4, compressed);
            const TestImage back;
            EXPECT_EQ(ReadQvi(back, damaged), 1) << expanded << ", " << compressed;
            EXPECT_EQ(back.StoredBytes().size(), 1600u);
        }
    }
    for (std::size_t at = pixels + 8; at < whole.size(); at += 7) {
        Bytes damaged = whole;
        damaged[at] ^= 0xff;
        const TestImage back;
        EXPECT_EQ(ReadQvi(back, damaged), 1) << at;
    }
}

TEST(Qvi, RunLengthDataAreCompressedAsTheyStand) {
    BmpRecipe recipe;
    recipe.bits = 8;
    recipe.compression = 1;
    recipe.width = 60;
    recipe.height = 2;
    recipe.table = Bytes(1024, 3);
    recipe.pixels = {60, 1, 0, 0, 60, 2, 0, 1};
    recipe.image_size = 8;
    const TestFolder folder;
    const TestImage image;
    ASSERT_EQ(Rastrel_Read(image, folder.Write("a.bmp", recipe.File()).c_str(), -1), 1);
    const Bytes qvi = SavedAs(image, "a.qvi");
    EXPECT_EQ(U32At(qvi, U32At(qvi, 10)), 8u);
    const TestImage back;
    ASSERT_EQ(ReadQvi(back, qvi), 1);
    EXPECT_EQ(back.StoredBytes(), image.StoredBytes());
    EXPECT_EQ(SavedAs(back, "b.bmp"), SavedAs(image, "c.bmp"));
}

TEST(Qvi, PromisesBeyondAnyStreamAreRefused) {
    BmpRecipe recipe;
    recipe.width = 20000;
    recipe.height = 20000;
    recipe.pixels = Bytes(100);
    EXPECT_EQ(ReadQvi(TestImage(), recipe.File()), 0);
}

}  // namespace
}  // namespace rastrel_test
