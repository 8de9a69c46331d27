// Tall TIFF files from bands, and satellite scenes read by rows.

#include <thread>

#include "support/images.h"
#include "support/tiff_recipe.h"

namespace rastrel_test {
namespace {

using Values = std::vector<std::uint32_t>;

TEST(TiffBands, StackTopToBottomIntoOneStrip) {
    const TestFolder folder;
    const std::string path = folder.Path("tall.tif");
    const TestImage top(3, 1, 24);
    const TestImage middle(3, 2, 24);
    const TestImage bottom(3, 1, 24);
    FillWithPattern(top, 1);
    FillWithPattern(middle, 2);
    FillWithPattern(bottom, 3);
    for (const int code : {1, 5, 8, 32773}) {
        const intptr_t writer = Rastrel_TIFFOpen(path.c_str(), code, 3, 4, top);
        ASSERT_NE(writer, 0);
        EXPECT_EQ(Rastrel_TIFFAppend(writer, middle), 1);
        EXPECT_EQ(Rastrel_TIFFAppend(writer, bottom), 1);
        EXPECT_EQ(Rastrel_TIFFAppend(writer, bottom), 0) << "below the total height";
        EXPECT_EQ(Rastrel_TIFFClose(writer), 1);
        const Bytes file = FileBytes(path);
        EXPECT_EQ(TagOf(file, kImageLength), Values{4});
        EXPECT_EQ(TagOf(file, kRowsPerStrip), Values{4});
        EXPECT_EQ(TagOf(file, kStripOffsets).size(), 1u);
        EXPECT_EQ(TagOf(file, kCompression), Values{static_cast<std::uint32_t>(code)});
        const TestImage tall;
        ASSERT_EQ(Rastrel_Read(tall, path.c_str(), -1), 1);
        for (int x = 0; x < 3; ++x) {
            EXPECT_EQ(tall.ColorAt(x, 3), top.ColorAt(x, 0)) << code;
            EXPECT_EQ(tall.ColorAt(x, 2), middle.ColorAt(x, 1)) << code;
            EXPECT_EQ(tall.ColorAt(x, 1), middle.ColorAt(x, 0)) << code;
            EXPECT_EQ(tall.ColorAt(x, 0), bottom.ColorAt(x, 0)) << code;
        }
    }
}

TEST(TiffBands, GreyFilesComeWithoutTwoTagsAndWithAllTheirRows) {
    const TestFolder folder;
    const std::string path = folder.Path("grey.tif");
    const TestImage band(4, 2, 8);
    Draw(band, {"1234", "5678"});
    Rastrel_SetGrayPalette(band);
    const intptr_t writer = Rastrel_TIFFOpen(path.c_str(), 1, 4, 4, band);
    ASSERT_NE(writer, 0);
    SetPalette(band, {{9, 8, 7}});
    EXPECT_EQ(Rastrel_TIFFAppend(writer, band), 1) << "a palette's indices follow";
    ASSERT_EQ(Rastrel_TIFFClose(writer), 1);
    const Bytes file = FileBytes(path);
    EXPECT_EQ(TagOf(file, kBitsPerSample), Values{});
    EXPECT_EQ(TagOf(file, kPhotometric), Values{});
    EXPECT_EQ(TagOf(file, kColorMap), Values{});
    ASSERT_EQ(TagOf(file, kStripByteCounts), Values{16});
    const auto* rows = &file[TagOf(file, kStripOffsets)[0]];
    EXPECT_EQ(Bytes(rows, rows + 16), (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(TiffBands, OpenRefusesWithoutAFile) {
    const TestFolder folder;
    const std::string path = folder.Path("no.tif");
    const TestImage band(4, 2, 24);
    const TestImage deep(4, 2, 32);
    const TestImage empty;
    struct Case {
        const char* what;
        int compression, width, height, handle;
    };
    for (const Case& c : {Case{"another width", 1, 5, 2, band},
                          {"too low", 1, 4, 1, band},
                          {"a fax code for colours", 4, 4, 2, band},
                          {"no compression", 1234, 4, 2, band},
                          {"32 bits", 1, 4, 2, deep},
                          {"no raster", 1, 4, 2, empty},
                          {"no image", 1, 4, 2, -1}})
        EXPECT_EQ(Rastrel_TIFFOpen(path.c_str(), c.compression, c.width, c.height, c.handle), 0)
            << c.what;
    EXPECT_EQ(Rastrel_TIFFOpen(nullptr, 1, 4, 2, band), 0);
    EXPECT_TRUE(folder.Names().empty());
    EXPECT_EQ(Rastrel_TIFFOpen(folder.Path("no/such/folder.tif").c_str(), 1, 4, 2, band), 0);
}

TEST(TiffBands, WritersThatAreNoneFail) {
    const TestFolder folder;
    const TestImage band(4, 2, 24);
    const intptr_t writer = Rastrel_TIFFOpen(folder.Path("a.tif").c_str(), 1, 4, 6, band);
    const TestImage shallow(4, 2, 8);
    EXPECT_EQ(Rastrel_TIFFAppend(writer, shallow), 0) << "another depth";
    EXPECT_EQ(Rastrel_TIFFAppend(writer, -1), 0);
    EXPECT_EQ(Rastrel_TIFFAppend(0, band), 0);
    EXPECT_EQ(Rastrel_TIFFAppend(writer + 1, band), 0);
    const TestImage wide(9, 2, 24);
    const TestImage narrow(1, 2, 24);
    EXPECT_EQ(Rastrel_TIFFAppend(writer, wide), 1) << "the width is not checked";
    EXPECT_EQ(Rastrel_TIFFAppend(writer, narrow), 1);
    EXPECT_EQ(Rastrel_TIFFClose(writer), 1);
    EXPECT_EQ(Rastrel_TIFFClose(writer), 0);
    EXPECT_EQ(Rastrel_TIFFAppend(writer, band), 0);
    EXPECT_EQ(Rastrel_TIFFClose(-5), 0);
    EXPECT_EQ(TagOf(FileBytes(folder.Path("a.tif")), kStripByteCounts), Values{72});
}

TEST(TiffBands, TotalsMayExceedWhatABitmapCanHold) {
    if (sizeof(void*) < 8) GTEST_SKIP() << "for 64-bit modules";
    const TestFolder folder;
    const std::string path = folder.Path("huge.tif");
    constexpr int kWidth = 32768;
    constexpr int kBandHeight = 512;
    constexpr int kBands = 48;  // 2.4 GB of pixels
    const TestImage band(kWidth, kBandHeight, 24);
    const int total = kBands * kBandHeight;
    const intptr_t writer = Rastrel_TIFFOpen(path.c_str(), 32773, kWidth, total, band);
    ASSERT_NE(writer, 0);
    for (int i = 1; i < kBands; ++i) {
        if (i == kBands - 1) Rastrel_SetRGB(band, 7, 0, 10, 20, 30);
        ASSERT_EQ(Rastrel_TIFFAppend(writer, band), 1) << i;
    }
    ASSERT_EQ(Rastrel_TIFFClose(writer), 1);
    const TestImage part;
    EXPECT_EQ(Rastrel_Read(part, path.c_str(), -1), 0) << "more than a bitmap holds";
    ASSERT_EQ(Rastrel_ReadPartial(part, path.c_str(), -1, 6, total - 1, 2, 1), 1);
    EXPECT_EQ(part.ColorAt(0, 0), (Rgb{0, 0, 0}));
    EXPECT_EQ(part.ColorAt(1, 0), (Rgb{10, 20, 30}));
}

/// A scene of four rows and two columns: the value of a band's sample is 8 * (100 * band + 10 * row
/// + column), so that its byte is what stands in the brackets.
TiffRecipe Scene(std::uint32_t rows_per_strip, bool separate) {
    constexpr std::uint32_t kRows = 4;
    TiffRecipe recipe(2, kRows, 16, 4, 1, {});
    recipe.Set(kRowsPerStrip, {rows_per_strip}).Set(kPlanarConfiguration, {separate ? 2u : 1u});
    recipe.chunks.clear();
    const auto value = [](std::uint32_t band, std::uint32_t row, std::uint32_t column) {
        return 8 * (100 * band + 10 * row + column);
    };
    for (std::uint32_t plane = 0; plane < (separate ? 4u : 1u); ++plane) {
        for (std::uint32_t top = 0; top < kRows; top += rows_per_strip) {
            FieldWriter strip;
            for (std::uint32_t row = top; row < std::min(kRows, top + rows_per_strip); ++row) {
                for (std::uint32_t column = 0; column < 2; ++column) {
                    if (separate) {
                        strip.U16(value(plane, row, column));
                        continue;
                    }
                    for (std::uint32_t band = 0; band < 4; ++band)
                        strip.U16(value(band, row, column));
                }
            }
            recipe.chunks.push_back(strip.Done());
        }
    }
    return recipe;
}

/// The rows that ReadRow delivers until it fails.
std::vector<Bytes> RowsOf(const std::string& path) {
    std::vector<Bytes> rows;
    EXPECT_EQ(Rastrel_QuickBird_Open(path.c_str()), 1);
    Bytes row(6);
    while (Rastrel_QuickBird_ReadRow(row.data(), nullptr, nullptr, nullptr) == 1)
        rows.push_back(row);
    EXPECT_EQ(Rastrel_QuickBird_ReadRow(row.data(), nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(Rastrel_QuickBird_Close(), 1);
    return rows;
}

TEST(QuickBird, DeliversRowsBottomUpOfTopLeftFiles) {
    const TestFolder folder;
    const auto row = [](int y) {
        const auto byte = [y](int band, int x) {
            return static_cast<std::uint8_t>(100 * band + 10 * y + x);
        };
        return Bytes{byte(0, 0), byte(1, 0), byte(2, 0), byte(0, 1), byte(1, 1), byte(2, 1)};
    };
    for (const bool separate : {true, false}) {
        TiffRecipe recipe = Scene(1, separate);
        EXPECT_EQ(RowsOf(folder.Write("a.tif", recipe.File())),
                  (std::vector<Bytes>{row(3), row(2), row(1), row(0)}));
        recipe.Set(kOrientation, {4});
        EXPECT_EQ(RowsOf(folder.Write("a.tif", recipe.File())),
                  (std::vector<Bytes>{row(0), row(1), row(2), row(3)}));
        recipe = Scene(3, separate);
        recipe.Set(kOrientation, {4});
        EXPECT_EQ(RowsOf(folder.Write("a.tif", recipe.File())),
                  (std::vector<Bytes>{row(0), row(1), row(2), row(3)}));
    }
    // Bottom-up a strip is decoded at its first row, the last of it to be delivered: the others
    // show what the strip before left there, which here is row 3 alone.
    const Bytes nothing(6);
    EXPECT_EQ(RowsOf(folder.Write("a.tif", Scene(3, true).File())),
              (std::vector<Bytes>{row(3), nothing, nothing, row(0)}));
}

TEST(QuickBird, LooksBytesUpWhenAllThreeTablesAreGiven) {
    const TestFolder folder;
    const std::string path = folder.Write("a.tif", Scene(1, true).File());
    Bytes red(256, 1);
    Bytes green(256, 2);
    Bytes blue(256, 3);
    blue[30] = 77;  // band 0, row 3, column 0
    ASSERT_EQ(Rastrel_QuickBird_Open(path.c_str()), 1);
    Bytes row(6);
    EXPECT_EQ(Rastrel_QuickBird_ReadRow(nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(Rastrel_QuickBird_ReadRow(row.data(), red.data(), green.data(), blue.data()), 1);
    EXPECT_EQ(row, (Bytes{77, 2, 1, 3, 2, 1}));
    EXPECT_EQ(Rastrel_QuickBird_ReadRow(row.data(), red.data(), nullptr, blue.data()), 1);
    EXPECT_EQ(row[0], 20) << "a table missing: as they are";
    EXPECT_EQ(Rastrel_QuickBird_Close(), 1);
    EXPECT_EQ(Rastrel_QuickBird_Close(), 0);
    EXPECT_EQ(Rastrel_QuickBird_ReadRow(row.data(), nullptr, nullptr, nullptr), 0);
}

TEST(QuickBird, OtherFilesAreRefused) {
    const TestFolder folder;
    const TiffRecipe good = Scene(1, true);
    TiffRecipe three_bands(1, 1, 16, 3, 2, Bytes(6));
    TiffRecipe bytes(1, 1, 8, 4, 2, Bytes(4));
    TiffRecipe high_strip = good;
    high_strip.Set(kRowsPerStrip, {0});
    TiffRecipe tiles = good;
    tiles.Tiled(16, 16);
    for (const TiffRecipe& recipe : {three_bands, bytes, high_strip, tiles})
        EXPECT_EQ(Rastrel_QuickBird_Open(folder.Write("a.tif", recipe.File()).c_str()), 0);
    EXPECT_EQ(Rastrel_QuickBird_Open(folder.Path("missing.tif").c_str()), 0);
    EXPECT_EQ(Rastrel_QuickBird_Open(nullptr), 0);
    TiffRecipe cut = good;
    cut.stated_offset = 100000;
    ASSERT_EQ(Rastrel_QuickBird_Open(folder.Write("a.tif", cut.File()).c_str()), 1);
    Bytes row(6);
    EXPECT_EQ(Rastrel_QuickBird_ReadRow(row.data(), nullptr, nullptr, nullptr), 0);
    Rastrel_QuickBird_Close();
}

}  // namespace
}  // namespace rastrel_test
