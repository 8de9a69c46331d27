// Functions on typed arrays: small cases that can be followed by hand, and checksums of large ones
// that every module must give alike.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "support/array_functions.h"

namespace rastrel_test {
namespace {

template <class Sample>
class ArrayTest : public testing::Test {
  public:
    using Functions = ArrayFunctions<Sample>;
    static std::vector<Sample> Samples(std::initializer_list<int> values) {
        std::vector<Sample> samples;
        for (const int value : values)
            samples.push_back(static_cast<Sample>(value));
        return samples;
    }
    /// Rises by rise a column and by fall a row, from 5 on.
    static std::vector<Sample> Plane(int rows, int columns, int rise, int fall) {
        const int start = 5 + std::max(0, -rise * (columns - 1)) + std::max(0, -fall * (rows - 1));
        std::vector<Sample> samples;
        for (int row = 0; row < rows; ++row) {
            for (int column = 0; column < columns; ++column)
                samples.push_back(static_cast<Sample>(start + rise * column + fall * row));
        }
        return samples;
    }
    static Bytes Stretch(const std::vector<Sample>& samples, double k, double& low, double& high) {
        Bytes out(samples.size(), 99);
        Functions::kLinearStretchEx(out.data(), samples.data(), 1, static_cast<int>(samples.size()),
                                    k, &low, &high);
        return out;
    }
};

using SampleTypes = testing::Types<std::uint8_t, std::int16_t, std::int32_t, float>;
TYPED_TEST_SUITE(ArrayTest, SampleTypes);

struct Measured {
    double minimum = 0;
    double mean = 0;
    double maximum = 0;
    double deviation = 0;
};

TYPED_TEST(ArrayTest, StatisticsThinBothDirections) {
    const auto samples = this->Samples({1, 50, 3, 60, 70, 80, 5, 90, 11});
    const struct {
        int step;
        Measured expected;
    } cases[] = {
        {2, {1, 5, 11, std::sqrt(56.0 / 3)}},  // the corners: 1, 3, 5, 11
        {1, {1, 370.0 / 9, 90, std::sqrt((25656 - 370.0 * 370 / 9) / 8)}},
        {0, {1, 370.0 / 9, 90, std::sqrt((25656 - 370.0 * 370 / 9) / 8)}},
        {-7, {1, 370.0 / 9, 90, std::sqrt((25656 - 370.0 * 370 / 9) / 8)}},
    };
    for (const auto& c : cases) {
        Measured m;
        TestFixture::Functions::kStatisticsEx(samples.data(), 3, 3, c.step, &m.minimum, &m.mean,
                                              &m.maximum, &m.deviation);
        EXPECT_EQ(m.minimum, c.expected.minimum) << c.step;
        EXPECT_DOUBLE_EQ(m.mean, c.expected.mean) << c.step;
        EXPECT_EQ(m.maximum, c.expected.maximum) << c.step;
        EXPECT_DOUBLE_EQ(m.deviation, c.expected.deviation) << c.step;
        Measured plain;
        TestFixture::Functions::kStatistics(samples.data(), 3, 3, c.step, &plain.mean,
                                            &plain.deviation);
        EXPECT_EQ(plain.mean, m.mean);
        EXPECT_EQ(plain.deviation, m.deviation);
    }
}

TYPED_TEST(ArrayTest, StatisticsOfNothingAndOfOne) {
    const auto samples = this->Samples({42});
    for (const auto& [rows, columns] : {std::pair(0, 9), std::pair(9, 0), std::pair(-1, 5)}) {
        Measured m;
        TestFixture::Functions::kStatisticsEx(samples.data(), rows, columns, 1, &m.minimum, &m.mean,
                                              &m.maximum, &m.deviation);
        EXPECT_EQ(m.minimum, 1e300);
        EXPECT_EQ(m.maximum, -1e300);
        EXPECT_TRUE(std::isnan(m.mean));
    }
    Measured one;
    TestFixture::Functions::kStatisticsEx(samples.data(), 1, 1, 5, &one.minimum, &one.mean,
                                          &one.maximum, &one.deviation);
    EXPECT_EQ(one.mean, 42);
    EXPECT_EQ(one.minimum, 42);
    EXPECT_EQ(one.maximum, 42);
    EXPECT_TRUE(std::isnan(one.deviation));
}

TYPED_TEST(ArrayTest, StretchAroundTheMean) {
    std::vector<TypeParam> samples;
    for (int value = 0; value < 256; ++value)
        samples.push_back(static_cast<TypeParam>(value));
    const double deviation = std::sqrt(256.0 * 257 / 12);
    for (const double k : {2.0, 1.0}) {
        double low = 0;
        double high = 0;
        const Bytes out = this->Stretch(samples, k, low, high);
        EXPECT_DOUBLE_EQ(low, 127.5 - k * deviation);
        EXPECT_DOUBLE_EQ(high, 127.5 + k * deviation);
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const double value = (static_cast<double>(i) - low) * 255 / (high - low);
            EXPECT_EQ(out[i], value <= 0 ? 0 : value >= 255 ? 255 : static_cast<int>(value)) << i;
        }
        Bytes plain(samples.size());
        TestFixture::Functions::kLinearStretch(plain.data(), samples.data(), 16, 16, k);
        EXPECT_EQ(plain, out);
    }
}

TYPED_TEST(ArrayTest, StretchBetweenTheExtremes) {
    const auto samples = this->Samples({10, 60, 61, 109, 110});
    double low = 0;
    double high = 0;
    EXPECT_EQ(this->Stretch(samples, 0, low, high), (Bytes{0, 127, 130, 252, 255}));
    EXPECT_EQ(low, 10);
    EXPECT_EQ(high, 110);
    EXPECT_EQ(this->Stretch(samples, -2, low, high), (Bytes{0, 127, 130, 252, 255}));
    // The form without reported bounds has no such case: its bounds have changed places.
    Bytes out(samples.size());
    TestFixture::Functions::kLinearStretch(out.data(), samples.data(), 1, 5, -0.5);
    EXPECT_EQ(out, (Bytes{0, 0, 0, 255, 255}));
    // All the same: at the lower bound.
    EXPECT_EQ(this->Stretch(this->Samples({7, 7, 7}), 2, low, high), (Bytes{0, 0, 0}));
}

TYPED_TEST(ArrayTest, PlanesFaceWhereTheyFall) {
    const struct {
        int rise;  // to the right
        int fall;  // downward
        int aspect;
    } cases[] = {{10, 0, 6}, {-10, 0, 2}, {0, 10, 4}, {0, -10, 0}, {0, 0, 8},
                 {7, 7, 5},  {-7, 7, 3},  {7, -7, 7}, {-7, -7, 1}};
    for (const auto& c : cases) {
        const auto plane = this->Plane(5, 7, c.rise, c.fall);
        Bytes out(35, 99);
        TestFixture::Functions::kAspect(out.data(), plane.data(), 5, 7, 1);
        for (int row = 0; row < 5; ++row) {
            for (int column = 0; column < 7; ++column) {
                const bool is_border = row == 0 || row == 4 || column == 0 || column == 6;
                EXPECT_EQ(out[static_cast<std::size_t>(7 * row + column)], is_border ? 8 : c.aspect)
                    << c.rise << ", " << c.fall;
            }
        }
        // A scale below 0 turns the ground over.
        TestFixture::Functions::kAspect(out.data(), plane.data(), 5, 7, -0.5);
        EXPECT_EQ(out[8], c.aspect == 8 ? 8 : (c.aspect + 4) % 8);
    }
}

TYPED_TEST(ArrayTest, SlopesOfPlanesInWholeDegrees) {
    const struct {
        int rise;
        double scale;
        int degrees;
    } cases[] = {{0, 1, 0},      {10, 0.1, 45}, {10, 0.0999, 44}, {10, 0.01, 5}, {1, 0.0175, 1},
                 {1, 0.0174, 0}, {3, 1000, 89}, {-3, -1, 71},     {5, 0, 0}};
    for (const auto& c : cases) {
        const auto plane = this->Plane(4, 20, c.rise, 0);
        Bytes out(80, 99);
        TestFixture::Functions::kSlope(out.data(), plane.data(), 4, 20, c.scale);
        EXPECT_EQ(out[0], 0);
        for (std::size_t i = 21; i < 39; ++i)
            EXPECT_EQ(out[i], c.degrees) << c.rise << " times " << c.scale;
    }
}

TYPED_TEST(ArrayTest, HillshadesOfPlanes) {
    const auto level = this->Plane(3, 20, 0, 0);
    const auto east = this->Plane(3, 20, -10, 0);  // facing east, 45 degrees at scale 0.1
    const struct {
        const std::vector<TypeParam>& ground;
        double altitude;
        double azimuth;
        int value;
    } cases[] = {{level, 45, 315, 180}, {level, 90, 0, 255}, {level, 0, 0, 0},   {level, -5, 0, 0},
                 {east, 45, 90, 255},   {east, 45, 270, 0},  {east, 90, 0, 180}, {east, 0, 90, 180},
                 {east, 45, 0, 127},    {level, 30, 90, 127}};
    for (const auto& c : cases) {
        Bytes out(60, 99);
        TestFixture::Functions::kHillshading(out.data(), c.ground.data(), 3, 20, c.altitude,
                                             c.azimuth, 0.1);
        EXPECT_EQ(out[0], 255);
        EXPECT_EQ(out[59], 255);
        for (std::size_t i = 21; i < 39; ++i)
            EXPECT_EQ(out[i], c.value) << c.altitude << ", " << c.azimuth;
    }
}

TYPED_TEST(ArrayTest, SmallGridsAreAllBorder) {
    const auto samples = this->Samples({1, 9, 4, 2, 8, 5, 7, 7});
    for (const auto& [rows, columns] : {std::pair(2, 4), std::pair(4, 2), std::pair(1, 8)}) {
        Bytes out(10, 99);
        TestFixture::Functions::kHillshading(out.data(), samples.data(), rows, columns, 45, 315, 1);
        EXPECT_EQ(out, (Bytes{255, 255, 255, 255, 255, 255, 255, 255, 99, 99}));
        TestFixture::Functions::kSlope(out.data(), samples.data(), rows, columns, 1);
        EXPECT_EQ(out, (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 99, 99}));
        TestFixture::Functions::kAspect(out.data(), samples.data(), rows, columns, 1);
        EXPECT_EQ(out, (Bytes{8, 8, 8, 8, 8, 8, 8, 8, 99, 99}));
        std::vector<TypeParam> copy(8);
        TestFixture::Functions::kConvolute3x3(copy.data(), samples.data(), rows, columns);
        EXPECT_EQ(copy, samples);
    }
    Bytes out(2, 99);
    TestFixture::Functions::kSlope(out.data(), samples.data(), 0, 5, 1);
    TestFixture::Functions::kSlope(out.data(), samples.data(), -3, -5, 1);
    EXPECT_EQ(out, (Bytes{99, 99}));
}

TYPED_TEST(ArrayTest, SmoothingWeighsTheCellByFour) {
    const bool is_float = std::is_same_v<TypeParam, float>;
    const struct {
        std::vector<TypeParam> samples;
        double value;
    } cases[] = {{this->Samples({10, 10, 10, 10, 2, 10, 10, 10, 10}), is_float ? 88.0 / 12 : 7},
                 {this->Samples({1, 1, 1, 1, 2, 1, 1, 1, 1}), is_float ? 16.0 / 12 : 1},
                 {this->Samples({5, 5, 5, 5, 5, 5, 5, 5, 5}), 5}};
    for (const auto& c : cases) {
        std::vector<TypeParam> expected = c.samples;
        expected[4] = static_cast<TypeParam>(c.value);
        std::vector<TypeParam> out(9);
        TestFixture::Functions::kConvolute3x3(out.data(), c.samples.data(), 3, 3);
        EXPECT_EQ(out, expected);
    }
}

// Between 337.5 and 337.7 degrees there is no class: what stood in the cell stays.
TEST(Aspect, CellsWithoutClassAreLeftAlone) {
    for (const auto& [east, expected] :
         {std::pair(-0.4125f, 99), std::pair(-0.4150f, 7), std::pair(-0.4080f, 0)}) {
        std::vector<float> ground;
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 40; ++column)
                ground.push_back(-east * static_cast<float>(column) - static_cast<float>(row));
        }
        Bytes out(120, 99);
        Rastrel_AspectFloat(out.data(), ground.data(), 3, 40, 1);
        // Rising to the right and toward the first row.
        for (std::size_t i = 41; i < 79; ++i)
            EXPECT_EQ(out[i], expected) << east << " at " << i;
    }
}

TEST(Ipsometry, KeepsColoursOrTakesTheShading) {
    std::array<std::uint32_t, 256> palette = {0x0000ff, 0x00ff00, 0xff0000,
                                              0x808080, 0x204060, 0xff112233};
    const Bytes indices = {0, 1, 2, 3, 4, 5};
    const Bytes half(6, 128);
    const Bytes full(6, 255);
    const auto color = [&](const Bytes& shading, double weight) {
        Bytes out(18);
        Rastrel_Ipsometry(out.data(), indices.data(), shading.data(), weight, 2, 3, palette.data());
        return out;
    };
    // Blue, green, red.
    EXPECT_EQ(color(half, 1), (Bytes{0, 0, 255, 0, 255, 0, 255, 0, 0, 0x80, 0x80, 0x80, 0x20, 0x40,
                                     0x60, 0x11, 0x22, 0x33}));
    EXPECT_EQ(color(full, 0),
              (Bytes{0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 85, 170, 255, 85, 170, 255}));
    EXPECT_EQ(color(half, 0),
              (Bytes{0, 0, 128, 0, 128, 0, 128, 0, 0, 128, 128, 128, 43, 85, 128, 43, 85, 128}));
}

TEST(Mask, KeepsWhereTheMaskIsNot0) {
    const Bytes input = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    const Bytes mask = {0, 1, 255, 0};
    Bytes out(4);
    Rastrel_Mask(out.data(), input.data(), mask.data(), 2, 2);
    EXPECT_EQ(out, (Bytes{0, 2, 3, 0}));
    Bytes out24(12);
    Rastrel_Mask24(out24.data(), input.data(), mask.data(), 1, 4, 0x0a0b0c, 0);
    EXPECT_EQ(out24, (Bytes{10, 11, 12, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    Rastrel_Mask24(out24.data(), input.data(), mask.data(), 4, 1, 0x0a0b0c, 1);
    EXPECT_EQ(out24, (Bytes{1, 2, 3, 10, 11, 12, 10, 11, 12, 10, 11, 12}));
}

}  // namespace
}  // namespace rastrel_test
