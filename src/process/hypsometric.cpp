#include "process/hypsometric.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <span>

#include "core/pixel_rows.h"
#include "process/hypsometric_kernels.h"
#include "process/hypsometric_plain.h"

namespace rastrel {

namespace simd {

HypsometricTable::HypsometricTable(const std::uint32_t* palette, const Blend& blend_in)
    : blend(blend_in) {
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const HypsometricEntry entry(palette[i], blend);
        const auto channel = [&entry](std::size_t at) {
            return static_cast<float>(entry.channels[at] * 255);
        };
        entries[i] = entry;
        singles[i] = {static_cast<float>(entry.blended_value), channel(0), channel(1), channel(2)};
    }
}

}  // namespace simd

namespace {

/// By the plain formula: for few pixels, for which a table is not worth making, and for odd
/// weights.
void ColorPlainly(const std::uint8_t* indices, const std::uint8_t* shading, std::size_t count,
                  const Blend& blend, const std::uint32_t* palette, std::uint8_t* out) {
    for (std::size_t i = 0; i < count; ++i) {
        const BgrPixel pixel = plain::HypsometricColor(palette[indices[i]], shading[i], blend);
        std::copy(pixel.begin(), pixel.end(), out + 3 * i);
    }
}

/// A run's colours as words, all of them.
void ColorRun(const std::uint8_t* indices, const std::uint8_t* shading, std::size_t count,
              const simd::HypsometricTable& table, std::uint32_t* pixels) {
    std::size_t i = simd::ColorHypsometrically(indices, shading, count, table, pixels);
    for (; i < count; ++i) {
        const BgrPixel pixel = HypsometricColor(table.entries[indices[i]], shading[i], table.blend);
        std::memcpy(&pixels[i], pixel.data(), pixel.size());
    }
}

}  // namespace

void ColorHypsometrically(const std::uint8_t* indices, const std::uint8_t* shading,
                          std::size_t count, double weight, const std::uint32_t* palette,
                          std::uint8_t* out) {
    const Blend blend(weight);
    constexpr double kMostWeight = 4;
    if (count <= simd::kHypsometricRun || !(std::abs(weight) <= kMostWeight)) {
        ColorPlainly(indices, shading, count, blend, palette, out);
        return;
    }
    const simd::HypsometricTable table(palette, blend);
    std::array<std::uint32_t, simd::kHypsometricRun> pixels = {};
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(pixels.data());
    for (std::size_t done = 0; done < count; done += pixels.size()) {
        const std::size_t run = std::min(pixels.size(), count - done);
        ColorRun(indices + done, shading + done, run, table, pixels.data());
        Bgr24From32(std::span(bytes, 4 * run), std::span(out + 3 * done, 3 * run));
    }
}

}  // namespace rastrel
