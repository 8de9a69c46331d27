// Stretching of an image's channels.

#include <cmath>
#include <limits>

#include "support/images.h"

namespace rastrel_test {
namespace {

struct Tables {
    std::array<std::uint8_t, 256> red = {};
    std::array<std::uint8_t, 256> green = {};
    std::array<std::uint8_t, 256> blue = {};

    int Calculate(int handle, int method, double k) {
        return Rastrel_CalculateStretching(handle, method, k, red.data(), green.data(),
                                           blue.data());
    }
    [[nodiscard]] int Apply(int handle) const {
        return Rastrel_ApplyStretching(handle, red.data(), green.data(), blue.data());
    }
};

/// A row of pixels with these reds; green is 100 in all, blue 255 less red.
void MakeRow(const TestImage& image, const std::vector<int>& reds, int bits = 24) {
    ASSERT_EQ(Rastrel_Create(image, static_cast<int>(reds.size()), 1, bits), 1);
    for (std::size_t x = 0; x < reds.size(); ++x)
        Rastrel_SetRGB(image, static_cast<int>(x), 0, reds[x], 100, 255 - reds[x]);
}

TEST(Stretching, RangeGoesFromBlackToWhite) {
    const TestImage image;
    MakeRow(image, {50, 51, 75, 149, 150});
    Tables tables;
    ASSERT_EQ(tables.Calculate(image, 1, 0), 1);
    for (int value = 0; value < 256; ++value) {
        const int expected = value <= 50 ? 0 : value >= 150 ? 255 : (value - 50) * 255 / 100;
        EXPECT_EQ(tables.red[static_cast<std::size_t>(value)], expected) << value;
        EXPECT_EQ(tables.green[static_cast<std::size_t>(value)], value) << "one value only";
    }
    EXPECT_EQ(tables.blue[105], 0);
    EXPECT_EQ(tables.blue[205], 255);
    EXPECT_EQ(tables.blue[155], 127);
}

TEST(Stretching, DeviationsAroundTheMean) {
    const TestImage image;
    const std::vector<int> reds = {90, 100, 110, 100, 90, 110, 40, 160};
    MakeRow(image, reds);
    double mean = 0;
    for (const int red : reds)
        mean += red / 8.0;
    double squares = 0;
    for (const int red : reds)
        squares += (red - mean) * (red - mean);
    const double reach = 1.5 * std::sqrt(squares / 7);
    Tables tables;
    ASSERT_EQ(tables.Calculate(image, 0, 1.5), 1);
    for (int value = 0; value < 256; ++value) {
        const double place = (value - (mean - reach)) * 255 / (2 * reach);
        const int expected = static_cast<int>(std::min(std::max(place, 0.0), 255.0));
        EXPECT_NEAR(tables.red[static_cast<std::size_t>(value)], expected, 1) << value;
    }
    EXPECT_EQ(tables.red[40], 0);
    EXPECT_EQ(tables.red[160], 255);
}

TEST(Stretching, TailsAreCut) {
    // A hundred pixels: two outliers on each side.
    std::vector<int> reds = {0, 1, 254, 255};
    for (int i = 0; i < 96; ++i)
        reds.push_back(100 + i % 21);
    const TestImage image;
    MakeRow(image, reds);
    Tables tables;
    ASSERT_EQ(tables.Calculate(image, 2, 2), 1);
    EXPECT_EQ(tables.red[100], 0);
    EXPECT_EQ(tables.red[110], 127);
    EXPECT_EQ(tables.red[120], 255);
    ASSERT_EQ(tables.Calculate(image, 2, 1), 1);
    EXPECT_EQ(tables.red[1], 0);
    EXPECT_EQ(tables.red[254], 255);
    EXPECT_EQ(tables.red[64], 63 * 255 / 253) << "between 1 and 254";
    ASSERT_EQ(tables.Calculate(image, 2, 0), 1);
    Tables range;
    ASSERT_EQ(range.Calculate(image, 1, 0), 1);
    EXPECT_EQ(tables.red, range.red);
}

TEST(Stretching, EqualisedValuesAreSpread) {
    std::vector<int> reds;
    for (const int red : {10, 11, 12, 13, 200})
        reds.insert(reds.end(), 20, red);
    const TestImage image;
    MakeRow(image, reds);
    Tables tables;
    ASSERT_EQ(tables.Calculate(image, 3, 0), 1);
    EXPECT_EQ(tables.red[10], 0);
    EXPECT_EQ(tables.red[11], 64);
    EXPECT_EQ(tables.red[12], 128);
    EXPECT_EQ(tables.red[13], 191);
    EXPECT_EQ(tables.red[200], 255);
    EXPECT_EQ(tables.green[100], 100);
}

TEST(Stretching, ChannelsGoThroughTheTables) {
    Tables tables;
    for (std::size_t i = 0; i < 256; ++i) {
        tables.red[i] = static_cast<std::uint8_t>(255 - i);
        tables.green[i] = static_cast<std::uint8_t>(i / 2);
        tables.blue[i] = 7;
    }
    for (const int bits : {24, 32}) {
        const TestImage image(9, 4, bits);
        FillWithPattern(image);
        const TestImage before;
        Rastrel_Copy(before, image);
        ASSERT_EQ(tables.Apply(image), 1);
        for (int y = 0; y < 4; ++y) {
            for (int x = 0; x < 9; ++x) {
                const Rgb old = *before.ColorAt(x, y);
                EXPECT_EQ(image.ColorAt(x, y), (Rgb{255 - old[0], old[1] / 2, 7}));
            }
        }
        if (bits == 32) {
            EXPECT_EQ(image.StoredBytes()[3], before.StoredBytes()[3]) << "alpha";
        }
    }
    const TestImage indexed(9, 4, 8);
    FillWithPattern(indexed);
    const Bytes indices = indexed.StoredBytes();
    SetPalette(indexed, {{1, 2, 3}, {100, 200, 50}});
    ASSERT_EQ(tables.Apply(indexed), 1);
    EXPECT_EQ(indexed.Palette(), (std::vector<Rgb>{{254, 1, 7}, {155, 100, 7}}));
    EXPECT_EQ(indexed.StoredBytes(), indices);
}

TEST(Stretching, PalettisedImagesCountByTheirColours) {
    const TestImage image(2, 1, 8);
    SetPalette(image, {{200, 0, 0}, {50, 0, 0}, {0, 255, 255}});
    Draw(image, {".1"});
    Tables tables;
    ASSERT_EQ(tables.Calculate(image, 1, 0), 1);
    EXPECT_EQ(tables.red[50], 0);
    EXPECT_EQ(tables.red[200], 255);
    EXPECT_EQ(tables.green[200], 200) << "the third colour is not in the image";
}

TEST(Stretching, RefusesWhatMakesNoSense) {
    const TestImage image(4, 4, 24);
    FillWithPattern(image);
    const std::string before = image.Fingerprint();
    Tables tables;
    const double nan = std::nan("");
    for (const double k : {0.0, -1.0, nan, std::numeric_limits<double>::infinity()})
        EXPECT_EQ(tables.Calculate(image, 0, k), 0) << k;
    for (const double k : {-0.1, 50.1, nan})
        EXPECT_EQ(tables.Calculate(image, 2, k), 0) << k;
    for (const int method : {-1, 4, 1000})
        EXPECT_EQ(tables.Calculate(image, method, 1), 0) << method;
    EXPECT_EQ(tables.Calculate(TestImage(), 1, 1), 0);
    EXPECT_EQ(
        Rastrel_CalculateStretching(image, 1, 1, nullptr, tables.green.data(), tables.blue.data()),
        0);
    EXPECT_EQ(tables.red, Tables().red);
    EXPECT_EQ(tables.Apply(TestImage()), 0);
    EXPECT_EQ(tables.Apply(TestImage(3, 3, 1)), 0) << "neither colours nor a palette";
    EXPECT_EQ(Rastrel_ApplyStretching(image, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(image.Fingerprint(), before);
}

}  // namespace
}  // namespace rastrel_test
