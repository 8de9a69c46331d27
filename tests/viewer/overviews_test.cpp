// The reduced pictures that the viewer draws large ones from.

#include "overviews.h"

#include "support/images.h"

namespace rastrel_view {
namespace {

using rastrel_test::Bytes;

const Progress kGoOn = [](double) { return true; };

/// An image of 24 bits whose pixels are made by a function of column and row.
template <typename Colour>
OwnedImage& Fill(OwnedImage& image, int width, int height, Colour colour) {
    Bytes pixels;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int value = colour(x, y);
            for (const int channel : {value, value + 1, 255 - value})
                pixels.push_back(static_cast<std::uint8_t>(channel));
        }
    }
    EXPECT_EQ(Rastrel_CreateFromByte24(image.Handle(), pixels.data(), width, height), 1);
    return image;
}

Bytes PixelAt(const OwnedImage& image, int column, int row) {
    Bytes pixel(3);
    EXPECT_EQ(Rastrel_GetImageByte(image.Handle(), pixel.data(), 24, column, row, 1, 1), 1);
    return pixel;
}

TEST(Overviews, HalveTheSidesUntilTheyAreSmall) {
    const struct {
        int width;
        int height;
        std::vector<std::pair<int, int>> expected;
    } kCases[] = {
        {1024, 1024, {}},
        {1025, 3, {{513, 2}}},
        {5, 4099, {{3, 2050}, {2, 1025}, {1, 513}}},
        {2048, 1, {{1024, 1}}},
    };
    for (const auto& [width, height, expected] : kCases) {
        OwnedImage image;
        Fill(image, width, height, [](int, int) { return 70; });
        const auto overviews = MakeOverviews(image, kGoOn);
        std::vector<std::pair<int, int>> sizes;
        for (const auto& overview : overviews) {
            sizes.emplace_back(overview->Width(), overview->Height());
            EXPECT_EQ(PixelAt(*overview, overview->Width() - 1, overview->Height() - 1),
                      (Bytes{70, 71, 185}));
        }
        EXPECT_EQ(sizes, expected) << width << " x " << height;
    }
}

TEST(Overviews, HoldMeansOfTheirPixels) {
    // 1030 columns make bands of several hundred rows: some means cross no band, some levels do.
    const auto colour = [](int x, int y) { return (x * 7 + y * 13) % 240; };
    for (const auto& [width, height] : {std::pair{1031, 701}, {1030, 1400}}) {
        OwnedImage image;
        Fill(image, width, height, colour);
        const auto overviews = MakeOverviews(image, kGoOn);
        ASSERT_FALSE(overviews.empty());
        const OwnedImage& half = *overviews.front();
        for (int y = 0; y < half.Height(); y += 3) {
            for (int x = 0; x < half.Width(); x += 5) {
                const int right = std::min(2 * x + 1, width - 1);
                const int lower = std::min(2 * y + 1, height - 1);
                const int sum = colour(2 * x, 2 * y) + colour(right, 2 * y) + colour(2 * x, lower) +
                                colour(right, lower);
                ASSERT_EQ(PixelAt(half, x, y)[0], (sum + 2) / 4) << x << ", " << y;
                ASSERT_EQ(PixelAt(half, x, y)[2], (4 * 255 - sum + 2) / 4) << x << ", " << y;
            }
        }
    }
}

TEST(Overviews, ShowThePaletteColoursOfShallowImages) {
    OwnedImage image;
    const Bytes indices(2000 * 4, 3);
    ASSERT_EQ(Rastrel_CreateFromByte(image.Handle(), indices.data(), 2000, 4), 1);
    const Bytes red = {0, 0, 0, 200};
    const Bytes green = {0, 0, 0, 100};
    const Bytes blue = {0, 0, 0, 50};
    ASSERT_EQ(Rastrel_SetPalette(image.Handle(), 4, red.data(), green.data(), blue.data()), 1);
    const auto overviews = MakeOverviews(image, kGoOn);
    ASSERT_EQ(overviews.size(), 1u);
    EXPECT_EQ(PixelAt(*overviews[0], 999, 1), (Bytes{50, 100, 200}));
}

TEST(Overviews, TellHowFarTheyAreAndCanBeGivenUp) {
    OwnedImage image;
    Fill(image, 1500, 2500, [](int x, int) { return x % 200; });
    double last = -1;
    const auto rising = [&last](double fraction) {
        EXPECT_GE(fraction, last);
        EXPECT_LE(fraction, 1);
        last = fraction;
        return true;
    };
    EXPECT_EQ(MakeOverviews(image, rising).size(), 2u);
    EXPECT_GT(last, 0.7);
    EXPECT_TRUE(MakeOverviews(image, [](double fraction) { return fraction < 0.5; }).empty());
}

}  // namespace
}  // namespace rastrel_view
