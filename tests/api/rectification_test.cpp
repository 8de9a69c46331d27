// The affine solution from control points.

#include <cmath>
#include <limits>
#include <thread>
#include <vector>

#include "support/images.h"

namespace rastrel_test {
namespace {

struct Point {
    double column, row, x, y;
};

/// Points of a picture turned by an angle, in cells of a size, around a place on the map.
std::vector<Point> TurnedPoints(double degrees, double cell, double x, double y) {
    const double angle = degrees * 3.14159265358979 / 180;
    std::vector<Point> points;
    for (const auto& [column, row] : std::vector<std::pair<double, double>>{
             {0, 0}, {4000, 10}, {3990, 3000}, {20, 2990}, {1234.5, 678.25}}) {
        points.push_back({column, row,
                          x + cell * (std::cos(angle) * column + std::sin(angle) * row),
                          y + cell * (std::sin(angle) * column - std::cos(angle) * row)});
    }
    return points;
}

int Calculate(const std::vector<Point>& points) {
    EXPECT_EQ(Rastrel_AffineReset(), 1);
    int count = 0;
    for (const Point& p : points)
        EXPECT_EQ(Rastrel_AffineAddControlPoint(p.column, p.row, p.x, p.y), ++count);
    return Rastrel_AffineCalculate();
}

TEST(Affine, ExactPointsLeaveNoResiduals) {
    for (const double degrees : {0.0, 7.0, 45.0, 90.0, 180.0, -120.0}) {
        for (const double cell : {1e-6, 0.5, 30.0}) {
            for (const double origin : {0.0, 1650000.0, 5100000.25}) {
                SCOPED_TRACE(std::to_string(degrees) + " " + std::to_string(cell) + " " +
                             std::to_string(origin));
                std::vector<Point> points = TurnedPoints(degrees, cell, origin, -origin);
                // What a coordinate that far from the origin can resolve, and a trillionth of a
                // cell.
                const double close = 4e-16 * origin * 4 + cell * 1e-10;
                for (const std::size_t used : {points.size(), std::size_t{3}}) {
                    points.resize(used);
                    ASSERT_EQ(Calculate(points), 1);
                    for (const Point& p : points) {
                        double x = p.column;
                        double y = p.row;
                        ASSERT_EQ(Rastrel_AffineApplicaDiretta(&x, &y), 1);
                        EXPECT_NEAR(x, p.x, close);
                        EXPECT_NEAR(y, p.y, close);
                        ASSERT_EQ(Rastrel_AffineApplicaInversa(&x, &y), 1);
                        EXPECT_NEAR(x, p.column, 4 * close / cell);
                        EXPECT_NEAR(y, p.row, 4 * close / cell);
                    }
                }
            }
        }
    }
}

TEST(Affine, ErrorsAreSpreadByLeastSquares) {
    // The corners of a square; one lies 4 units too far east: each takes a quarter.
    ASSERT_EQ(Calculate({{0, 0, 0, 0}, {100, 0, 104, 0}, {100, 100, 100, -100}, {0, 100, 0, -100}}),
              1);
    double x = 100;
    double y = 0;
    ASSERT_EQ(Rastrel_AffineApplicaDiretta(&x, &y), 1);
    EXPECT_NEAR(x, 103, 1e-9);
    EXPECT_NEAR(y, 0, 1e-9);
    x = 0;
    y = 0;
    ASSERT_EQ(Rastrel_AffineApplicaDiretta(&x, &y), 1);
    EXPECT_NEAR(x, 1, 1e-9);
}

TEST(Affine, DegeneratePointsHaveNoSolution) {
    const double nan = std::nan("");
    for (const std::vector<Point>& points : std::vector<std::vector<Point>>{
             {},
             {{0, 0, 5, 5}},
             {{0, 0, 5, 5}, {10, 10, 8, 9}},
             {{0, 0, 0, 0}, {1, 1, 1, 0}, {2, 2, 0, 1}, {3, 3, 1, 1}},
             {{1e6, 1e6, 0, 0}, {1e6 + 0.1, 1e6 + 0.1, 1, 0}, {1e6 + 0.3, 1e6 + 0.3, 0, 1}},
             {{0, 0, 1, 1}, {9, 0, 2, 2}, {0, 9, 3, 3}, {5, 5, 7, 7}},
             {{5, 5, 1, 2}, {5, 5, 3, 4}, {5, 5, 7, 9}},
             {{0, 0, 4, 4}, {1, 0, 4, 4}, {0, 1, 4, 4}}}) {
        ASSERT_EQ(Calculate(TurnedPoints(5, 1, 0, 0)), 1);
        EXPECT_EQ(Calculate(points), 0);
        double x = 3;
        double y = 4;
        EXPECT_EQ(Rastrel_AffineApplicaDiretta(&x, &y), 0);
        EXPECT_EQ(Rastrel_AffineApplicaInversa(&x, &y), 0);
        EXPECT_EQ(x, 3);
    }
    for (const double bad : {nan, std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(Rastrel_AffineAddControlPoint(bad, 0, 0, 0), 0);
        EXPECT_EQ(Rastrel_AffineAddControlPoint(0, 0, 0, bad), 0);
    }
    ASSERT_EQ(Calculate(TurnedPoints(5, 1, 0, 0)), 1);
    EXPECT_EQ(Rastrel_AffineApplicaDiretta(nullptr, nullptr), 0);
    // Values whose squares no number holds are refused or solved, but never come out as none.
    if (Calculate({{0, 0, 0, 0}, {1e300, 0, 1, 0}, {0, 1e300, 0, 1}}) == 1) {
        double x = 1e300;
        double y = 0;
        EXPECT_EQ(Rastrel_AffineApplicaDiretta(&x, &y), 1);
        EXPECT_NEAR(x, 1, 1e-9);
    }
    Rastrel_AffineReset();
}

TEST(Affine, ThreadsShareThePoints) {
    Rastrel_AffineReset();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < 200; ++i) {
                Rastrel_AffineAddControlPoint(t, i, 2.0 * t, -3.0 * i);
                Rastrel_AffineCalculate();
                double x = 1;
                double y = 1;
                Rastrel_AffineApplicaDiretta(&x, &y);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(Rastrel_AffineAddControlPoint(0, 0, 0, 0), 801);
    ASSERT_EQ(Rastrel_AffineCalculate(), 1);
    double x = 10;
    double y = 10;
    ASSERT_EQ(Rastrel_AffineApplicaDiretta(&x, &y), 1);
    EXPECT_NEAR(x, 20, 1e-9);
    EXPECT_NEAR(y, -30, 1e-9);
    Rastrel_AffineReset();
}

}  // namespace
}  // namespace rastrel_test
