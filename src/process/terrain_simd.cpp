#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "process/terrain_simd.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h
#include <hwy/highway.h>

#include "process/terrain_kernels.h"
#if HWY_TARGET != HWY_SCALAR
#include "process/gradients-inl.h"
#include "process/truncate-inl.h"
#endif

HWY_BEFORE_NAMESPACE();
namespace rastrel::simd::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

// Without vectors there is nothing to gain from estimates.

template <class Sample>
bool HillshadeRow(const ThreeRows<Sample>& /*rows*/, std::size_t /*count*/, double /*magnitude*/,
                  const exact::Hillshading& /*parameters*/, std::uint8_t* /*out*/) {
    return false;
}

template <class Sample>
bool SlopeRow(const ThreeRows<Sample>& /*rows*/, std::size_t /*count*/, double /*magnitude*/,
              double /*scale*/, std::uint8_t* /*out*/) {
    return false;
}

template <class Sample>
bool AspectRow(const ThreeRows<Sample>& /*rows*/, std::size_t /*count*/, double /*magnitude*/,
               double /*scale*/, std::uint8_t* /*out*/) {
    return false;
}

template <class Sample>
double LargestMagnitude(const Sample* /*samples*/, std::size_t /*count*/) {
    return 0;
}

#else

/// 1 / sqrt(v) by one step of Newton's from an estimate of at least 11.4 bits: within 12 units in
/// the last place. Not a number for infinity.
HWY_INLINE FloatVector ReciprocalRoot(FloatVector v) {
    const FloatTag df;
    const auto estimate = hn::ApproximateReciprocalSqrt(v);
    const auto half = hn::Mul(hn::Mul(v, hn::Set(df, 0.5f)), hn::Mul(estimate, estimate));
    return hn::Mul(estimate, hn::Sub(hn::Set(df, 1.5f), half));
}

/// With the upward normal n = (-gx, -gy, 1) / sqrt(1 + gx^2 + gy^2) and the unit vector l toward
/// the light, the formula's angles fall away: illumination = n l
/// = (sin altitude - cos altitude (gx sin azimuth + gy cos azimuth)) / sqrt(1 + gx^2 + gy^2).
///
/// The error of 255 n l in single precision: the numerator's four roundings, the root's twelve
/// units and the gradients' last rounding make at most 22 * 2^-24 * 255. An error e of the
/// gradients turns n by at most sqrt(2) e / sqrt(1 + g^2).
class HillshadeKernel {
  public:
    explicit HillshadeKernel(const exact::Hillshading& parameters)
        : parameters_(parameters),
          steepness_(parameters.scale * 0.125),
          top_(static_cast<float>(255 * parameters.light.sin_altitude)),
          per_x_(static_cast<float>(255 * parameters.light.cos_altitude * parameters.sin_azimuth *
                                    steepness_)),
          per_y_(static_cast<float>(255 * parameters.light.cos_altitude * parameters.cos_azimuth *
                                    steepness_)),
          steepness_squared_(static_cast<float>(steepness_ * steepness_)),
          per_error_(static_cast<float>(255 * 1.5 * std::abs(steepness_))) {}

    HWY_INLINE Estimate operator()(const VectorGradient& gradient) const {
        const FloatTag df;
        constexpr float kBound = 255 * 24 * 0x1p-24f;
        const auto square = hn::MulAdd(gradient.x, gradient.x, hn::Mul(gradient.y, gradient.y));
        const auto root =
            ReciprocalRoot(hn::MulAdd(square, hn::Set(df, steepness_squared_), hn::Set(df, 1.0f)));
        const auto numerator =
            hn::NegMulAdd(gradient.x, hn::Set(df, per_x_),
                          hn::NegMulAdd(gradient.y, hn::Set(df, per_y_), hn::Set(df, top_)));
        const auto bound =
            hn::MulAdd(hn::Mul(gradient.error, root), hn::Set(df, per_error_), hn::Set(df, kBound));
        return TruncateLessHalf(hn::Mul(numerator, root), bound);
    }

    [[nodiscard]] std::uint8_t Level() const { return parameters_.level; }
    template <class Sample>
    [[nodiscard]] std::uint8_t Exact(const ThreeRows<Sample>& at, std::uint8_t /*kept*/) const {
        return exact::Hillshade(plain::GradientAt(at, parameters_.scale), parameters_);
    }

  private:
    const exact::Hillshading& parameters_;
    double steepness_;
    float top_;
    float per_x_;
    float per_y_;
    float steepness_squared_;
    float per_error_;
};

/// atan in degrees by an odd polynomial up to tangents of 1, and by 90 - atan(1 / t) above. The
/// polynomial's error is below 2.2e-6 degrees; the roundings of its evaluation make at most 2e-5
/// and those of the tangent, 16 units in the last place, 2.8e-5 more. An error e of the gradients
/// makes at most 57.3 sqrt(2) e.
class SlopeKernel {
  public:
    explicit SlopeKernel(double scale)
        : scale_(scale),
          steepness_squared_(static_cast<float>(scale * 0.125 * scale * 0.125)),
          per_error_(static_cast<float>(57.3 * 1.5 * std::abs(scale * 0.125))) {}

    HWY_INLINE Estimate operator()(const VectorGradient& gradient) const {
        const FloatTag df;
        constexpr float kBound = 1e-4f;
        constexpr float kTiny = 1e-30f;
        const auto square =
            hn::Mul(hn::MulAdd(gradient.x, gradient.x, hn::Mul(gradient.y, gradient.y)),
                    hn::Set(df, steepness_squared_));
        const auto safe =
            hn::IfThenElse(hn::Lt(square, hn::Set(df, kTiny)), hn::Set(df, kTiny), square);
        const auto cotangent = ReciprocalRoot(safe);
        const auto tangent = hn::Mul(safe, cotangent);
        const auto is_steep = hn::Gt(safe, hn::Set(df, 1.0f));
        const auto angle = AtanInDegrees(hn::IfThenElse(is_steep, cotangent, tangent));
        const auto less_half = hn::IfThenElse(is_steep, hn::Sub(hn::Set(df, 89.5f), angle),
                                              hn::Sub(angle, hn::Set(df, 0.5f)));
        const auto bound = hn::MulAdd(gradient.error, hn::Set(df, per_error_), hn::Set(df, kBound));
        return TruncateLessHalf(less_half, bound);
    }

    [[nodiscard]] static std::uint8_t Level() { return 0; }
    template <class Sample>
    [[nodiscard]] std::uint8_t Exact(const ThreeRows<Sample>& at, std::uint8_t /*kept*/) const {
        return exact::Slope(plain::GradientAt(at, scale_));
    }

  private:
    /// Best odd polynomial of degree 15 on [0, 1], by Remez's exchange.
    HWY_INLINE static FloatVector AtanInDegrees(FloatVector tangent) {
        const FloatTag df;
        const auto square = hn::Mul(tangent, tangent);
        auto sum = hn::Set(df, -0.2323096f);
        sum = hn::MulAdd(sum, square, hn::Set(df, 1.25265527f));
        sum = hn::MulAdd(sum, square, hn::Set(df, -3.20354041f));
        sum = hn::MulAdd(sum, square, hn::Set(df, 5.52457217f));
        sum = hn::MulAdd(sum, square, hn::Set(df, -7.96905774f));
        sum = hn::MulAdd(sum, square, hn::Set(df, 11.4285403f));
        sum = hn::MulAdd(sum, square, hn::Set(df, -19.0966035f));
        sum = hn::MulAdd(sum, square, hn::Set(df, 57.2957414f));
        return hn::Mul(sum, tangent);
    }

    double scale_;
    float steepness_squared_;
    float per_error_;
};

/// The bearing's class from signs and the quotients of the slopes to east and north. Within the
/// error of a limit, and in the tenth of a class before north where some bearings have no class,
/// the exact form decides.
class AspectKernel {
  public:
    explicit AspectKernel(double scale) : scale_(scale), sign_(scale < 0 ? 1.0f : -1.0f) {}

    HWY_INLINE Estimate operator()(const VectorGradient& gradient) const {
        const FloatTag df;
        const WordTag words;
        // tan 22.5 and, somewhat below it, tan 22.29 degrees.
        const auto limit = hn::Set(df, 0.41421356f);
        const auto unclassed_from = hn::Set(df, 0.40994f);
        const auto east = hn::Mul(gradient.x, hn::Set(df, sign_));
        const auto north = hn::Mul(gradient.y, hn::Set(df, sign_));
        const auto across = hn::Abs(east);
        const auto along = hn::Abs(north);
        const auto past_north = hn::NegMulAdd(along, limit, across);
        const auto past_east = hn::NegMulAdd(across, limit, along);
        const auto bit = [words](FloatMask mask, std::uint32_t value) HWY_ATTR {
            return hn::IfThenElseZero(hn::RebindMask(words, mask), hn::Set(words, value));
        };
        const auto zero = hn::Zero(df);
        const auto index =
            hn::Or(hn::Or(bit(hn::Lt(past_north, zero), 1), bit(hn::Lt(past_east, zero), 2)),
                   hn::Or(bit(hn::Lt(east, zero), 4), bit(hn::Lt(north, zero), 8)));
        const auto is_before_north =
            hn::And(hn::RebindMask(df, hn::Eq(index, hn::Set(words, 1 + 4))),
                    hn::Gt(across, hn::Mul(along, unclassed_from)));
        const auto bound =
            hn::MulAdd(hn::Add(across, along), hn::Set(df, 0x1p-20f),
                       hn::MulAdd(gradient.error, hn::Set(df, 1.5f), hn::Set(df, 1e-30f)));
        const auto is_certain = hn::AndNot(
            is_before_north,
            hn::And(hn::Gt(hn::Abs(past_north), bound), hn::Gt(hn::Abs(past_east), bound)));
        // Exact gradients tell level ground, which is common where steps are whole.
        const auto is_level = hn::Eq(hn::Add(hn::Add(across, along), gradient.error), zero);
        const auto classes = hn::IfThenElse(hn::RebindMask(words, is_level),
                                            hn::Set(words, Level()), Classes(index));
        return {classes, hn::Or(is_certain, is_level)};
    }

    [[nodiscard]] static std::uint8_t Level() { return 8; }
    template <class Sample>
    [[nodiscard]] std::uint8_t Exact(const ThreeRows<Sample>& at, std::uint8_t kept) const {
        return exact::Aspect(plain::GradientAt(at, scale_), kept);
    }

  private:
    /// By the bits north-south, east-west, to the west, to the south.
    HWY_INLINE static WordVector Classes(WordVector index) {
        alignas(16) static constexpr std::uint8_t kClasses[16] = {1, 0, 2, 0, 7, 0, 6, 0,
                                                                  3, 4, 2, 0, 5, 4, 6, 0};
        const WordTag words;
        const hn::Repartition<std::uint8_t, WordTag> bytes;
        const auto table = hn::LoadDup128(bytes, kClasses);
        return hn::BitCast(words, hn::TableLookupBytes(table, hn::BitCast(bytes, index)));
    }

    double scale_;
    float sign_;
};

/// Settles the cells of a vector that the estimate leaves open. Out still holds what stood there.
template <class Sample, class Kernel>
HWY_NOINLINE void Settle(const ThreeRows<Sample>& at, const Kernel& kernel, Estimate estimate,
                         std::uint8_t* out) {
    const FloatTag df;
    const WordTag words;
    const auto level = LevelGround(at);
    const auto value = hn::Set(words, kernel.Level());
    const auto lanes = hn::IfThenElse(hn::RebindMask(words, level), value, estimate.bytes);
    const auto is_certain = hn::Or(estimate.is_certain, level);
    if (hn::AllTrue(df, is_certain)) return StoreBytes(lanes, out);
    StoreSettled({lanes, is_certain}, out,
                 [&](std::size_t i, std::uint8_t kept) { return kernel.Exact(at.At(i), kept); });
}

template <class Sample, class Gradients, class Kernel>
HWY_INLINE void VisitRow(const ThreeRows<Sample>& rows, std::size_t count,
                         const Gradients& gradients, const Kernel& kernel, std::uint8_t* out) {
    const FloatTag df;
    const std::size_t lanes = hn::Lanes(df);
    const ThreeRows<Sample> first = rows.At(1);
    if (count < lanes) {
        for (std::size_t i = 0; i < count; ++i)
            out[i] = kernel.Exact(first.At(i), out[i]);
        return;
    }
    const auto visit = [&](std::size_t column) HWY_ATTR {
        const ThreeRows<Sample> at = first.At(column);
        const Estimate estimate = kernel(gradients(at));
        if (HWY_LIKELY(hn::AllTrue(df, estimate.is_certain)))
            StoreBytes(estimate.bytes, out + column);
        else
            Settle(at, kernel, estimate, out + column);
    };
    VisitVectors(count, lanes, visit);
}

template <class Kernel>
HWY_INLINE void VisitRow(const ThreeRows<std::uint8_t>& rows, std::size_t count,
                         double /*magnitude*/, const Kernel& kernel, std::uint8_t* out) {
    VisitRow(rows, count, ByteGradients(), kernel, out);
}

template <class Kernel>
HWY_INLINE void VisitRow(const ThreeRows<std::int16_t>& rows, std::size_t count,
                         double /*magnitude*/, const Kernel& kernel, std::uint8_t* out) {
    VisitRow(rows, count, WholeGradients<std::int16_t>(), kernel, out);
}

template <class Kernel>
HWY_INLINE void VisitRow(const ThreeRows<std::int32_t>& rows, std::size_t count, double magnitude,
                         const Kernel& kernel, std::uint8_t* out) {
    if (magnitude < 0x1p27)
        VisitRow(rows, count, WholeGradients<std::int32_t>(), kernel, out);
    else
        VisitRow(rows, count, DoubleGradients<std::int32_t>(), kernel, out);
}

template <class Kernel>
HWY_INLINE void VisitRow(const ThreeRows<float>& rows, std::size_t count, double magnitude,
                         const Kernel& kernel, std::uint8_t* out) {
    if (magnitude < 0x1p20)
        VisitRow(rows, count, FloatGradients(magnitude), kernel, out);
    else
        VisitRow(rows, count, DoubleGradients<float>(), kernel, out);
}

/// Beyond these a single might over- or underflow where the formula's doubles do not.
bool IsOrdinaryScale(double scale) {
    return std::abs(scale) > 0x1p-50 && std::abs(scale) < 0x1p50;
}

template <class Sample>
bool HillshadeRow(const ThreeRows<Sample>& rows, std::size_t count, double magnitude,
                  const exact::Hillshading& parameters, std::uint8_t* out) {
    // Of more than a thousand radians the formula's own rounding shows.
    if (!IsOrdinaryScale(parameters.scale) || !(std::abs(parameters.light.azimuth) < 1000) ||
        !std::isfinite(parameters.light.sin_altitude))
        return false;
    VisitRow(rows, count, magnitude, HillshadeKernel(parameters), out);
    return true;
}

template <class Sample>
bool SlopeRow(const ThreeRows<Sample>& rows, std::size_t count, double magnitude, double scale,
              std::uint8_t* out) {
    if (!IsOrdinaryScale(scale)) return false;
    VisitRow(rows, count, magnitude, SlopeKernel(scale), out);
    return true;
}

template <class Sample>
bool AspectRow(const ThreeRows<Sample>& rows, std::size_t count, double magnitude, double scale,
               std::uint8_t* out) {
    if (!IsOrdinaryScale(scale)) return false;
    VisitRow(rows, count, magnitude, AspectKernel(scale), out);
    return true;
}

/// The bits of a sample's magnitude: in floats they are ordered like it, what is no number last.
std::uint32_t MagnitudeBits(std::int32_t sample) {
    const auto bits = static_cast<std::uint32_t>(sample);
    return sample < 0 ? 0 - bits : bits;
}

std::uint32_t MagnitudeBits(float sample) {
    return std::bit_cast<std::uint32_t>(std::abs(sample));
}

double MagnitudeFromBits(std::uint32_t bits, std::int32_t /*kind*/) {
    return bits;
}

double MagnitudeFromBits(std::uint32_t bits, float /*kind*/) {
    const auto magnitude = std::bit_cast<float>(bits);
    return std::isnan(magnitude) ? std::numeric_limits<double>::infinity() : magnitude;
}

template <class Sample>
double LargestMagnitude(const Sample* samples, std::size_t count) {
    const hn::ScalableTag<Sample> d;
    const hn::Rebind<std::uint32_t, decltype(d)> words;
    const std::size_t lanes = hn::Lanes(d);
    auto most = hn::Zero(words);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes)
        most = hn::Max(most, hn::BitCast(words, hn::Abs(hn::LoadU(d, samples + i))));
    std::uint32_t largest = hn::GetLane(hn::MaxOfLanes(words, most));
    for (; i < count; ++i)
        largest = std::max(largest, MagnitudeBits(samples[i]));
    return MagnitudeFromBits(largest, Sample());
}

#endif

template <class Sample>
TerrainRows<Sample> Rows() {
    return {&HillshadeRow<Sample>, &SlopeRow<Sample>, &AspectRow<Sample>};
}

TerrainRows<std::uint8_t> RowsOfByte() {
    return Rows<std::uint8_t>();
}

TerrainRows<std::int16_t> RowsOfShort() {
    return Rows<std::int16_t>();
}

TerrainRows<std::int32_t> RowsOfInt() {
    return Rows<std::int32_t>();
}

TerrainRows<float> RowsOfFloat() {
    return Rows<float>();
}

double LargestOfInt(const std::int32_t* samples, std::size_t count) {
    return LargestMagnitude(samples, count);
}

double LargestOfFloat(const float* samples, std::size_t count) {
    return LargestMagnitude(samples, count);
}

}  // namespace rastrel::simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rastrel::simd {

HWY_EXPORT(RowsOfByte);
HWY_EXPORT(RowsOfShort);
HWY_EXPORT(RowsOfInt);
HWY_EXPORT(RowsOfFloat);
HWY_EXPORT(LargestOfInt);
HWY_EXPORT(LargestOfFloat);

template <>
TerrainRows<std::uint8_t> BestTerrainRows() {
    return HWY_DYNAMIC_DISPATCH(RowsOfByte)();
}

template <>
TerrainRows<std::int16_t> BestTerrainRows() {
    return HWY_DYNAMIC_DISPATCH(RowsOfShort)();
}

template <>
TerrainRows<std::int32_t> BestTerrainRows() {
    return HWY_DYNAMIC_DISPATCH(RowsOfInt)();
}

template <>
TerrainRows<float> BestTerrainRows() {
    return HWY_DYNAMIC_DISPATCH(RowsOfFloat)();
}

double LargestMagnitude(const std::int32_t* samples, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(LargestOfInt)(samples, count);
}

double LargestMagnitude(const float* samples, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(LargestOfFloat)(samples, count);
}

}  // namespace rastrel::simd
#endif  // HWY_ONCE
