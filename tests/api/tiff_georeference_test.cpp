// TIFF files whose georeference is turned come north-up.

#include <cmath>

#include "support/images.h"
#include "support/tiff_recipe.h"

namespace rastrel_test {
namespace {

constexpr int kMinIsBlack = 1;
constexpr int kRgb = 2;
constexpr int kPalette = 3;

/// x = by_column_x * column + by_row_x * row + x, and y likewise, of pixels' upper-left corners.
std::vector<double> Matrix(double by_column_x, double by_row_x, double x, double by_column_y,
                           double by_row_y, double y) {
    return {by_column_x, by_row_x, 0, x, by_column_y, by_row_y, 0, y, 0, 0, 0, 0, 0, 0, 0, 1};
}

std::vector<double> Turned(double degrees, double pixel) {
    const double c = pixel * std::cos(degrees * 3.14159265358979 / 180);
    const double s = pixel * std::sin(degrees * 3.14159265358979 / 180);
    return Matrix(c, s, 1000, s, -c, 2000);
}

TEST(TiffGeoreference, TurnedPicturesComeNorthUp) {
    struct Case {
        const char* what;
        std::vector<double> matrix;
        Picture expected;
    };
    // The picture is 123 over 456.
    const Case cases[] = {
        {"north-up", Matrix(2, 0, 100, 0, -2, 50), {"123", "456"}},
        {"pixels that are not square", Matrix(2, 0, 100, 0, -3, 50), {"123", "456"}},
        {"south-up", Matrix(2, 0, 100, 0, 2, 50), {"456", "123"}},
        {"east to west", Matrix(-2, 0, 100, 0, -2, 50), {"321", "654"}},
        {"both", Matrix(-2, 0, 100, 0, 2, 50), {"654", "321"}},
        {"columns go north, rows east", Matrix(0, 2, 100, 2, 0, 50), {"36", "25", "14"}},
        {"columns go south, rows west", Matrix(0, -2, 100, -2, 0, 50), {"41", "52", "63"}},
        {"all on a line", Matrix(1, 1, 100, 1, 1, 50), {"123", "456"}},
        {"no number", Matrix(std::nan(""), 1, 100, 1, 1, 50), {"123", "456"}},
    };
    LogFolder log;
    const TestFolder& folder = log.Folder();
    for (const Case& c : cases) {
        TiffRecipe recipe(3, 2, 8, 1, kMinIsBlack, {1, 2, 3, 4, 5, 6});
        recipe.SetDoubles(kModelTransformation, c.matrix);
        const std::string path = folder.Write("a.tif", recipe.File());
        const TestImage image;
        ASSERT_EQ(Rastrel_Read(image, path.c_str(), -1), 1) << c.what;
        EXPECT_EQ(image.Indices(), c.expected) << c.what;
        int width = 0;
        int height = 0;
        int bits = 0;
        ASSERT_EQ(Rastrel_ReadInfo(path.c_str(), &width, &height, &bits), 1);
        EXPECT_EQ(width, image.Width()) << c.what;
        EXPECT_EQ(height, image.Height()) << c.what;
    }
    EXPECT_EQ(log.NewText(), "") << "the tags are known";
}

TEST(TiffGeoreference, PlacesWithoutAPixelAreWhiteOrTheNearestToIt) {
    // A square standing on its corner in a box of 3 x 3 cells. Truncation keeps places up to one
    // and a half pixels before the first one in the picture, and rounds those behind the last out.
    const auto matrix = Matrix(1, 1, 0, 1, -1, 0);
    const TestFolder folder;
    TiffRecipe grey(2, 2, 8, 1, kMinIsBlack, {1, 2, 3, 4});
    grey.SetDoubles(kModelTransformation, matrix);
    const TestImage image;
    ASSERT_EQ(Rastrel_Read(image, folder.Write("a.tif", grey.File()).c_str(), -1), 1);
    EXPECT_EQ(image.Indices(), (Picture{"12?", "134", "33?"}));
    EXPECT_EQ(Rastrel_GetIndex(image, 2, 0), 255);
    TiffRecipe palette(2, 2, 8, 1, kPalette, {1, 2, 3, 4});
    std::vector<std::uint32_t> map(768, 0);
    palette.SetDoubles(kModelTransformation, matrix).Set(kColorMap, map);
    ASSERT_EQ(Rastrel_Read(image, folder.Write("a.tif", palette.File()).c_str(), -1), 1);
    EXPECT_EQ(Rastrel_GetIndex(image, 2, 0), 255) << "no entry is white";
    for (const std::size_t white : {9u, 12u})
        map[white] = map[white + 256] = map[white + 512] = 0xffff;
    palette.Set(kColorMap, map);
    ASSERT_EQ(Rastrel_Read(image, folder.Write("a.tif", palette.File()).c_str(), -1), 1);
    EXPECT_EQ(image.Indices(), (Picture{"129", "134", "339"})) << "the first that is";
    TiffRecipe colors(2, 2, 8, 3, kRgb, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    colors.SetDoubles(kModelTransformation, matrix);
    ASSERT_EQ(Rastrel_Read(image, folder.Write("a.tif", colors.File()).c_str(), -1), 1);
    EXPECT_EQ(image.ColorAt(2, 0), (Rgb{255, 255, 255}));
    EXPECT_EQ(image.ColorAt(2, 1), (Rgb{10, 11, 12}));
}

TEST(TiffGeoreference, PartsAreInTheDeliveredPicture) {
    const TestFolder folder;
    const TestImage source(23, 17, 24);
    FillWithPattern(source);
    Bytes rows(23 * 17 * 3);
    Rastrel_GetImageByte(source, rows.data(), 24, 0, 0, 23, 17);
    TiffRecipe recipe(23, 17, 8, 3, kRgb, rows);
    recipe.SetDoubles(kModelTransformation, Turned(30, 2.5));
    for (const std::uint32_t orientation : {1u, 4u}) {
        recipe.Set(kOrientation, {orientation});
        const std::string path = folder.Write("a.tif", recipe.File());
        const TestImage whole;
        ASSERT_EQ(Rastrel_Read(whole, path.c_str(), -1), 1);
        EXPECT_EQ(whole.Width(), 28);  // 23 cos 30 + 17 sin 30 = 28.4
        EXPECT_EQ(whole.Height(), 26);
        struct Case {
            int x, y, width, height;
        };
        for (const Case& c :
             {Case{0, 0, 28, 26}, {0, 0, 3, 3}, {25, 20, 9, 9}, {10, 5, 7, 11}, {-5, 12, 6, 1}}) {
            const TestImage expected;
            Rastrel_Copy(expected, whole);
            ASSERT_EQ(Rastrel_ExtractPortion(expected, c.x, c.y, c.width, c.height), 1);
            const TestImage part;
            ASSERT_EQ(Rastrel_ReadPartial(part, path.c_str(), -1, c.x, c.y, c.width, c.height), 1);
            EXPECT_EQ(part.Fingerprint(), expected.Fingerprint()) << c.x << ' ' << c.y;
        }
        const TestImage reduced;
        ASSERT_EQ(Rastrel_ReadPartialEx(reduced, path.c_str(), -1, 4, 2, 20, 20, 3), 1);
        EXPECT_EQ(reduced.Width(), 7);
        for (int y = 0; y < 7; ++y) {
            for (int x = 0; x < 7; ++x)
                EXPECT_EQ(reduced.ColorAt(x, 6 - y), whole.ColorAt(4 + 3 * x, 25 - (2 + 3 * y)));
        }
    }
}

TEST(TiffGeoreference, SqueezedIntoALineFails) {
    const TestFolder folder;
    TiffRecipe recipe(2, 2, 8, 1, kMinIsBlack, {1, 2, 3, 4});
    recipe.SetDoubles(kModelTransformation, Matrix(1, 1, 0, 1, 1.00000001, 0));
    const std::string path = folder.Write("a.tif", recipe.File());
    const TestImage image;
    EXPECT_EQ(Rastrel_Read(image, path.c_str(), -1), 0);
    int width = 0;
    EXPECT_EQ(Rastrel_ReadInfo(path.c_str(), &width, nullptr, nullptr), 0);
}

}  // namespace
}  // namespace rastrel_test
