#include "process/hypsometric.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numeric>
#include <span>

#include "core/pixel_rows.h"
#include "process/hypsometric_kernels.h"
#include "process/hypsometric_plain.h"

namespace rastrel {

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
              const HypsometricTable& table, std::uint32_t* pixels) {
    std::size_t i = simd::ColorHypsometrically(indices, shading, count, table, pixels);
    for (; i < count; ++i) {
        const BgrPixel pixel = table.ColorOf(indices[i], shading[i]);
        std::memcpy(&pixels[i], pixel.data(), pixel.size());
    }
}

/// All of count pixels by the palette made ready.
void ColorByPalette(const std::uint8_t* indices, const std::uint8_t* shading, std::size_t count,
                    const HypsometricTable& table, std::uint8_t* out) {
    std::array<std::uint32_t, simd::kHypsometricRun> pixels = {};
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(pixels.data());
    for (std::size_t done = 0; done < count; done += pixels.size()) {
        const std::size_t run = std::min(pixels.size(), count - done);
        ColorRun(indices + done, shading + done, run, table, pixels.data());
        Bgr24From32(std::span(bytes, 4 * run), std::span(out + 3 * done, 3 * run));
    }
}

/// The colours of all pairs of an index and a shading, as words in memory of the caller's.
class PairColors {
  public:
    static constexpr std::size_t kBytes = std::size_t{4} * 65536;

    PairColors(const HypsometricTable& table, std::uint8_t* memory) : words_(memory) {
        std::array<std::uint8_t, 256> same;
        std::array<std::uint8_t, 256> shades;
        std::iota(shades.begin(), shades.end(), std::uint8_t{0});
        std::array<std::uint32_t, 256> pixels = {};
        static_assert(pixels.size() <= simd::kHypsometricRun);
        for (std::size_t index = 0; index < 256; ++index) {
            same.fill(static_cast<std::uint8_t>(index));
            ColorRun(same.data(), shades.data(), pixels.size(), table, pixels.data());
            std::memcpy(words_ + index * sizeof pixels, pixels.data(), sizeof pixels);
        }
    }

    /// Colours as many whole runs as fit into count pixels; returns how many pixels those are. One
    /// byte behind them is written, too.
    std::size_t ColorRuns(const std::uint8_t* indices, const std::uint8_t* shading,
                          std::size_t count, std::uint8_t* out) const {
        std::array<std::uint16_t, kRun> pairs;
        std::size_t done = 0;
        for (; done + kRun <= count; done += kRun) {
            for (std::size_t i = 0; i < kRun; ++i)
                pairs[i] = static_cast<std::uint16_t>(indices[done + i] << 8 | shading[done + i]);
            // Four bytes at a time, of which the next pixel overwrites the last: faster than
            // putting pixels together in a register.
            for (const std::uint16_t pair : pairs) {
                std::memcpy(out, words_ + 4 * std::size_t{pair}, 4);
                out += 3;
            }
        }
        return done;
    }

  private:
    static constexpr std::size_t kRun = 256;

    std::uint8_t* words_;
};

}  // namespace

void ColorHypsometrically(const std::uint8_t* indices, const std::uint8_t* shading,
                          std::size_t count, double weight, const std::uint32_t* palette,
                          std::uint8_t* out) {
    constexpr double kMostWeight = 1e100;
    constexpr std::size_t kFew = 256;
    const Blend blend(weight);
    if (count <= kFew || !(std::abs(weight) <= kMostWeight)) {
        ColorPlainly(indices, shading, count, blend, palette, out);
        return;
    }
    const HypsometricTable table(palette, blend);
    std::size_t done = 0;
    // Of many pixels most are looked up. The table stands where the last of them will: nothing is
    // allocated.
    if (3 * count >= 4 * PairColors::kBytes) {
        const std::size_t table_at = 3 * count - PairColors::kBytes;
        const PairColors pairs(table, out + table_at);
        done = pairs.ColorRuns(indices, shading, (table_at - 1) / 3, out);
    }
    ColorByPalette(indices + done, shading + done, count - done, table, out + 3 * done);
}

}  // namespace rastrel
