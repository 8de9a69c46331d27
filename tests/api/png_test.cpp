// PNG files: every kind of samples, transparency, parts, damage, and what is written.

#include <functional>

#include "support/images.h"

namespace rastrel_test {
namespace {

std::uint32_t Crc(const Bytes& bytes) {
    std::uint32_t crc = ~0u;
    for (const std::uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xedb88320u : 0);
    }
    return ~crc;
}

void PutBig(Bytes& out, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        out.push_back(static_cast<std::uint8_t>(value >> shift));
}

void PutChunk(Bytes& file, const char* type, const Bytes& data) {
    PutBig(file, static_cast<std::uint32_t>(data.size()));
    Bytes covered = Text(type);
    covered.insert(covered.end(), data.begin(), data.end());
    file.insert(file.end(), covered.begin(), covered.end());
    PutBig(file, Crc(covered));
}

constexpr int kGrey = 0;
constexpr int kRgb = 2;
constexpr int kPalette = 3;
constexpr int kGreyAlpha = 4;
constexpr int kRgba = 6;

/// A file whose rows are given as bytes, not compressed.
struct PngRecipe {
    std::uint32_t width = 1;
    std::uint32_t height = 1;
    int depth = 8;
    int color_type = kGrey;
    Bytes palette;
    Bytes transparency;
    std::vector<Bytes> rows;
    int interlace = 0;

    [[nodiscard]] Bytes File() const {
        Bytes file = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
        Bytes header;
        PutBig(header, width);
        PutBig(header, height);
        for (const int field : {depth, color_type, 0, 0, interlace})
            header.push_back(static_cast<std::uint8_t>(field));
        PutChunk(file, "IHDR", header);
        if (!palette.empty()) PutChunk(file, "PLTE", palette);
        if (!transparency.empty()) PutChunk(file, "tRNS", transparency);
        PutChunk(file, "tEXt", Text("of no interest"));
        PutChunk(file, "IDAT", Stream());
        PutChunk(file, "IEND", {});
        return file;
    }

  private:
    /// One stored block, between the header and the checksum of a zlib stream.
    [[nodiscard]] Bytes Stream() const {
        Bytes plain;
        for (const Bytes& row : rows) {
            plain.push_back(0);
            plain.insert(plain.end(), row.begin(), row.end());
        }
        const auto length = static_cast<unsigned>(plain.size());
        const auto byte = [](unsigned value) { return static_cast<std::uint8_t>(value); };
        Bytes stream = {
            0x78, 0x01, 1, byte(length), byte(length >> 8), byte(~length), byte(~length >> 8)};
        std::uint32_t a = 1;
        std::uint32_t b = 0;
        for (const std::uint8_t value : plain) {
            a = (a + value) % 65521;
            b = (b + a) % 65521;
        }
        stream.insert(stream.end(), plain.begin(), plain.end());
        PutBig(stream, b << 16 | a);
        return stream;
    }
};

int Read(const TestImage& image, const TestFolder& folder, const Bytes& file) {
    return Rastrel_Read(image, folder.Write("a.png", file).c_str(), -1);
}

TEST(Png, SamplesBecomeTheNearestDepth) {
    struct Case {
        const char* what;
        PngRecipe recipe;
        int depth;
        Bytes stored;  ///< without padding
        std::vector<Rgb> palette;
    };
    const std::vector<Rgb> black_and_white = {{0, 0, 0}, {255, 255, 255}};
    const Case cases[] = {
        {"grey of 1 bit",
         {9, 1, 1, kGrey, {}, {}, {{0xa5, 0x80}}},
         1,
         {0xa5, 0x80},
         black_and_white},
        {"palette of 1 bit",
         {3, 1, 1, kPalette, {1, 2, 3, 4, 5, 6}, {}, {{0x40}}},
         1,
         {0x40},
         {{1, 2, 3}, {4, 5, 6}}},
        {"grey of 2 bits", {5, 1, 2, kGrey, {}, {}, {{0x1b, 0x80}}}, 8, {0, 85, 170, 255, 170}, {}},
        {"grey of 4 bits", {3, 1, 4, kGrey, {}, {}, {{0x0f, 0x30}}}, 8, {0, 255, 51}, {}},
        {"palette of 2 bits",
         {5, 1, 2, kPalette, {9, 9, 9, 8, 8, 8, 7, 7, 7}, {}, {{0x18, 0x40}}},
         8,
         {0, 1, 2, 0, 1},
         {{9, 9, 9}, {8, 8, 8}, {7, 7, 7}}},
        {"palette of 4 bits",
         {2, 1, 4, kPalette, {9, 9, 9, 8, 8, 8}, {}, {{0x10}}},
         8,
         {1, 0},
         {{9, 9, 9}, {8, 8, 8}}},
        {"grey of 8 bits", {3, 1, 8, kGrey, {}, {}, {{1, 2, 255}}}, 8, {1, 2, 255}, {}},
        // To the nearest: 0x0190 is 1.56 times 0x0101.
        {"grey of 16 bits",
         {3, 1, 16, kGrey, {}, {}, {{0x01, 0x00, 0x01, 0x90, 0xff, 0xff}}},
         8,
         {1, 2, 255},
         {}},
        {"grey and alpha", {1, 1, 8, kGreyAlpha, {}, {}, {{7, 9}}}, 32, {7, 7, 7, 9}, {}},
        {"grey and alpha of 16 bits",
         {1, 1, 16, kGreyAlpha, {}, {}, {{7, 7, 9, 9}}},
         32,
         {7, 7, 7, 9},
         {}},
        {"colours", {2, 1, 8, kRgb, {}, {}, {{1, 2, 3, 4, 5, 6}}}, 24, {3, 2, 1, 6, 5, 4}, {}},
        {"colours of 16 bits", {1, 1, 16, kRgb, {}, {}, {{1, 1, 2, 2, 3, 3}}}, 24, {3, 2, 1}, {}},
        {"colours and alpha", {1, 1, 8, kRgba, {}, {}, {{1, 2, 3, 4}}}, 32, {3, 2, 1, 4}, {}},
        {"a transparent colour",
         {2, 1, 8, kRgb, {}, {0, 1, 0, 2, 0, 3}, {{1, 2, 3, 4, 5, 6}}},
         32,
         {3, 2, 1, 0, 6, 5, 4, 255},
         {}},
        {"a transparent grey of 16 bits",
         {2, 1, 16, kGrey, {}, {1, 2}, {{1, 2, 1, 3}}},
         32,
         {1, 1, 1, 0, 1, 1, 1, 255},
         {}},
    };
    const TestFolder folder;
    for (const Case& c : cases) {
        const TestImage image;
        ASSERT_EQ(Read(image, folder, c.recipe.File()), 1) << c.what;
        EXPECT_EQ(image.Depth(), c.depth) << c.what;
        Bytes stored = image.StoredBytes();
        stored.resize(c.stored.size());
        EXPECT_EQ(stored, c.stored) << c.what;
        if (!c.palette.empty()) {
            EXPECT_EQ(image.Palette(), c.palette) << c.what;
        } else if (c.depth == 8) {
            EXPECT_EQ(image.Palette().at(77), (Rgb{77, 77, 77})) << c.what;
        }
        EXPECT_EQ(image.Description(), "PNG Format, " + std::to_string(c.depth) + " bit.");
        int bits = 0;
        EXPECT_EQ(Rastrel_ReadInfo(folder.Path("a.png").c_str(), nullptr, nullptr, &bits), 1);
        EXPECT_EQ(bits, c.depth) << c.what;
    }
}

TEST(Png, OneTransparentEntryIsKept) {
    const TestFolder folder;
    struct Case {
        const char* what;
        PngRecipe recipe;
        std::optional<Rgb> transparent;
    };
    PngRecipe palette = {1, 1, 8, kPalette, {1, 1, 1, 2, 2, 2, 3, 3, 3}, {}, {{0}}};
    const auto with = [&palette](const Bytes& alphas) {
        palette.transparency = alphas;
        return palette;
    };
    for (const Case& c :
         {Case{"the second", with({255, 0}), Rgb{2, 2, 2}},
          {"beside half ones", with({100, 255, 0}), Rgb{3, 3, 3}},
          {"two", with({0, 255, 0}), {}},
          {"half ones", with({100, 1}), {}},
          {"a grey", {1, 1, 8, kGrey, {}, {0, 9}, {{0}}}, Rgb{9, 9, 9}},
          {"a grey of 4 bits", {1, 1, 4, kGrey, {}, {0, 2}, {{0}}}, Rgb{34, 34, 34}},
          {"white of 1 bit", {1, 1, 1, kGrey, {}, {0, 1}, {{0}}}, Rgb{255, 255, 255}},
          {"no such grey", {1, 1, 4, kGrey, {}, {0, 16}, {{0}}}, {}}}) {
        const TestImage image;
        ASSERT_EQ(Read(image, folder, c.recipe.File()), 1) << c.what;
        std::uint8_t red = 0;
        std::uint8_t green = 0;
        std::uint8_t blue = 0;
        const int result = Rastrel_GetTransparentColor(image, &red, &green, &blue);
        EXPECT_EQ(result, c.transparent ? 1 : 0) << c.what;
        EXPECT_EQ((Rgb{red, green, blue}), c.transparent.value_or(Rgb{})) << c.what;
        // Written and read again it is still there.
        ASSERT_EQ(Rastrel_Save(image, folder.Path("b.png").c_str(), -1), 1);
        const TestImage again;
        ASSERT_EQ(Rastrel_Read(again, folder.Path("b.png").c_str(), -1), 1);
        EXPECT_EQ(Rastrel_GetTransparentColor(again, &red, &green, &blue), result) << c.what;
        EXPECT_EQ((Rgb{red, green, blue}), c.transparent.value_or(Rgb{})) << c.what;
    }
}

TEST(Png, EveryDepthIsWrittenWithoutLoss) {
    const TestFolder folder;
    const std::string path = folder.Path("saved.png");
    for (const int depth : {1, 4, 8, 24, 32}) {
        for (const bool palette : {false, true}) {
            for (const auto& [width, height] : {std::pair{47, 33}, {1, 1}, {8, 3}, {300, 1}}) {
                const TestImage image(width, height, depth);
                FillWithPattern(image);
                if (palette && depth <= 8)
                    SetPalette(image, {{1, 20, 255}, {200, 100, 0}, {7, 7, 7}});
                ASSERT_EQ(Rastrel_Save(image, path.c_str(), -1), 1);
                const TestImage again;
                ASSERT_EQ(Rastrel_Read(again, path.c_str(), -1), 1);
                EXPECT_EQ(again.Depth(), depth == 4 ? 8 : depth);
                const std::size_t bytes = static_cast<std::size_t>(width) * height * 4;
                Bytes ours(bytes);
                Bytes read(bytes);
                Rastrel_GetImageByte(image, ours.data(), 32, 0, 0, width, height);
                Rastrel_GetImageByte(again, read.data(), 32, 0, 0, width, height);
                EXPECT_EQ(ours, read) << depth << ' ' << palette << ' ' << width;
                if (palette && depth == 8) {
                    EXPECT_EQ(again.Palette()[2], (Rgb{7, 7, 7}));
                }
            }
        }
    }
}

TEST(Png, PartsAreThoseOfTheWhole) {
    const TestFolder folder;
    const std::string path = folder.Path("saved.png");
    for (const int depth : {1, 8, 24, 32}) {
        const TestImage image(61, 23, depth);
        FillWithPattern(image);
        if (depth <= 8) SetPalette(image, {{1, 20, 255}, {200, 100, 0}});
        ASSERT_EQ(Rastrel_Save(image, path.c_str(), -1), 1);
        const TestImage whole;
        ASSERT_EQ(Rastrel_Read(whole, path.c_str(), -1), 1);
        for (const auto& [x, y, side] : {std::array{0, 0, 5},
                                         {3, 2, 9},
                                         {-4, -3, 20},
                                         {50, 20, 99},
                                         {0, 7, 61},
                                         {60, 22, 1}}) {
            for (const int reduction : {1, 3}) {
                const TestImage expected;
                Rastrel_Copy(expected, whole);
                ASSERT_EQ(Rastrel_ExtractPortion(expected, x, y, side, side), 1);
                const TestImage part;
                ASSERT_EQ(
                    Rastrel_ReadPartialEx(part, path.c_str(), -1, x, y, side, side, reduction), 1);
                if (reduction == 1) {
                    EXPECT_EQ(part.Fingerprint(), expected.Fingerprint()) << x << ' ' << depth;
                } else {
                    EXPECT_EQ(part.Width(), (expected.Width() + 2) / 3);
                    EXPECT_EQ(part.ColorAt(0, part.Height() - 1),
                              expected.ColorAt(0, expected.Height() - 1));
                }
            }
        }
        EXPECT_EQ(Rastrel_ReadPartial(whole, path.c_str(), -1, 61, 0, 3, 3), 0);
        EXPECT_EQ(whole.Width(), 61);
    }
}

TEST(Png, CutAndDamagedFilesFail) {
    const TestFolder folder;
    const TestImage image(11, 7, 8);
    FillWithPattern(image);
    SetPalette(image, {{1, 2, 3}, {4, 5, 6}});
    const std::string path = folder.Path("a.png");
    ASSERT_EQ(Rastrel_Save(image, path.c_str(), -1), 1);
    const Bytes file = FileBytes(path);
    const std::string before = image.Fingerprint();
    for (std::size_t length = 0; length < file.size(); ++length) {
        ASSERT_EQ(Read(image, folder, {file.begin(), file.begin() + length}), 0) << length;
        Bytes damaged = file;
        damaged[length] ^= 0x10;
        // One bit anywhere is found out: everything is under a checksum.
        ASSERT_EQ(Read(image, folder, damaged), 0) << length;
        ASSERT_EQ(image.Fingerprint(), before) << length;
    }
    EXPECT_EQ(Read(image, folder, file), 1);
}

TEST(Png, ClaimsAreCheckedAgainstTheFile) {
    const TestFolder folder;
    const TestImage image(3, 3, 24);
    struct Case {
        const char* what;
        std::uint32_t width, height;
        int depth, color_type, interlace;
    };
    for (const Case& c : {Case{"large", 30000, 20000, 8, kRgb, 0},
                          {"large and interlaced", 30000, 20000, 8, kRgb, 1},
                          {"as large as it can be", 0x7fffffff, 0x7fffffff, 16, kRgba, 1},
                          {"wide", 0x7fffffff, 1, 16, kRgba, 1},
                          {"high", 1, 0x7fffffff, 1, kGrey, 0},
                          {"too wide", 0x80000000, 1, 8, kGrey, 0},
                          {"no width", 0, 1, 8, kGrey, 0},
                          {"no depth", 1, 1, 3, kGrey, 0},
                          {"no colours", 1, 1, 8, 5, 0}}) {
        const PngRecipe recipe = {c.width, c.height, c.depth,        c.color_type,
                                  {},      {},       {{1, 2, 3, 4}}, c.interlace};
        EXPECT_EQ(Read(image, folder, recipe.File()), 0) << c.what;
        EXPECT_EQ(Rastrel_ReadPartial(image, folder.Path("a.png").c_str(), -1, 0, 0, 9, 9), 0);
    }
    const PngRecipe no_palette = {1, 1, 8, kPalette, {}, {}, {{1}}};
    EXPECT_EQ(Read(image, folder, no_palette.File()), 0);
}

}  // namespace
}  // namespace rastrel_test
