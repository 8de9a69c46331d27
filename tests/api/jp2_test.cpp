// JPEG 2000 files: round trips, parts, damage, and files that claim more than they hold. The
// formats that nobody can read, too.

#include <algorithm>

#include "support/images.h"

namespace rastrel_test {
namespace {

Bytes Saved(const TestImage& image, const TestFolder& folder) {
    const std::string path = folder.Path("saved.jp2");
    EXPECT_EQ(Rastrel_Save(image, path.c_str(), -1), 1);
    return FileBytes(path);
}

/// The pixels as they look.
Bytes Colors(const TestImage& image) {
    Bytes colors(static_cast<std::size_t>(image.Width() * image.Height()) * 3);
    Rastrel_GetImageByte(image, colors.data(), 24, 0, 0, image.Width(), image.Height());
    return colors;
}

TEST(Jpeg2000, EveryDepthIsWrittenAsItLooks) {
    const TestFolder folder;
    for (const int depth : {1, 4, 8, 24, 32}) {
        for (const auto& [width, height] : {std::pair{47, 33}, {1, 1}, {8, 1}, {3, 70}}) {
            for (const bool palette : {false, true}) {
                const TestImage image(width, height, depth);
                FillWithPattern(image);
                if (palette && depth <= 8) SetPalette(image, {{10, 200, 30}, {200, 100, 0}});
                Saved(image, folder);
                const TestImage again;
                ASSERT_EQ(Rastrel_Read(again, folder.Path("saved.jp2").c_str(), -1), 1);
                EXPECT_EQ(Colors(again), Colors(image)) << depth << ' ' << width << ' ' << palette;
                const int read_depth = depth > 8 || palette ? 24 : 8;
                EXPECT_EQ(again.Depth(), read_depth);
                EXPECT_EQ(again.Palette().size(), read_depth == 8 ? 256u : 0u);
                EXPECT_EQ(again.Description(),
                          "JPEG2000 Format, " + std::to_string(read_depth) + " bit.");
                int bits = 0;
                EXPECT_EQ(
                    Rastrel_ReadInfo(folder.Path("saved.jp2").c_str(), nullptr, nullptr, &bits), 1);
                EXPECT_EQ(bits, read_depth);
            }
        }
    }
}

TEST(Jpeg2000, QualityDecidesOnLoss) {
    const TestFolder folder;
    const TestImage image(64, 64, 24);
    FillWithPattern(image);
    std::size_t before = 0;
    for (const int quality : {1, 30, 60, 99, 100}) {
        Rastrel_SetQuality(image, quality);
        const Bytes file = Saved(image, folder);
        EXPECT_GT(file.size(), before) << quality;
        before = file.size();
        const TestImage again;
        ASSERT_EQ(Rastrel_Read(again, folder.Path("saved.jp2").c_str(), -1), 1);
        EXPECT_EQ(Colors(again) == Colors(image), quality == 100) << quality;
    }
}

TEST(Jpeg2000, BareCodestreamsAndOtherExtensionsRead) {
    const TestFolder folder;
    const TestImage image(20, 10, 24);
    FillWithPattern(image);
    const Bytes file = Saved(image, folder);
    const Bytes start = {0xff, 0x4f, 0xff, 0x51};
    const auto bare = std::search(file.begin(), file.end(), start.begin(), start.end());
    ASSERT_NE(bare, file.end());
    for (const Bytes& content : {file, Bytes(bare, file.end())}) {
        const TestImage again;
        ASSERT_EQ(Rastrel_Read(again, folder.Write("a.BIN", content).c_str(), -1), 1);
        EXPECT_EQ(Rastrel_GetImageType(again), RASTREL_TYPE_JPEG2000);
        EXPECT_EQ(Colors(again), Colors(image));
    }
}

TEST(Jpeg2000, PartsAreThoseOfTheWhole) {
    const TestFolder folder;
    const TestImage image(147, 133, 24);
    FillWithPattern(image);
    for (const int quality : {0, 50}) {
        Rastrel_SetQuality(image, quality);
        Saved(image, folder);
        const std::string path = folder.Path("saved.jp2");
        const TestImage whole;
        ASSERT_EQ(Rastrel_Read(whole, path.c_str(), -1), 1);
        for (const auto& [x, y, side] :
             {std::array{0, 0, 1}, {0, 0, 64}, {63, 65, 2}, {146, 132, 9}, {-5, 100, 60}}) {
            for (const int reduction : {1, 5}) {
                const TestImage expected;
                Rastrel_Copy(expected, whole);
                ASSERT_EQ(Rastrel_ExtractPortion(expected, x, y, side, side), 1);
                const TestImage part;
                ASSERT_EQ(
                    Rastrel_ReadPartialEx(part, path.c_str(), -1, x, y, side, side, reduction), 1);
                const int top = part.Height() - 1;
                if (reduction == 1) {
                    EXPECT_EQ(part.Fingerprint(), expected.Fingerprint()) << x << ' ' << quality;
                } else {
                    EXPECT_EQ(part.ColorAt(part.Width() - 1, top),
                              expected.ColorAt(5 * (part.Width() - 1), expected.Height() - 1));
                }
            }
        }
        EXPECT_EQ(Rastrel_ReadPartial(whole, path.c_str(), -1, 147, 0, 3, 3), 0);
        EXPECT_EQ(whole.Width(), 147);
    }
}

TEST(Jpeg2000, CutFilesFailAndDamageDoesNoHarm) {
    const TestFolder folder;
    const TestImage image(20, 12, 24);
    FillWithPattern(image);
    const Bytes file = Saved(image, folder);
    const std::string before = image.Fingerprint();
    // Of what stands behind the last packet nothing is missed.
    for (std::size_t length = 0; length + 2 < file.size(); ++length) {
        const std::string path = folder.Write("cut.jp2", {file.begin(), file.begin() + length});
        ASSERT_EQ(Rastrel_Read(image, path.c_str(), -1), 0) << length;
        ASSERT_EQ(image.Fingerprint(), before) << length;
    }
    unsigned chance = 1;
    for (int i = 0; i < 1000; ++i) {
        Bytes damaged = file;
        for (int byte = 0; byte < 3; ++byte) {
            chance = chance * 1664525u + 1013904223u;
            // Half of them in the headers.
            const std::size_t reach = byte == 0 ? 200 : damaged.size();
            damaged[chance / 64 % reach] = static_cast<std::uint8_t>(chance >> 24);
        }
        const TestImage read;
        const int result = Rastrel_Read(read, folder.Write("damaged.jp2", damaged).c_str(), -1);
        ASSERT_EQ(Rastrel_GetRawImage(read) != nullptr, result == 1);
    }
}

/// A codestream of headers alone: sizes, coding style and one empty tile.
struct StreamRecipe {
    std::uint32_t width = 16;
    std::uint32_t height = 16;
    std::uint32_t tile = 16;
    int components = 1;
    int layers = 1;
    int precincts = -1;  ///< exponents of all resolutions; -1: not said

    [[nodiscard]] Bytes File() const {
        Bytes file = {0xff, 0x4f, 0xff, 0x51};
        const auto put = [&file](std::uint32_t value, int bytes) {
            for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
                file.push_back(static_cast<std::uint8_t>(value >> shift));
        };
        put(static_cast<std::uint32_t>(38 + 3 * components), 2);
        put(0, 2);
        for (const std::uint32_t value : {width, height, 0u, 0u, tile, tile, 0u, 0u})
            put(value, 4);
        put(static_cast<std::uint32_t>(components), 2);
        for (int i = 0; i < components; ++i)
            put(0x070101, 3);
        put(0xff52, 2);  // coding style: five levels, blocks of 64 x 64
        put(precincts < 0 ? 12 : 18, 2);
        put(precincts < 0 ? 0 : 1, 1);
        put(0, 1);
        put(static_cast<std::uint32_t>(layers), 2);
        put(0, 1);
        put(0x05040400, 4);
        put(1, 1);
        for (int i = 0; precincts >= 0 && i < 6; ++i)
            put(static_cast<std::uint32_t>(precincts), 1);
        put(0xff5c, 2);  // quantisation: none
        put(19, 2);
        put(0x40, 1);
        for (int i = 0; i < 16; ++i)
            put(0x40, 1);
        for (const std::uint32_t value : {0xff90000au, 0x00000000u, 0x000e0001u, 0xff93ffd9u})
            put(value, 4);
        return file;
    }
};

TEST(Jpeg2000, ClaimsAreCheckedAgainstTheFile) {
    const TestFolder folder;
    const TestImage image(3, 3, 24);
    struct Case {
        const char* what;
        StreamRecipe recipe;
    };
    for (const Case& c : {Case{"large", {40000, 40000, 40000}},
                          {"beyond all", {0x7fffffff, 0x7fffffff, 0x7fffffff}},
                          {"a coordinate too far", {0xffffffff, 1, 1}},
                          {"many tiles", {4000, 4000, 16}},
                          {"no tile", {16, 16, 0}},
                          {"many components", {16, 16, 1, 16384}},
                          {"no component", {16, 16, 16, 0}},
                          {"many precincts", {4000, 4000, 4000, 3, 1, 0x00}},
                          {"many layers", {4000, 4000, 4000, 3, 65535, 0x77}}}) {
        const std::string path = folder.Write("a.jp2", c.recipe.File());
        EXPECT_EQ(Rastrel_ReadInfo(path.c_str(), nullptr, nullptr, nullptr), 0) << c.what;
        EXPECT_EQ(Rastrel_Read(image, path.c_str(), -1), 0) << c.what;
        EXPECT_EQ(Rastrel_ReadPartial(image, path.c_str(), -1, 0, 0, 9, 9), 0) << c.what;
    }
    int width = 0;
    const std::string path = folder.Write("a.jp2", StreamRecipe().File());
    EXPECT_EQ(Rastrel_ReadInfo(path.c_str(), &width, nullptr, nullptr), 1) << "the recipe is sound";
    EXPECT_EQ(width, 16);
}

TEST(Unavailable, FormatsFailEveryOperation) {
    const TestFolder folder;
    for (const char* extension : {"sid", "ecw", "fot", "map", "gfc", "gaf"}) {
        const std::string path = folder.Write(std::string("a.") + extension, Bytes(100, 7));
        const TestImage image;
        EXPECT_EQ(Rastrel_Read(image, path.c_str(), -1), 0) << extension;
        EXPECT_EQ(Rastrel_ReadPartialEx(image, path.c_str(), -1, 0, 0, 1, 1, 2), 0) << extension;
        EXPECT_EQ(Rastrel_ReadInfo(path.c_str(), nullptr, nullptr, nullptr), 0) << extension;
        std::array<char, 20> text = {};
        EXPECT_EQ(Rastrel_GetDescription(image, text.data(), 20), 0) << extension;
        EXPECT_EQ(Rastrel_GetRawImage(image), nullptr) << extension;
        const int type = Rastrel_GetImageType(image);
        for (const char* name : {"b.tif", "b.bmp", "b.bip", "b.jpg", "b.png", "b.sid"})
            EXPECT_EQ(Rastrel_Save(image, folder.Path(name).c_str(), -1), 0) << extension;
        EXPECT_EQ(Rastrel_GetImageType(image), type) << extension;
        // An image that is there survives the attempt to save it so.
        const TestImage other(4, 3, 24);
        FillWithPattern(other);
        const std::string before = other.Fingerprint();
        EXPECT_EQ(Rastrel_Save(other, folder.Path(std::string("c.") + extension).c_str(), -1), 0);
        EXPECT_EQ(other.Fingerprint(), before) << extension;
        EXPECT_EQ(Rastrel_GetImageType(other), RASTREL_TYPE_BMP);
    }
    EXPECT_EQ(folder.Names().size(), 6u) << "nothing was written";
}

}  // namespace
}  // namespace rastrel_test
