// Terrain derivatives against their plain forms: every byte, for every set of instructions the
// machine has, with sentinels around.

#include "process/terrain.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>

#include "inside/canary.h"
#include "inside/grids.h"
#include "process/precise_math.h"
#include "process/terrain_kernels.h"
#include "process/terrain_plain.h"

namespace rastrel {
namespace {

/// The whole output of a plain form, the border included.
template <class Sample, class Cell>
Framed<std::uint8_t> Plainly(const Grid<Sample>& grid, std::uint8_t border, Cell cell) {
    Framed<std::uint8_t> out(grid.Count());
    std::fill_n(out.Data(), grid.Count(), border);
    const std::uint8_t kept = Framed<std::uint8_t>(1).All()[0];
    ForEachInnerRow(grid, [&](std::size_t row, const ThreeRows<Sample>& rows) {
        for (std::size_t column = 1; column + 1 < grid.columns; ++column)
            out.Data()[row * grid.columns + column] = cell(rows.At(column), kept);
    });
    return out;
}

template <class Sample>
class TerrainTest : public testing::Test {
  public:
    static void CheckHillshade(const TestGrid<Sample>& grid, double altitude, double azimuth,
                               double scale) {
        const Light light(altitude, azimuth);
        const auto expected = Plainly(grid.View(), 255, [&](const auto& at, std::uint8_t) {
            return plain::Hillshade(plain::GradientAt(at, scale), light);
        });
        const std::string what = "hillshade of " + grid.name + ", altitude " +
                                 std::to_string(altitude) + ", azimuth " + std::to_string(azimuth) +
                                 ", scale " + std::to_string(scale);
        ExpectOnEveryTarget(expected, grid.View().Count(), what, [&](std::uint8_t* out) {
            Hillshade(grid.View(), altitude, azimuth, scale, out);
        });
    }
    static void CheckSlope(const TestGrid<Sample>& grid, double scale) {
        const auto expected = Plainly(grid.View(), 0, [&](const auto& at, std::uint8_t) {
            return plain::Slope(plain::GradientAt(at, scale));
        });
        ExpectOnEveryTarget(expected, grid.View().Count(),
                            "slope of " + grid.name + ", scale " + std::to_string(scale),
                            [&](std::uint8_t* out) { Slope(grid.View(), scale, out); });
    }
    static void CheckAspect(const TestGrid<Sample>& grid, double scale) {
        const auto expected = Plainly(grid.View(), 8, [&](const auto& at, std::uint8_t kept) {
            return plain::Aspect(plain::GradientAt(at, scale)).value_or(kept);
        });
        ExpectOnEveryTarget(expected, grid.View().Count(),
                            "aspect of " + grid.name + ", scale " + std::to_string(scale),
                            [&](std::uint8_t* out) { Aspect(grid.View(), scale, out); });
    }
};

using SampleTypes = testing::Types<std::uint8_t, std::int16_t, std::int32_t, float>;
TYPED_TEST_SUITE(TerrainTest, SampleTypes);

TYPED_TEST(TerrainTest, EveryKindOfGroundAsTheFormulas) {
    for (const auto& grid : GridsOf<TypeParam>(37, 77, 5)) {
        for (const double scale : {1.0, -0.125, 1 / 30.0, 0.0003, 40.0}) {
            this->CheckHillshade(grid, 45, 315, scale);
            this->CheckSlope(grid, scale);
            this->CheckAspect(grid, scale);
        }
    }
}

TYPED_TEST(TerrainTest, EveryLight) {
    for (const auto& grid : GridsOf<TypeParam>(9, 45, 6)) {
        // 30 degrees: level ground lies within 1e-13 of a whole value.
        for (const double altitude : {30.0, 0.0, 90.0, -20.0, 120.0, 1e6, 1e300}) {
            for (const double azimuth : {0.0, 135.0, -361.0, 5e4, 1e18})
                this->CheckHillshade(grid, altitude, azimuth, 0.3);
        }
        const double none = std::numeric_limits<double>::quiet_NaN();
        this->CheckHillshade(grid, none, 315, 1);
        this->CheckHillshade(grid, 45, HUGE_VAL, 1);
    }
}

TYPED_TEST(TerrainTest, EveryScale) {
    for (const auto& grid : GridsOf<TypeParam>(6, 45, 7)) {
        for (const double scale : {0.0, 1e-10, 1e10, 1e-20, -1e20, 1e-200, 1e-310, 1e300, HUGE_VAL,
                                   std::numeric_limits<double>::quiet_NaN()}) {
            this->CheckHillshade(grid, 45, 315, scale);
            this->CheckSlope(grid, scale);
            this->CheckAspect(grid, scale);
        }
    }
}

TYPED_TEST(TerrainTest, EverySize) {
    for (int rows = 0; rows <= 4; ++rows) {
        for (int columns = 0; columns <= 70; ++columns) {
            const auto grid = Hills<TypeParam>(rows, columns, 100, 8);
            this->CheckHillshade(grid, 30, 315, 0.1);
            this->CheckSlope(grid, 0.1);
            this->CheckAspect(grid, 0.1);
        }
    }
}

// Gradients in all directions and of all sizes, those around the limits of the classes above all.
TEST(TerrainLimits, AspectClassesAndTheGapBetweenThem) {
    Random random(1);
    const double degree = PreciseAtan(1) / 45;
    for (int i = 0; i < 400000; ++i) {
        const double nudge = std::ldexp(Fraction(random) - 0.5, -static_cast<int>(random() % 56));
        const double bearing = (i % 16 * 22.5 + (i % 3 == 0 ? 0.2 : 0) + nudge) * degree;
        const double size = std::ldexp(1.0, static_cast<int>(random() % 100) - 50);
        const Gradient gradient = {-PreciseSin(bearing) * size, -PreciseCos(bearing) * size};
        EXPECT_EQ(exact::Aspect(gradient, 77), plain::Aspect(gradient).value_or(77))
            << gradient.x << ", " << gradient.y;
    }
}

// The limits are found by bisection, which supposes that the formula never falls where the gradient
// rises: true a few units in the last place off each limit by the formula's error, and here tried
// for every double nearer than that.
TEST(TerrainLimits, SlopeIsMonotonousAroundEveryDegree) {
    for (int degrees = 1; degrees <= 89; ++degrees) {
        const double angle = PreciseAtan(1) / 45 * degrees;
        const double tangent = PreciseSin(angle) / PreciseCos(angle);
        double square = tangent * tangent;
        for (int i = 0; i < 40; ++i)
            square = std::nextafter(square, 0);
        for (int i = 0; i < 80; ++i, square = std::nextafter(square, HUGE_VAL)) {
            const Gradient gradient = {std::sqrt(square), 0};
            EXPECT_EQ(exact::Slope(gradient), plain::Slope(gradient)) << degrees;
        }
    }
    for (const double steep : {1e10, 1e16, 1e17, 1e100, 1e200, HUGE_VAL})
        EXPECT_EQ(exact::Slope({steep, 0}), plain::Slope({steep, 0})) << steep;
}

TEST(PreciseMath, KnownValuesToTheLastBit) {
    // Correctly rounded values; the last angle is the double nearest to a multiple of pi / 2.
    EXPECT_EQ(PreciseSin(1), 0x1.aed548f090ceep-1);
    EXPECT_EQ(PreciseCos(1), 0x1.14a280fb5068cp-1);
    EXPECT_EQ(PreciseSin(1e22), -0x1.b453ab76bf397p-1);
    EXPECT_EQ(PreciseCos(6381956970095103.0 * 0x1p797), -0x1.14ae72e6ba22fp-61);
    EXPECT_EQ(PreciseAtan(1), 0x1.921fb54442d18p-1);
    EXPECT_EQ(PreciseAtan(-0.1), -0x1.983e282e2cc4dp-4);
    EXPECT_EQ(PreciseAtan2(1, -3), 0x1.68f095fdf593cp+1);
}

TEST(PreciseMath, NearTheSystemsOwn) {
    Random random(2);
    const auto near = [](double have, double want) {
        return have == want || std::nextafter(have, want) == want;
    };
    for (int i = 0; i < 300000; ++i) {
        const double x = std::ldexp(2 * Fraction(random) - 1, static_cast<int>(random() % 60) - 30);
        const double y = std::ldexp(2 * Fraction(random) - 1, static_cast<int>(random() % 60) - 30);
        EXPECT_TRUE(near(PreciseAtan(x), std::atan(x))) << x;
        EXPECT_TRUE(near(PreciseAtan2(y, x), std::atan2(y, x))) << y << ", " << x;
#if !defined(_WIN32)  // whose own sines are off by more for large angles
        EXPECT_TRUE(near(PreciseSin(x), std::sin(x))) << x;
        EXPECT_TRUE(near(PreciseCos(x), std::cos(x))) << x;
#endif
    }
}

TEST(PreciseMath, ZerosAndInfinitiesAsInC) {
    const double specials[] = {0.0, -0.0, 1, -1, HUGE_VAL, -HUGE_VAL, std::nan(""), 5e-324, 1e308};
    const auto same = [](double a, double b) {
        return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
               (std::isnan(a) && std::isnan(b));
    };
    for (const double y : specials) {
        EXPECT_TRUE(same(PreciseAtan(y), std::atan(y))) << y;
        for (const double x : specials)
            EXPECT_TRUE(same(PreciseAtan2(y, x), std::atan2(y, x))) << y << ", " << x;
    }
}

}  // namespace
}  // namespace rastrel
