// The georeference that a TIFF's own tags tell.

#include "formats/tiff/geotiff.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/images.h"
#include "support/tiff_recipe.h"

namespace rastrel {
namespace {

using rastrel_test::TestFolder;
using rastrel_test::TiffRecipe;

TiffRecipe Image() {
    return {4, 2, 8, 1, 1, rastrel_test::Bytes(8)};
}

std::optional<TiffGeoreference> Place(const TiffRecipe& recipe) {
    const TestFolder folder;
    return ReadTiffGeoreference(folder.Write("a.tif", recipe.File()));
}

TEST(GeoTiff, TellsTheCornerAndThePixel) {
    const std::vector<double> scale = {2, 3, 0};
    // Column 1, row 1 of the raster is at (110, 220).
    const std::vector<double> tie = {1, 1, 0, 110, 220, 0};
    const std::vector<std::uint32_t> point = {1, 1, 0, 2, 1024, 0, 1, 1, 1025, 0, 1, 2};
    const std::vector<std::uint32_t> area = {1, 1, 0, 1, 1025, 0, 1, 1};
    using rastrel_test::kGeoKeyDirectory;
    using rastrel_test::kModelPixelScale;
    using rastrel_test::kModelTiepoint;
    using rastrel_test::kModelTransformation;
    TiffRecipe plain = Image();
    plain.SetDoubles(kModelPixelScale, scale).SetDoubles(kModelTiepoint, tie);
    TiffRecipe of_area = plain;
    of_area.Set(kGeoKeyDirectory, area);
    TiffRecipe of_points = plain;
    of_points.Set(kGeoKeyDirectory, point);
    TiffRecipe turned = Image();
    // Columns go north and rows east, by 2 and 8: 4 columns and 2 rows.
    turned.SetDoubles(kModelTransformation, {0, 8, 0, 100, 2, 0, 0, 50, 0, 0, 0, 0, 0, 0, 0, 1});
    struct Case {
        const char* what;
        TiffRecipe recipe;
        double x, y, pixel_size;
    };
    for (const Case& c : {Case{"no keys", plain, 108, 223, 2},
                          {"areas", of_area, 108, 223, 2},
                          {"points", of_points, 107, 224.5, 2},
                          {"turned", turned, 100, 58, 4}}) {
        const auto place = Place(c.recipe);
        ASSERT_TRUE(place) << c.what;
        EXPECT_EQ(place->x, c.x) << c.what;
        EXPECT_EQ(place->y, c.y) << c.what;
        EXPECT_EQ(place->pixel_size, c.pixel_size) << c.what;
    }
    EXPECT_FALSE(Place(Image())) << "no tags";
    EXPECT_FALSE(Place(Image().SetDoubles(kModelPixelScale, scale))) << "nowhere";
    EXPECT_FALSE(Place(Image().SetDoubles(kModelTiepoint, tie))) << "of no size";
    EXPECT_FALSE(Place(Image().SetDoubles(kModelTiepoint, tie).SetDoubles(kModelPixelScale, {2})));
    for (const double size : {0.0, std::nan(""), HUGE_VAL, 1e308})
        EXPECT_FALSE(Place(Image()
                               .SetDoubles(kModelTiepoint, {1e308, 0, 0, 0, 0, 0})
                               .SetDoubles(kModelPixelScale, {size, 1, 0})))
            << size;
    // Fewer bytes than sixteen doubles have.
    EXPECT_FALSE(Place(Image().Set(kModelTransformation, std::vector<std::uint32_t>(16, 1))));
    EXPECT_FALSE(Place(Image().SetText(kModelTransformation, "sixteen characters")));
    EXPECT_FALSE(ReadTiffGeoreference("missing.tif"));
}

TEST(GeoTiff, DirectAndInverseAreInverse) {
    QVgeotif geotif;
    geotif.x_column = 1.5;
    geotif.x_row = 0.25;
    geotif.x_origin = 1000;
    geotif.y_column = 0.5;
    geotif.y_row = -2;
    geotif.y_origin = -300;
    double x = 17;
    double y = 4;
    QVgeotif_AffineDiretta(geotif, &x, &y);
    EXPECT_EQ(x, 1026.5);
    EXPECT_EQ(y, -299.5);
    QVgeotif_AffineInversa(geotif, &x, &y);
    EXPECT_EQ(x, 17);
    EXPECT_EQ(y, 4);
}

}  // namespace
}  // namespace rastrel
