#pragma once

namespace rastrel {

/// A number as the unevaluated sum of two doubles, the second below half a unit in the last place
/// of the first: about 106 bits. The operations are those of Dekker ("A floating-point technique
/// for extending the available precision", 1971) and need no fused multiplication. Values must stay
/// between 1e-290 and 1e290.
struct DoubleDouble {
    double high = 0;
    double low = 0;
};

/// The exact sum, for |a| >= |b| or a = 0.
constexpr DoubleDouble FastTwoSum(double a, double b) {
    const double sum = a + b;
    return {sum, b - (sum - a)};
}

/// The exact sum.
constexpr DoubleDouble TwoSum(double a, double b) {
    const double sum = a + b;
    const double b_part = sum - a;
    return {sum, (a - (sum - b_part)) + (b - b_part)};
}

/// The exact product.
constexpr DoubleDouble TwoProduct(double a, double b) {
    // 2^27 + 1 cuts a double into two halves whose products are exact.
    constexpr double kSplitter = 134217729.0;
    const double a_scaled = kSplitter * a;
    const double a_high = a_scaled - (a_scaled - a);
    const double a_low = a - a_high;
    const double b_scaled = kSplitter * b;
    const double b_high = b_scaled - (b_scaled - b);
    const double b_low = b - b_high;
    const double product = a * b;
    return {product,
            ((a_high * b_high - product) + a_high * b_low + a_low * b_high) + a_low * b_low};
}

constexpr DoubleDouble operator+(const DoubleDouble& a, const DoubleDouble& b) {
    const DoubleDouble high = TwoSum(a.high, b.high);
    const DoubleDouble low = TwoSum(a.low, b.low);
    const DoubleDouble sum = FastTwoSum(high.high, high.low + low.high);
    return FastTwoSum(sum.high, sum.low + low.low);
}

constexpr DoubleDouble operator-(const DoubleDouble& a) {
    return {-a.high, -a.low};
}

constexpr DoubleDouble operator-(const DoubleDouble& a, const DoubleDouble& b) {
    return a + -b;
}

constexpr DoubleDouble operator*(const DoubleDouble& a, const DoubleDouble& b) {
    const DoubleDouble product = TwoProduct(a.high, b.high);
    return FastTwoSum(product.high, product.low + (a.high * b.low + a.low * b.high));
}

constexpr DoubleDouble operator/(const DoubleDouble& a, const DoubleDouble& b) {
    const double first = a.high / b.high;
    const DoubleDouble rest = a - b * DoubleDouble{first, 0};
    const double second = rest.high / b.high;
    const DoubleDouble rest_of_rest = rest - b * DoubleDouble{second, 0};
    return FastTwoSum(first, second) + DoubleDouble{rest_of_rest.high / b.high, 0};
}

}  // namespace rastrel
