// Images laid into others by their places on the map.

#include <cmath>
#include <limits>

#include "support/images.h"

namespace rastrel_test {
namespace {

struct Place {
    double x, y, size;
};

/// What is told for one target pixel, from its centre: the source's column and row, or none.
std::optional<std::pair<int, int>> SourceOf(const Place& target, int column, int row,
                                            const Place& source, const TestImage& image) {
    const double x = target.x + (column + 0.5) * target.size;
    const double y = target.y - (row + 0.5) * target.size;
    const double at_column = std::floor((x - source.x) / source.size);
    const double at_row = std::floor((source.y - y) / source.size);
    if (at_column < 0 || at_column >= image.Width() || at_row < 0 || at_row >= image.Height())
        return std::nullopt;
    return std::pair(static_cast<int>(at_column), static_cast<int>(at_row));
}

/// The colour of a pixel in picture coordinates.
std::optional<Rgb> PictureColor(const TestImage& image, int column, int row) {
    return image.ColorAt(column, image.Height() - 1 - row);
}

void MakePattern(const TestImage& image, int width, int height, int bits, unsigned seed) {
    if (bits == 8) {
        const Bytes indices(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        ASSERT_EQ(Rastrel_CreateFromByte(image, indices.data(), width, height), 1);
    } else {
        ASSERT_EQ(Rastrel_Create(image, width, height, bits), 1);
    }
    FillWithPattern(image, seed);
    if (bits >= 24) Rastrel_SetRGB(image, width / 2, height / 2, 9, 8, 7);
}

TEST(Mosaica, EveryCentreTakesThePixelUnderIt) {
    const Place target_place = {1000, 500, 2};
    for (const Place& place : {Place{1000, 500, 2},
                               {1006, 490, 2},
                               {990, 505, 2},
                               {1001, 499, 2},
                               {1003.3, 497.7, 1.7},
                               {995, 510, 5},
                               {1000.5, 499.5, 0.5},
                               {1079, 500, 2},
                               {960.1, 540, 1}}) {
        for (const int bits : {24, 32, 8}) {
            for (const int source_bits : {24, 8}) {
                SCOPED_TRACE(std::to_string(place.x) + " " + std::to_string(place.size) + " " +
                             std::to_string(bits) + " from " + std::to_string(source_bits));
                const TestImage target;
                const TestImage before;
                const TestImage source;
                MakePattern(target, 40, 30, bits, 1);
                MakePattern(source, 25, 35, source_bits, 2);
                Rastrel_Copy(before, target);
                ASSERT_EQ(
                    Rastrel_Mosaica(target, source, target_place.x, target_place.y,
                                    target_place.size, place.x, place.y, place.size, 1, 9, 8, 7),
                    1);
                for (int row = 0; row < 30; ++row) {
                    for (int column = 0; column < 40; ++column) {
                        const auto from = SourceOf(target_place, column, row, place, source);
                        auto color =
                            from ? PictureColor(source, from->first, from->second) : std::nullopt;
                        if (!color || *color == Rgb{9, 8, 7}) {
                            color = PictureColor(before, column, row);
                        } else if (bits == 8) {
                            Rastrel_SetRGB(before, column, 29 - row, (*color)[0], (*color)[1],
                                           (*color)[2]);
                            color = PictureColor(before, column, row);
                        }
                        ASSERT_EQ(PictureColor(target, column, row), color) << column << " " << row;
                    }
                }
            }
        }
    }
}

TEST(Mosaica, CentresOnEdgesGoRightAndDown) {
    const TestImage source(2, 2, 24);
    Rastrel_SetRGB(source, 0, 1, 1, 1, 1);
    Rastrel_SetRGB(source, 1, 1, 2, 2, 2);
    Rastrel_SetRGB(source, 0, 0, 3, 3, 3);
    Rastrel_SetRGB(source, 1, 0, 4, 4, 4);
    // The only centre lies where all four meet.
    const TestImage target(1, 1, 24);
    ASSERT_EQ(Rastrel_Mosaica(target, source, -1, 1, 2, -1, 1, 1, 0, 0, 0, 0), 1);
    EXPECT_EQ(target.ColorAt(0, 0), (Rgb{4, 4, 4}));
}

TEST(Mosaica, ClipsByCentres) {
    const TestImage source(10, 10, 24);
    Rastrel_Fill(source, 200, 100, 50);
    const TestImage target(10, 10, 24);
    const double clip[4] = {2.5, 3.5, 6.5, 7.5};
    ASSERT_EQ(Rastrel_MosaicaWithClipping(target, source, 0, 10, 1, 0, 10, 1, 0, 0, 0, 0, clip), 1);
    for (int y = 0; y < 10; ++y) {
        for (int x = 0; x < 10; ++x) {
            const double center_x = x + 0.5;
            const double center_y = y + 0.5;
            const bool inside =
                center_x >= 2.5 && center_x < 6.5 && center_y > 3.5 && center_y <= 7.5;
            EXPECT_EQ(target.ColorAt(x, y), (inside ? Rgb{200, 100, 50} : Rgb{0, 0, 0}));
        }
    }
    const TestImage whole(10, 10, 24);
    ASSERT_EQ(Rastrel_MosaicaWithClipping(whole, source, 0, 10, 1, 0, 10, 1, 0, 0, 0, 0, nullptr),
              1);
    EXPECT_EQ(whole.Fingerprint(), source.Fingerprint());
}

TEST(Mosaica, OnlyWhereTheMaskIsNotBlack) {
    const TestImage source(8, 6, 24);
    Rastrel_Fill(source, 200, 100, 50);
    const TestImage mask(8, 6, 1);
    Rastrel_SetRGB(mask, 0, 0, 255, 255, 255);
    SetPalette(mask, {{0, 0, 0}, {255, 255, 255}});
    Draw(mask, {"11......", ".1......", "........", "...1....", "........", ".......1"});
    const TestImage target(8, 6, 24);
    ASSERT_EQ(Rastrel_MosaicaWithMask(target, source, mask, 0, 6, 1, 0, 6, 1, 0, 0, 0, 0), 1);
    for (int y = 0; y < 6; ++y) {
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(target.ColorAt(x, y) == (Rgb{200, 100, 50}),
                      mask.ColorAt(x, y) == (Rgb{255, 255, 255}));
    }
    const TestImage smaller(8, 5, 24);
    EXPECT_EQ(Rastrel_MosaicaWithMask(target, source, smaller, 0, 6, 1, 0, 6, 1, 0, 0, 0, 0), 0);
    EXPECT_EQ(Rastrel_MosaicaWithMask(target, source, -1, 0, 6, 1, 0, 6, 1, 0, 0, 0, 0), 0);
}

TEST(Mosaica, AnImageIntoItself) {
    const TestImage image(20, 20, 24);
    FillWithPattern(image);
    const TestImage copy;
    Rastrel_Copy(copy, image);
    const TestImage expected;
    Rastrel_Copy(expected, image);
    ASSERT_EQ(Rastrel_Mosaica(expected, copy, 0, 20, 1, 3, 18, 1, 0, 0, 0, 0), 1);
    ASSERT_EQ(Rastrel_Mosaica(image, image, 0, 20, 1, 3, 18, 1, 0, 0, 0, 0), 1);
    EXPECT_EQ(image.Fingerprint(), expected.Fingerprint());
}

TEST(Mosaica, RefusesPlacesThatAreNone) {
    const TestImage image(5, 5, 24);
    const TestImage source(5, 5, 24);
    Rastrel_Fill(source, 1, 2, 3);
    const std::string before = image.Fingerprint();
    const double nan = std::nan("");
    const double infinite = std::numeric_limits<double>::infinity();
    for (const double bad : {nan, infinite, 0.0, -1.0}) {
        EXPECT_EQ(Rastrel_Mosaica(image, source, 0, 0, bad, 0, 0, 1, 0, 0, 0, 0), 0);
        EXPECT_EQ(Rastrel_Mosaica(image, source, 0, 0, 1, 0, 0, bad, 0, 0, 0, 0), 0);
    }
    for (const double bad : {nan, infinite, -infinite}) {
        EXPECT_EQ(Rastrel_Mosaica(image, source, bad, 0, 1, 0, 0, 1, 0, 0, 0, 0), 0);
        EXPECT_EQ(Rastrel_Mosaica(image, source, 0, 0, 1, 0, bad, 1, 0, 0, 0, 0), 0);
    }
    for (const double away : {5.0, -5.0, 1e300, -1e300})
        EXPECT_EQ(Rastrel_Mosaica(image, source, 0, 0, 1, away, 0, 1, 0, 0, 0, 0), 1);
    EXPECT_EQ(Rastrel_Mosaica(image, -1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0), 0);
    EXPECT_EQ(Rastrel_Mosaica(TestImage(), source, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0), 0);
    EXPECT_EQ(image.Fingerprint(), before);
}

}  // namespace
}  // namespace rastrel_test
