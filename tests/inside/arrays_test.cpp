// Statistics, stretches, smoothing, hypsometric colours and masks against their plain forms, for
// every set of instructions the machine has, with sentinels around.

#include <gtest/gtest.h>

#include <bit>
#include <cmath>

#include "inside/canary.h"
#include "inside/grids.h"
#include "process/hypsometric.h"
#include "process/hypsometric_plain.h"
#include "process/masking.h"
#include "process/smoothing.h"
#include "process/smoothing_plain.h"
#include "process/statistics.h"
#include "process/stretch.h"

namespace rastrel {
namespace {

template <class Sample>
class ArraysTest : public testing::Test {};

using SampleTypes = testing::Types<std::uint8_t, std::int16_t, std::int32_t, float>;
TYPED_TEST_SUITE(ArraysTest, SampleTypes);

/// The two passes in extended precision.
template <class Sample>
Statistics Extended(const Grid<Sample>& grid, std::size_t step) {
    std::vector<long double> values;
    for (std::size_t row = 0; row < grid.rows; row += step) {
        for (std::size_t column = 0; column < grid.columns; column += step)
            values.push_back(grid.Row(row)[column]);
    }
    const auto count = static_cast<long double>(values.size());
    long double sum = 0;
    for (const long double value : values)
        sum += value;
    long double squares = 0;
    for (const long double value : values)
        squares += (value - sum / count) * (value - sum / count);
    const auto [low, high] = std::minmax_element(values.begin(), values.end());
    return {static_cast<double>(*low), static_cast<double>(sum / count), static_cast<double>(*high),
            static_cast<double>(std::sqrt(squares / (count - 1)))};
}

void ExpectNear(double have, double want, double tolerance, const std::string& what) {
    EXPECT_LE(std::abs(have - want), tolerance * std::abs(want)) << what << ": " << want;
}

TYPED_TEST(ArraysTest, StatisticsAsPreciseAsTold) {
    const double tolerance = sizeof(TypeParam) < 4 ? 4e-16 : 1e-14;
    for (const double height : {0.4, 90.0, 3e4, 1e9}) {
        // More than one run of the fast way; a plateau far from the rest comes last.
        auto grid = Hills<TypeParam>(150, 301, height, 3);
        std::fill_n(&grid.At(100, 0), 50 * 301, Limited<TypeParam>(height / 2));
        for (const int step : {1, 2, 7, 0, -3, 1000}) {
            const auto used = static_cast<std::size_t>(std::max(step, 1));
            const Statistics expected = Extended(grid.View(), used);
            const std::string what = grid.name + ", step " + std::to_string(step);
            for (const std::int64_t target : Targets()) {
                const ChosenTarget chosen(target);
                const Statistics have = StatisticsOf(grid.View(), step);
                EXPECT_EQ(have.minimum, expected.minimum) << what;
                EXPECT_EQ(have.maximum, expected.maximum) << what;
                ExpectNear(have.mean, expected.mean, tolerance, what + ", mean");
                if (!std::isnan(expected.deviation))
                    ExpectNear(have.deviation, expected.deviation, tolerance, what + ", deviation");
                EXPECT_EQ(std::isnan(have.deviation), std::isnan(expected.deviation)) << what;
            }
        }
    }
}

TYPED_TEST(ArraysTest, StatisticsOfOddSamplesAsTheFormula) {
    for (const auto& grid : GridsOf<TypeParam>(11, 31, 9)) {
        const Statistics expected = plain::StatisticsOf(grid.View(), 1);
        Statistics first;
        for (const std::int64_t target : Targets()) {
            const ChosenTarget chosen(target);
            const Statistics have = StatisticsOf(grid.View(), 1);
            EXPECT_EQ(have.minimum, expected.minimum) << grid.name;
            EXPECT_EQ(have.maximum, expected.maximum) << grid.name;
            EXPECT_EQ(std::isnan(have.mean), std::isnan(expected.mean)) << grid.name;
            // The same on every machine, to the last bit.
            if (target == Targets().front()) first = have;
            EXPECT_EQ(std::memcmp(&have, &first, sizeof have), 0) << grid.name;
        }
    }
}

TYPED_TEST(ArraysTest, StatisticsOfConstantsHaveNoDeviation) {
    TestGrid<TypeParam> grid("constant", 90, 99);
    std::fill(grid.memory.begin(), grid.memory.end(), static_cast<TypeParam>(77.7));
    const Statistics have = StatisticsOf(grid.View(), 1);
    EXPECT_EQ(have.mean, static_cast<double>(static_cast<TypeParam>(77.7)));
    EXPECT_EQ(have.deviation, 0);
}

TYPED_TEST(ArraysTest, StretchesAsTheFormula) {
    for (const auto& grid : GridsOf<TypeParam>(13, 47, 4)) {
        const Statistics s = plain::StatisticsOf(grid.View(), 1);
        const double infinity = HUGE_VAL;
        std::vector<StretchBounds> all = {{s.mean - 2 * s.deviation, s.mean + 2 * s.deviation},
                                          {s.mean - 0.1 * s.deviation, s.mean + 0.1 * s.deviation},
                                          {s.minimum, s.maximum},
                                          {s.maximum, s.minimum},
                                          {100, 100},
                                          {100, 355},
                                          {-50, 460},
                                          {100.25, 101.5},
                                          {0, 51},
                                          {1e-12, 3e-12},
                                          {-1e300, 1e300},
                                          {-infinity, 5},
                                          {5, infinity},
                                          {-5e9, 5e9},
                                          {2147483000.0, 2147483647.0},
                                          {std::nan(""), 5}};
        for (const StretchBounds& bounds : all) {
            for (const std::size_t count : {std::size_t{0}, std::size_t{15}, grid.View().Count()}) {
                Framed<std::uint8_t> expected(count);
                plain::Stretch(grid.View().samples, count, bounds, expected.Data());
                ExpectOnEveryTarget(
                    expected, count,
                    grid.name + " from " + std::to_string(bounds.low) + " to " +
                        std::to_string(bounds.high),
                    [&](std::uint8_t* out) { Stretch(grid.View().samples, count, bounds, out); });
            }
        }
    }
}

TYPED_TEST(ArraysTest, SmoothsAsTheFormula) {
    std::vector<TestGrid<TypeParam>> grids = GridsOf<TypeParam>(17, 83, 12);
    for (int rows = 0; rows <= 4; ++rows) {
        for (int columns = 0; columns <= 69; ++columns)
            grids.push_back(Hills<TypeParam>(rows, columns, 1000, 1));
    }
    for (const auto& grid : grids) {
        const auto view = grid.View();
        Framed<TypeParam> expected(view.Count());
        std::copy_n(view.samples, view.Count(), expected.Data());
        ForEachInnerRow(view, [&](std::size_t row, const ThreeRows<TypeParam>& rows) {
            for (std::size_t column = 1; column + 1 < view.columns; ++column)
                expected.Data()[row * view.columns + column] = plain::Smooth(rows.At(column));
        });
        ExpectOnEveryTarget(expected, view.Count(), "smoothing of " + grid.name,
                            [&](TypeParam* out) { Smooth(view, out); });
    }
}

// A twelfth of every sum that shorts can have.
TEST(Smoothing, TwelfthsOfShortsAreTruncated) {
    for (std::int32_t sum = -12 * 32768; sum <= 12 * 32767; ++sum)
        ASSERT_EQ(static_cast<std::int32_t>(sum * kSmoothingFactor), sum / 12);
}

TEST(Hypsometric, EveryIndexAndShadeAsTheFormula) {
    Random random(3);
    std::array<std::uint32_t, 256> palette = {0,      0xffffff, 0xff,     0xff00,   0xff0000,
                                              0xffff, 0x808080, 0x010101, 0xfe0102, 0x123456};
    for (std::size_t i = 10; i < palette.size(); ++i)
        palette[i] = static_cast<std::uint32_t>(random());
    // Enough for the way of many pixels, in which each pair comes up.
    constexpr std::size_t kPairs = 7 * 65536 + 13;
    std::vector<std::uint8_t> indices(kPairs);
    std::vector<std::uint8_t> shades(kPairs);
    for (std::size_t i = 0; i < kPairs; ++i) {
        indices[i] = static_cast<std::uint8_t>(i / 256);
        shades[i] = static_cast<std::uint8_t>(i);
    }
    const double none = std::nan("");
    for (const double weight : {0.0, 1.0, 0.5, 0.3, 1 / 3.0, -1.5, 3.0, 1e9, none}) {
        for (const std::size_t count : {kPairs, std::size_t{300}, std::size_t{7}}) {
            Framed<std::uint8_t> expected(3 * count);
            for (std::size_t i = 0; i < count; ++i) {
                const BgrPixel pixel =
                    plain::HypsometricColor(palette[indices[i]], shades[i], Blend(weight));
                std::copy(pixel.begin(), pixel.end(), expected.Data() + 3 * i);
            }
            ExpectOnEveryTarget(expected, 3 * count, "weight " + std::to_string(weight),
                                [&](std::uint8_t* out) {
                                    ColorHypsometrically(indices.data(), shades.data(), count,
                                                         weight, palette.data(), out);
                                });
        }
    }
}

TEST(Masking, KeepsOrColors) {
    Random random(8);
    for (std::size_t count = 0; count < 150; ++count) {
        std::vector<std::uint8_t> input(3 * count + 1);
        std::vector<std::uint8_t> mask(count + 1);
        for (std::uint8_t& byte : input)
            byte = static_cast<std::uint8_t>(random());
        for (std::uint8_t& byte : mask)
            byte = static_cast<std::uint8_t>(random() % 3 == 0 ? random() : 0);
        Framed<std::uint8_t> kept(count);
        for (std::size_t i = 0; i < count; ++i)
            kept.Data()[i] = mask[i + 1] != 0 ? input[i + 1] : 0;
        ExpectOnEveryTarget(kept, count, "mask", [&](std::uint8_t* out) {
            Mask(input.data() + 1, mask.data() + 1, count, out);
        });
        for (const bool invert : {false, true}) {
            const std::array<std::uint8_t, 3> color = {1, 2, 3};
            Framed<std::uint8_t> colored(3 * count);
            for (std::size_t i = 0; i < 3 * count; ++i)
                colored.Data()[i] = (mask[i / 3 + 1] != 0) != invert ? input[i + 1] : color[i % 3];
            ExpectOnEveryTarget(colored, 3 * count, "24-bit mask", [&](std::uint8_t* out) {
                Mask24(input.data() + 1, mask.data() + 1, count, color, invert, out);
            });
        }
    }
}

}  // namespace
}  // namespace rastrel
