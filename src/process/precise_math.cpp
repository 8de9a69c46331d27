#include "process/precise_math.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "process/double_double.h"

namespace rastrel {

namespace {

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr DoubleDouble kPi = {0x1.921fb54442d18p+1, 0x1.1a62633145c07p-53};
constexpr DoubleDouble kHalfPi = {kPi.high / 2, kPi.low / 2};

// ---- Sine and cosine ----
//
// The circle is cut into 64 sectors of pi/32. An angle is the middle of the nearest sector plus a
// rest of at most pi/64, and the addition theorem joins the tabulated sine and cosine of the middle
// with the first terms of the rest's series.

constexpr int kSectors = 64;
constexpr DoubleDouble kSector = {kPi.high / 32, kPi.low / 32};

/// The sum of first + first * factor_1 + first * factor_1 * factor_2 + ..., where factor_k is
/// -angle^2 / ((start + 2k - 1)(start + 2k)): the series of sine (start 1) and cosine (start 0).
constexpr DoubleDouble CircularSeries(DoubleDouble first, DoubleDouble angle, int start) {
    const DoubleDouble square = angle * angle;
    DoubleDouble sum = first;
    DoubleDouble term = first;
    for (int k = 1; k <= 14; ++k) {
        const int divisor = (start + 2 * k - 1) * (start + 2 * k);
        term = -(term * square / DoubleDouble{static_cast<double>(divisor), 0});
        sum = sum + term;
    }
    return sum;
}

/// The sines of the sectors' middles, built from the first eighth of the circle so that the zeros
/// and ones of the axes are exact.
constexpr std::array<DoubleDouble, kSectors> MakeSectorSines() {
    constexpr int kEighth = kSectors / 8;
    constexpr int kHalf = kSectors / 2;
    std::array<DoubleDouble, kSectors> sines = {};
    for (int i = 0; i <= kEighth; ++i) {
        const DoubleDouble angle = kSector * DoubleDouble{static_cast<double>(i), 0};
        const DoubleDouble sine = CircularSeries(angle, angle, 1);
        const DoubleDouble cosine = CircularSeries({1, 0}, angle, 0);
        for (const int half : {0, kHalf}) {
            const auto store = [&sines, half](int at, const DoubleDouble& value) {
                sines[static_cast<std::size_t>((half + at) % kSectors)] =
                    half == 0 ? value : -value;
            };
            store(i, sine);
            store(2 * kEighth - i, cosine);
            store(2 * kEighth + i, cosine);
            if (i > 0) store(kHalf - i, sine);
        }
    }
    return sines;
}

constexpr std::array<DoubleDouble, kSectors> kSectorSines = MakeSectorSines();

/// sector * pi/32 + rest, up to whole turns.
struct ReducedAngle {
    int sector = 0;
    DoubleDouble rest;
};

/// Angles from here on are reduced by Payne and Hanek's method.
constexpr double kLarge = 1 << 17;

/// For smaller angles: pi/32 in three parts, of which the first two have 32 bits, so that their
/// products with the sector number, of at most 21, are exact.
ReducedAngle ReduceModerate(double angle) {
    constexpr double kSectorHigh = 0x1.921fb544p-4;
    constexpr double kSectorMiddle = 0x1.0b4611a6p-38;
    constexpr double kSectorLow = 0x1.3198a2e037073p-73;
    const double number = std::nearbyint(angle * (1 / kSector.high));
    DoubleDouble rest = TwoSum(angle - number * kSectorHigh, -number * kSectorMiddle);
    rest = FastTwoSum(rest.high, rest.low - number * kSectorLow);
    const auto whole = static_cast<std::int64_t>(number);
    return {static_cast<int>(whole & (kSectors - 1)), rest};
}

/// The leading fraction bits of 2/pi.
constexpr std::array<std::uint32_t, 38> kTwoOverPi = {
    0xa2f9836e, 0x4e441529, 0xfc2757d1, 0xf534ddc0, 0xdb629599, 0x3c439041, 0xfe5163ab, 0xdebbc561,
    0xb7246e3a, 0x424dd2e0, 0x06492eea, 0x09d1921c, 0xfe1deb1c, 0xb129a73e, 0xe88235f5, 0x2ebb4484,
    0xe99c7026, 0xb45f7e41, 0x3991d639, 0x835339f4, 0x9c845f8b, 0xbdf9283b, 0x1ff897ff, 0xde05980f,
    0xef2f118b, 0x5a0a6d1f, 0x6d367ecf, 0x27cb09b7, 0x4f463f66, 0x9e5fea2d, 0x7527bac7, 0xebe5f17b,
    0x3d0739f7, 0x8a5292ea, 0x6bfb5fb1, 0x1f8d5d08, 0x56033046, 0xfc7b6bab};

/// 32 fraction bits of 2/pi from bit first on; bits before the point are 0.
std::uint32_t TwoOverPiBits(int first) {
    const auto word = [](int i) -> std::uint64_t {
        return i < 0 ? 0 : kTwoOverPi[static_cast<std::size_t>(i)];
    };
    const int index = first >> 5;
    const std::uint64_t two_words = word(index) << 32 | word(index + 1);
    return static_cast<std::uint32_t>(two_words >> (32 - (first & 31)));
}

/// Payne and Hanek ("Radian reduction for trigonometric
/// functions", 1983): of the product with 2/pi only the bits below whole turns are computed.
ReducedAngle ReduceLarge(double angle) {
    constexpr int kWords = 6;
    const auto bits = std::bit_cast<std::uint64_t>(angle);
    const std::uint64_t mantissa = (bits & ((std::uint64_t{1} << 52) - 1)) | std::uint64_t{1} << 52;
    const int exponent = static_cast<int>(bits >> 52 & 0x7ff) - 1075;
    // angle * 2/pi = mantissa * 2^exponent * 2/pi. Bits of 2/pi before exponent - 2 make multiples
    // of four quarter turns; the product is kept modulo 2^192, so that two bits are the quarter
    // turns and 190 bits the fraction of one.
    std::array<std::uint32_t, kWords> product = {};  // the highest word first
    const std::array<std::uint64_t, 2> factor = {mantissa & 0xffffffff, mantissa >> 32};
    for (int shift = 0; shift < 2; ++shift) {
        std::uint64_t carry = 0;
        for (int i = kWords - 1; i >= shift; --i) {
            auto& word = product[static_cast<std::size_t>(i - shift)];
            const std::uint64_t sum =
                word + carry +
                factor[static_cast<std::size_t>(shift)] * TwoOverPiBits(exponent - 2 + 32 * i);
            word = static_cast<std::uint32_t>(sum);
            carry = sum >> 32;
        }
    }
    // A quarter turn has sixteen sectors: six bits of sector number, then the fraction of a sector.
    int sector = static_cast<int>(product[0] >> 26);
    DoubleDouble fraction = {std::ldexp(product[0] & 0x3ffffff, -26), 0};
    for (int i = 1; i < kWords; ++i)
        fraction = fraction +
                   DoubleDouble{std::ldexp(product[static_cast<std::size_t>(i)], -26 - 32 * i), 0};
    if (fraction.high > 0.5) {
        fraction = fraction - DoubleDouble{1, 0};
        sector = (sector + 1) % kSectors;
    }
    return {sector, fraction * kSector};
}

ReducedAngle Reduce(double angle) {
    if (std::abs(angle) < kLarge) return ReduceModerate(angle);
    ReducedAngle reduced = ReduceLarge(std::abs(angle));
    if (angle < 0) reduced = {(kSectors - reduced.sector) % kSectors, -reduced.rest};
    return reduced;
}

/// sin(a + rest) for an angle a whose sine and cosine are given.
double SineOfSum(const DoubleDouble& sine, const DoubleDouble& cosine, const DoubleDouble& rest) {
    const double r = rest.high;
    const double square = r * r;
    // sin r - r and cos r - 1; the next terms are below 2^-70.
    const double sine_tail =
        r * square *
        (-1.0 / 6 +
         square * (1.0 / 120 +
                   square * (-1.0 / 5040 + square * (1.0 / 362880 - square * (1.0 / 39916800)))));
    const double cosine_tail =
        square *
        (-1.0 / 2 +
         square * (1.0 / 24 +
                   square * (-1.0 / 720 + square * (1.0 / 40320 + square * (-1.0 / 3628800)))));
    const DoubleDouble product = TwoProduct(cosine.high, r);
    // Either the sine is 0, or it is larger than the product.
    const DoubleDouble sum = FastTwoSum(sine.high, product.high);
    const double small = sum.low + product.low + sine.low + cosine.high * rest.low +
                         cosine.low * r + sine.high * cosine_tail + cosine.high * sine_tail -
                         sine.high * r * rest.low;
    return sum.high + small;
}

double SineOfSector(int sector, const DoubleDouble& rest) {
    const auto sine_at = [](int at) {
        return kSectorSines[static_cast<std::size_t>(at % kSectors)];
    };
    return SineOfSum(sine_at(sector), sine_at(sector + kSectors / 4), rest);
}

// ---- Arctangent ----
//
// A tangent t from 0 to 1 lies near i/64, and atan(t) = atan(i/64) + atan(u) with
// u = (t - i/64) / (1 + t i/64), at most 1/128: a table and the first terms of a series.

constexpr int kTangentSteps = 64;

/// From the series, for tangents up to 1/64.
constexpr DoubleDouble AtanOfSmall(const DoubleDouble& tangent) {
    const DoubleDouble square = tangent * tangent;
    DoubleDouble power = tangent;
    DoubleDouble sum = tangent;
    for (int k = 3; k <= 19; k += 2) {
        power = -(power * square);
        sum = sum + power / DoubleDouble{static_cast<double>(k), 0};
    }
    return sum;
}

constexpr std::array<DoubleDouble, kTangentSteps + 1> MakeAtans() {
    std::array<DoubleDouble, kTangentSteps + 1> atans = {};
    for (std::size_t i = 1; i < atans.size(); ++i) {
        // From (i - 1)/64 to i/64 the angle grows by atan(64 / (64^2 + i (i - 1))).
        const auto divisor =
            static_cast<double>(std::size_t{kTangentSteps} * kTangentSteps + i * (i - 1));
        const DoubleDouble step = DoubleDouble{kTangentSteps, 0} / DoubleDouble{divisor, 0};
        atans[i] = atans[i - 1] + AtanOfSmall(step);
    }
    return atans;
}

constexpr std::array<DoubleDouble, kTangentSteps + 1> kAtans = MakeAtans();

/// atan of smaller / larger, both not negative, larger from 1 to below 2.
DoubleDouble AtanOfQuotient(double smaller, double larger) {
    // Below this the quotient is its own arctangent, and its products could underflow.
    constexpr double kTiny = 0x1p-100;
    if (smaller < kTiny) return {smaller / larger, 0};
    const double nearest = std::nearbyint(smaller / larger * kTangentSteps);
    const double step = nearest / kTangentSteps;
    // u = (smaller - step * larger) / (larger + step * smaller), to twice the precision.
    const DoubleDouble over = DoubleDouble{smaller, 0} - TwoProduct(step, larger);
    const DoubleDouble under = DoubleDouble{larger, 0} + TwoProduct(step, smaller);
    const double u = over.high / under.high;
    const DoubleDouble back = TwoProduct(u, under.high);
    const double u_low =
        ((over.high - back.high) - back.low + over.low - u * under.low) / under.high;
    const double square = u * u;
    // The next term is below 2^-75 of u.
    const double tail =
        u * square * (-1.0 / 3 + square * (1.0 / 5 + square * (-1.0 / 7 + square * (1.0 / 9))));
    const DoubleDouble& base = kAtans[static_cast<std::size_t>(nearest)];
    const DoubleDouble sum = FastTwoSum(base.high, u);
    return FastTwoSum(sum.high, sum.low + (base.low + u_low + tail));
}

double Sum(const DoubleDouble& value) {
    return value.high + value.low;
}

/// The angle of (x, y), both not negative, finite, and not both 0.
DoubleDouble AngleInQuadrant(double y, double x) {
    int exponent = 0;
    const double larger = std::frexp(std::fmax(x, y), &exponent) * 2;
    const double smaller = std::ldexp(std::fmin(x, y), 1 - exponent);
    const DoubleDouble angle = AtanOfQuotient(smaller, larger);
    return y > x ? kHalfPi - angle : angle;
}

}  // namespace

double PreciseSin(double angle) {
    if (!std::isfinite(angle)) return kNotANumber;
    if (angle == 0) return angle;
    const ReducedAngle reduced = Reduce(angle);
    return SineOfSector(reduced.sector, reduced.rest);
}

double PreciseCos(double angle) {
    if (!std::isfinite(angle)) return kNotANumber;
    const ReducedAngle reduced = Reduce(angle);
    return SineOfSector(reduced.sector + kSectors / 4, reduced.rest);
}

double PreciseAtan(double tangent) {
    if (std::isnan(tangent)) return kNotANumber;
    if (tangent == 0) return tangent;
    const double size = std::abs(tangent);
    const double angle = std::isinf(size) ? kHalfPi.high : Sum(AngleInQuadrant(size, 1));
    return std::copysign(angle, tangent);
}

double PreciseAtan2(double y, double x) {
    if (std::isnan(x) || std::isnan(y)) return kNotANumber;
    double across = std::abs(x);
    double up = std::abs(y);
    // Of an infinite coordinate only the direction counts.
    if (std::isinf(across) || std::isinf(up)) {
        across = std::isinf(across) ? 1 : 0;
        up = std::isinf(up) ? 1 : 0;
    }
    DoubleDouble angle;
    if (up != 0) angle = AngleInQuadrant(up, across);
    if (std::signbit(x)) angle = kPi - angle;
    return std::copysign(Sum(angle), y);
}

}  // namespace rastrel
