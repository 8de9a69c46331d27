// Resizing and rectifying, against the formulas in double precision for one pixel at a time.

#include <algorithm>
#include <cmath>
#include <limits>

#include "support/images.h"

namespace rastrel_test {
namespace {

enum Mode { kAutomatic = -1, kNearest, kBilinear, kBicubic, kArea };

/// The kinds of images that differ in how their pixels are averaged.
struct Kind {
    const char* name;
    int bits;
    int smooth_bits;  ///< what averages have
    std::vector<Rgb> palette;
};

std::vector<Rgb> Greys(std::size_t count, int from, int to) {
    std::vector<Rgb> greys;
    for (std::size_t i = 0; i < count; ++i) {
        const int level = from + (to - from) * static_cast<int>(i) / static_cast<int>(count - 1);
        greys.push_back({level, level, level});
    }
    return greys;
}

std::vector<Rgb> Colors(std::size_t count) {
    std::vector<Rgb> colors = Greys(count, 0, 255);
    for (std::size_t i = 0; i < count; i += 2)
        colors[i][1] = 255 - colors[i][1];
    return colors;
}

const std::vector<Kind> kKinds = {
    {"24 bits", 24, 24, {}},
    {"32 bits", 32, 32, {}},
    {"grey", 8, 8, Greys(256, 0, 255)},
    {"no palette", 8, 8, {}},
    {"reversed greys", 8, 8, Greys(256, 255, 0)},
    {"colours", 8, 24, Colors(256)},
    {"4 bits, greys", 4, 8, Greys(16, 10, 200)},
    {"4 bits, colours", 4, 24, Colors(16)},
    {"1 bit", 1, 8, Greys(2, 0, 255)},
};

void Make(const TestImage& image, const Kind& kind, int width, int height) {
    ASSERT_EQ(Rastrel_Create(image, width, height, kind.bits), 1);
    if (!kind.palette.empty()) {
        ASSERT_EQ(SetPalette(image, kind.palette), 1);
    }
    FillWithPattern(image);
}

/// What an image looks like: blue, green, red, alpha; the top row first.
struct Plane {
    int width;
    int height;
    Bytes pixels;

    explicit Plane(const TestImage& image)
        : width(image.Width()),
          height(image.Height()),
          pixels(4 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {
        EXPECT_EQ(Rastrel_GetImageByte(image, pixels.data(), 32, 0, 0, width, height), 1);
    }
    [[nodiscard]] int At(int x, int y, int channel) const {
        return pixels[4 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                           static_cast<std::size_t>(x)) +
                      static_cast<std::size_t>(channel)];
    }
};

/// Cubic convolution by pieces, as its author writes it.
double Cubic(double distance) {
    const double x = std::abs(distance);
    if (x <= 1) return 1.5 * x * x * x - 2.5 * x * x + 1;
    if (x < 2) return -0.5 * x * x * x + 2.5 * x * x - 4 * x + 2;
    return 0;
}

struct Tap {
    int pixel;
    double weight;
};

/// The pixels around a place, of those from first on.
std::vector<Tap> Around(double place, int first, int length, int mode) {
    place = std::clamp<double>(place, first, first + length - 1);
    std::vector<Tap> taps;
    const int before = static_cast<int>(std::floor(place));
    for (int k = before - 1; k <= before + 2; ++k) {
        const double distance = place - k;
        const double weight =
            mode == kBicubic ? Cubic(distance) : std::max(0.0, 1 - std::abs(distance));
        taps.push_back({std::clamp(k, first, first + length - 1), weight});
    }
    return taps;
}

/// The pixels that make new pixel i.
std::vector<Tap> TapsOf(int i, int old_length, int new_length, int mode) {
    const double scale = static_cast<double>(old_length) / new_length;
    if (mode != kArea) return Around((i + 0.5) * scale - 0.5, 0, old_length, mode);
    std::vector<Tap> taps;
    for (int k = 0; k < old_length; ++k) {
        const double covered = std::min(k + 1.0, (i + 1) * scale) - std::max<double>(k, i * scale);
        if (covered > 0) taps.push_back({k, covered / scale});
    }
    return taps;
}

/// Expects a pixel to be the weighted mean of others, colours counting by their alpha.
void ExpectMean(const Plane& from, const std::vector<Tap>& columns, const std::vector<Tap>& rows,
                const Plane& to, int x, int y) {
    double sums[4] = {};
    for (const Tap& row : rows) {
        for (const Tap& column : columns) {
            const double weight = row.weight * column.weight;
            const double alpha = from.At(column.pixel, row.pixel, 3);
            for (int c = 0; c < 3; ++c)
                sums[c] += weight * alpha * from.At(column.pixel, row.pixel, c);
            sums[3] += weight * alpha;
        }
    }
    for (int c = 0; c < 4; ++c) {
        const int found = to.At(x, y, c);
        double exact = std::clamp(c < 3 ? sums[c] / sums[3] : sums[3], 0.0, 255.0);
        if (to.At(x, y, 3) == 0) {
            EXPECT_LT(sums[3], 0.51);
            exact = c < 3 ? 0 : exact;
        }
        // Where hardly any alpha is left, the quotient has few digits.
        const double slack = 0.002 + 0.05 / std::max(1.0, std::abs(sums[3]));
        ASSERT_NEAR(found, exact, 0.5 + slack) << x << ", " << y << " channel " << c;
    }
}

struct Sizes {
    int width, height, new_width, new_height;
};

const std::vector<Sizes> kSizes = {
    {17, 13, 40, 31}, {40, 31, 17, 13}, {37, 23, 37, 23}, {64, 9, 16, 27}, {9, 64, 27, 16},
    {1, 1, 5, 3},     {2, 3, 9, 8},     {50, 41, 1, 1},   {3, 500, 2, 3},  {301, 40, 7, 39},
};

TEST(Resize, TakesThePixelThatHoldsTheCentre) {
    for (const Kind& kind : kKinds) {
        for (const Sizes& sizes : kSizes) {
            SCOPED_TRACE(std::string(kind.name) + " " + std::to_string(sizes.width) + " to " +
                         std::to_string(sizes.new_width));
            const TestImage source;
            Make(source, kind, sizes.width, sizes.height);
            const TestImage target;
            ASSERT_EQ(Rastrel_Resize(target, source, sizes.new_width, sizes.new_height, kNearest),
                      1);
            ASSERT_EQ(target.Depth(), kind.bits);
            ASSERT_EQ(target.Width(), sizes.new_width);
            ASSERT_EQ(target.Height(), sizes.new_height);
            EXPECT_EQ(target.Palette(), source.Palette());
            const Plane from(source);
            const Plane to(target);
            for (int y = 0; y < to.height; ++y) {
                for (int x = 0; x < to.width; ++x) {
                    const int column = static_cast<int>((x + 0.5) * from.width / to.width);
                    const int row = static_cast<int>((y + 0.5) * from.height / to.height);
                    for (int c = 0; c < 4; ++c)
                        ASSERT_EQ(to.At(x, y, c), from.At(column, row, c)) << x << ", " << y;
                }
            }
        }
    }
}

TEST(Resize, AveragesAsTheFormulas) {
    for (const Kind& kind : kKinds) {
        for (const Sizes& sizes : kSizes) {
            const TestImage source;
            Make(source, kind, sizes.width, sizes.height);
            const Plane from(source);
            for (const int mode : {kBilinear, kBicubic, kArea}) {
                SCOPED_TRACE(std::string(kind.name) + " " + std::to_string(sizes.width) + " to " +
                             std::to_string(sizes.new_width) + " mode " + std::to_string(mode));
                const TestImage target;
                ASSERT_EQ(Rastrel_Resize(target, source, sizes.new_width, sizes.new_height, mode),
                          1);
                ASSERT_EQ(target.Depth(), kind.smooth_bits);
                const Plane to(target);
                for (int y = 0; y < to.height; ++y) {
                    const auto rows = TapsOf(y, from.height, to.height, mode);
                    for (int x = 0; x < to.width; ++x)
                        ExpectMean(from, TapsOf(x, from.width, to.width, mode), rows, to, x, y);
                    if (testing::Test::HasFatalFailure()) return;
                }
            }
        }
    }
}

TEST(Resize, ManyRowsAreAddedUpExactly) {
    const TestImage source(3, 2000, 24);
    Rastrel_Fill(source, 255, 254, 1);
    const TestImage target;
    ASSERT_EQ(Rastrel_Resize(target, source, 2, 3, kArea), 1);
    EXPECT_EQ(target.ColorAt(1, 1), (Rgb{255, 254, 1}));
}

TEST(Resize, ChoosesTheBestWay) {
    struct Case {
        std::size_t kind;
        int new_width, new_height, mode;
    };
    for (const Case& c :
         {Case{0, 10, 10, kArea}, Case{0, 60, 10, kArea}, Case{0, 60, 70, kBilinear},
          Case{0, 30, 40, kBilinear}, Case{2, 10, 10, kArea}, Case{5, 10, 10, kNearest},
          Case{5, 70, 70, kNearest}, Case{7, 70, 70, kNearest}, Case{8, 10, 10, kArea}}) {
        const TestImage source;
        Make(source, kKinds[c.kind], 30, 40);
        const TestImage automatic;
        const TestImage chosen;
        ASSERT_EQ(Rastrel_Resize(automatic, source, c.new_width, c.new_height, kAutomatic), 1);
        ASSERT_EQ(Rastrel_Resize(chosen, source, c.new_width, c.new_height, c.mode), 1);
        EXPECT_TRUE(automatic.Fingerprint() == chosen.Fingerprint()) << kKinds[c.kind].name;
    }
}

TEST(Resize, OfAPartIsThatOfTheExtractedPart) {
    for (const Kind& kind : kKinds) {
        const TestImage source;
        Make(source, kind, 41, 30);
        const TestImage target;
        // Reaches out of the image at the upper right.
        ASSERT_EQ(Rastrel_ResizeEx(target, source, 11, -5, 100, 25, 33, 9), 1);
        const TestImage extracted;
        Rastrel_Copy(extracted, source);
        ASSERT_EQ(Rastrel_ExtractPortion(extracted, 11, 0, 30, 20), 1);
        ASSERT_EQ(Rastrel_Resize(extracted, extracted, 33, 9, kAutomatic), 1);
        EXPECT_TRUE(target.Fingerprint() == extracted.Fingerprint()) << kind.name;
        EXPECT_EQ(Rastrel_ResizeEx(target, source, 41, 0, 5, 5, 9, 9), 0);
    }
}

TEST(Resize, RefusesAndLeavesTheTarget) {
    const TestImage source(5, 4, 24);
    const TestImage target(3, 3, 8);
    const TestImage empty;
    const std::string before = target.Fingerprint();
    EXPECT_EQ(Rastrel_Resize(target, source, 0, 4, 0), 0);
    EXPECT_EQ(Rastrel_Resize(target, source, 4, -1, 1), 0);
    EXPECT_EQ(Rastrel_Resize(target, source, 4, 4, 4), 0);
    EXPECT_EQ(Rastrel_Resize(target, source, 4, 4, -2), 0);
    EXPECT_EQ(Rastrel_Resize(target, source, 60000, 60000, 1), 0);
    EXPECT_EQ(Rastrel_Resize(target, source, 0x7fffffff, 0x7fffffff, 0), 0);
    EXPECT_EQ(Rastrel_Resize(target, empty, 4, 4, 0), 0);
    EXPECT_EQ(Rastrel_Resize(target, -1, 4, 4, 0), 0);
    EXPECT_EQ(Rastrel_Resize(-1, source, 4, 4, 0), 0);
    const TestImage longest(0x20000000, 1, 1);
    EXPECT_EQ(Rastrel_Resize(target, longest, 1, 1, kArea), 0);
    EXPECT_EQ(target.Fingerprint(), before);
}

/// The picture turned by some degrees: its pixel centres against a map with y upward.
void Turn(double degrees, double cell) {
    const double angle = degrees * 3.14159265358979 / 180;
    Rastrel_AffineReset();
    for (const auto& [column, row] : {std::pair{0.0, 0.0}, {100.0, 0.0}, {0.0, 100.0}})
        Rastrel_AffineAddControlPoint(
            column, row, 500 + cell * (std::cos(angle) * column + std::sin(angle) * row),
            900 + cell * (std::sin(angle) * column - std::cos(angle) * row));
    ASSERT_EQ(Rastrel_AffineCalculate(), 1);
}

/// The used part of a picture and what a cell takes from it.
struct Laying {
    int x, y, width, height;
    double xmin, ymax, cell;

    /// The place of a cell's middle in the picture.
    void PlaceOf(int column, int row, double& x_place, double& y_place) const {
        x_place = xmin + (column + 0.5) * cell;
        y_place = ymax - (row + 0.5) * cell;
        Rastrel_AffineApplicaInversa(&x_place, &y_place);
    }
    /// Whether the nearest pixel, fractions cut off, is a used one.
    [[nodiscard]] bool HasPixel(double x_place, double y_place, int& column, int& row) const {
        column = static_cast<int>(x_place + 0.499999999);
        row = static_cast<int>(y_place + 0.499999999);
        return column >= x && column < x + width && row >= y && row < y + height;
    }
};

TEST(AffineTransform, FindsEveryCellAsTheFormulas) {
    for (const Kind& kind : kKinds) {
        const TestImage source;
        Make(source, kind, 61, 47);
        const Plane from(source);
        for (const double degrees : {0.0, 7.0, -33.0, 90.0, 180.0, 261.0}) {
            for (const int mode : {kNearest, kBilinear, kBicubic}) {
                SCOPED_TRACE(std::string(kind.name) + " " + std::to_string(degrees) + " mode " +
                             std::to_string(mode));
                Turn(degrees, 2);
                const Laying laying{5, 0, 50, 40, 380, 1040, 1.7};
                const TestImage target;
                ASSERT_EQ(Rastrel_AffineTransformExBackColor(target, source, laying.xmin, 790, 640,
                                                             laying.ymax, laying.cell, mode,
                                                             laying.x, laying.y, laying.width,
                                                             laying.height, nullptr, 255, 255, 255),
                          1);
                ASSERT_EQ(target.Width(), 153);   // 260 / 1.7 = 152.94
                ASSERT_EQ(target.Height(), 147);  // 250 / 1.7 = 147.06
                ASSERT_EQ(target.Depth(), mode == kNearest ? kind.bits : kind.smooth_bits);
                const Plane to(target);
                TestImage background(1, 1, target.Depth());
                SetPalette(background, target.Palette());
                Rastrel_Fill(background, 255, 255, 255);
                const Plane blank(background);
                int found = 0;
                for (int y = 0; y < to.height; ++y) {
                    for (int x = 0; x < to.width; ++x) {
                        double x_place = 0;
                        double y_place = 0;
                        laying.PlaceOf(x, y, x_place, y_place);
                        int column = 0;
                        int row = 0;
                        if (!laying.HasPixel(x_place, y_place, column, row)) {
                            for (int c = 0; c < 4; ++c)
                                ASSERT_EQ(to.At(x, y, c), blank.At(0, 0, c)) << x << ", " << y;
                            continue;
                        }
                        ++found;
                        if (mode == kNearest) {
                            for (int c = 0; c < 4; ++c)
                                ASSERT_EQ(to.At(x, y, c), from.At(column, row, c))
                                    << x << ", " << y;
                            continue;
                        }
                        ExpectMean(from, Around(x_place, laying.x, laying.width, mode),
                                   Around(y_place, laying.y, laying.height, mode), to, x, y);
                        if (testing::Test::HasFatalFailure()) return;
                    }
                }
                EXPECT_GT(found, 2000);
            }
        }
    }
}

TEST(AffineTransform, LongRowsDoNotDrift) {
    // A column number as three bytes: the place is wrong by less than a thousandth of a pixel where
    // cells change from one to the next.
    constexpr int kColumns = 100000;
    const TestImage source(kColumns, 1, 24);
    std::uint8_t* row = Rastrel_GetRawImage(source);
    for (int x = 0; x < kColumns; ++x) {
        for (int i = 0; i < 3; ++i)
            row[3 * x + i] = static_cast<std::uint8_t>(x >> 8 * i);
    }
    Rastrel_AffineReset();
    for (const auto& [x, y] : {std::pair{0.0, 0.0}, {90000.0, 0.0}, {0.0, 9.0}})
        Rastrel_AffineAddControlPoint(x, y, 4000000.1 + x * 0.3, 5000000.7 - y * 0.3);
    ASSERT_EQ(Rastrel_AffineCalculate(), 1);
    const double xmin = 4000000.1 - 0.15 + 0.3 * 0.499;
    const TestImage target;
    ASSERT_EQ(Rastrel_AffineTransform(target, source, xmin, 5000000.55, xmin + 0.3 * kColumns,
                                      5000000.85, 0.3, kNearest),
              1);
    ASSERT_EQ(target.Width(), kColumns);
    for (int x = 0; x < kColumns - 1; ++x) {
        const std::uint8_t* pixel = Rastrel_GetRawImage(target) + std::ptrdiff_t{3} * x;
        ASSERT_EQ(pixel[0] | pixel[1] << 8 | pixel[2] << 16, x);
    }
}

TEST(AffineTransform, CellsWithoutAPixelAreWhite) {
    struct Case {
        int bits;
        std::vector<Rgb> palette;
        int index;
    };
    Turn(0, 2);
    for (const Case& c :
         {Case{8, {{1, 1, 1}, {255, 255, 255}, {255, 255, 255}}, 1}, Case{8, {{1, 1, 1}}, 255},
          Case{4, Greys(16, 255, 0), 0}, Case{4, Greys(16, 0, 100), 15},
          Case{1, {{0, 0, 0}, {9, 9, 9}}, 1}, Case{8, {}, 255}}) {
        const TestImage source(3, 3, c.bits);
        if (!c.palette.empty()) {
            ASSERT_EQ(SetPalette(source, c.palette), 1);
        }
        const TestImage target;
        ASSERT_EQ(Rastrel_AffineTransform(target, source, 0, 0, 9, 9, 1, kNearest), 1);
        EXPECT_EQ(Rastrel_GetIndex(target, 0, 0), c.index) << c.bits;
        EXPECT_EQ(Rastrel_GetIndex(target, 8, 8), c.index) << c.bits;
    }
}

struct Calls {
    std::vector<double> fractions;
    double last_allowed = 2;

    static int RASTREL_CALL Tell(double fraction, const char* message, void* user) {
        EXPECT_GT(std::string(message).size(), 0U);
        auto& calls = *static_cast<Calls*>(user);
        calls.fractions.push_back(fraction);
        return fraction < calls.last_allowed ? 1 : 0;
    }
};

TEST(AffineTransform, TellsEveryPercentAndCanBeCancelled) {
    Turn(20, 2);
    const TestImage source(100, 100, 24);
    for (const double height : {7.0, 99.0, 100.0, 777.0, 5000.0}) {
        const TestImage target(1, 1, 24);
        Calls calls;
        RastrelProgress progress{Calls::Tell, &calls};
        const auto transform = [&] {
            return Rastrel_AffineTransformEx(target, source, 500, 900 - height, 600, 900, 1,
                                             kNearest, 0, 0, 100, 100, &progress);
        };
        ASSERT_EQ(transform(), 1);
        ASSERT_EQ(calls.fractions.front(), 0.0);
        ASSERT_EQ(calls.fractions.back(), 1.0);
        for (std::size_t i = 1; i < calls.fractions.size(); ++i) {
            const double step = calls.fractions[i] - calls.fractions[i - 1];
            EXPECT_GT(step, 0);
            EXPECT_LE(step, std::max(0.01, 1 / height) + 1e-12);
        }
        const std::string before = target.Fingerprint();
        for (const double last : {0.0, 0.4, 1.0}) {
            calls = {{}, last};
            EXPECT_EQ(transform(), 0);
            EXPECT_GE(calls.fractions.back(), last);
            EXPECT_TRUE(target.Fingerprint() == before);
        }
    }
}

TEST(AffineTransform, WorksInPlaceAndRefusesAndLeavesTheTarget) {
    Turn(10, 2);
    const TestImage source;
    Make(source, kKinds[0], 40, 40);
    const TestImage target;
    ASSERT_EQ(Rastrel_AffineTransform(target, source, 480, 800, 600, 920, 1, kBilinear), 1);
    const TestImage same;
    Rastrel_Copy(same, source);
    ASSERT_EQ(Rastrel_AffineTransform(same, same, 480, 800, 600, 920, 1, kBilinear), 1);
    const std::string before = target.Fingerprint();
    EXPECT_TRUE(same.Fingerprint() == before);

    const double none = std::numeric_limits<double>::quiet_NaN();
    const double endless = std::numeric_limits<double>::infinity();
    struct Case {
        double xmin, ymin, xmax, ymax, cell;
        int mode;
    };
    for (const Case& c :
         {Case{0, 0, 10, 10, 0, 0}, Case{0, 0, 10, 10, -1, 0}, Case{0, 0, 10, 10, none, 0},
          Case{none, 0, 10, 10, 1, 0}, Case{0, -endless, 10, 10, 1, 0}, Case{10, 0, 0, 10, 1, 0},
          Case{0, 0, 0.4, 10, 1, 0}, Case{0, 0, 1e9, 1e9, 1, 0},
          Case{0, 0, 1e300, 1e300, 1e-300, 1}, Case{-1e308, 0, 1e308, 10, 1, 0},
          Case{0, 0, 10, 10, 1, 3}, Case{0, 0, 10, 10, 1, -1}})
        EXPECT_EQ(
            Rastrel_AffineTransform(target, source, c.xmin, c.ymin, c.xmax, c.ymax, c.cell, c.mode),
            0);
    EXPECT_EQ(Rastrel_AffineTransformEx(target, source, 0, 0, 9, 9, 1, 0, 40, 0, 5, 5, nullptr), 0);
    Rastrel_AffineReset();
    EXPECT_EQ(Rastrel_AffineTransform(target, source, 480, 800, 600, 920, 1, 0), 0);
    EXPECT_TRUE(target.Fingerprint() == before);
}

TEST(AffineTransform, FarPlacesDoNoHarm) {
    // Places beyond every integer: nothing but background.
    Rastrel_AffineReset();
    for (const auto& [x, y] : {std::pair{0.0, 0.0}, {1.0, 0.0}, {0.0, 1.0}})
        Rastrel_AffineAddControlPoint(x, y, x * 1e-12, y * 1e-12);
    ASSERT_EQ(Rastrel_AffineCalculate(), 1);
    const TestImage source(4, 4, 24);
    for (const int mode : {kNearest, kBilinear, kBicubic}) {
        const TestImage target;
        ASSERT_EQ(Rastrel_AffineTransform(target, source, -1e6, -1e6, 1e6, 1e6, 1e4, mode), 1);
        const Plane plane(target);
        EXPECT_TRUE(std::ranges::all_of(plane.pixels, [](int byte) { return byte == 255; }));
    }
}

}  // namespace
}  // namespace rastrel_test
