// Checksums of what the functions on typed arrays give for a large grid of each sample type: the
// same for every module, whatever the machine's instructions and the system's own mathematics. A
// change of any of them changes results that hosts rely on.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "support/array_functions.h"

namespace rastrel_test {
namespace {

constexpr int kRows = 301;
constexpr int kColumns = 407;
constexpr std::size_t kCells = std::size_t{kRows} * kColumns;

/// G. Fowler, L. C. Noll and K.-P. Vo's hash, the variant 1a of 64 bits.
class Checksum {
  public:
    template <class Value>
    void Add(const Value* values, std::size_t count) {
        std::vector<std::uint8_t> bytes(count * sizeof(Value));
        std::memcpy(bytes.data(), values, bytes.size());
        for (const std::uint8_t byte : bytes)
            hash_ = (hash_ ^ byte) * 0x100000001b3;
    }
    [[nodiscard]] std::uint64_t Value() const { return hash_; }

  private:
    std::uint64_t hash_ = 0xcbf29ce484222325;
};

/// Smooth ground with a level sea, steps and noise, by whole numbers and exact products only.
template <class Sample>
std::vector<Sample> Ground() {
    const double top = sizeof(Sample) == 1 ? 200 : 3000;
    std::vector<Sample> samples;
    std::uint32_t state = 1;
    for (int row = 0; row < kRows; ++row) {
        for (int column = 0; column < kColumns; ++column) {
            state = state * 1664525 + 1013904223;
            const double x = column / 512.0;
            const double y = row / 512.0;
            const double hill = 16 * x * (1 - x) * y * (1 - y);
            const double noise = static_cast<double>(state >> 8) * 0x1p-24 * (row % 64 < 32);
            const double height = std::fmax(hill * hill - 0.1 + 0.01 * noise, 0) * top;
            const bool is_level = (row / 50 + column / 50) % 3 == 0;
            samples.push_back(
                static_cast<Sample>(is_level ? std::floor(height / 16) * 16 : height));
        }
    }
    return samples;
}

struct Expected {
    const char* what;
    std::uint64_t checksum;
};

void Check(const std::vector<Expected>& expected, const std::string& what, const Checksum& have) {
    for (const Expected& one : expected) {
        if (what == one.what) {
            EXPECT_EQ(have.Value(), one.checksum) << what << std::hex << " 0x" << have.Value();
            return;
        }
    }
    ADD_FAILURE() << "no checksum of " << what << std::hex << ": 0x" << have.Value();
}

template <class Sample>
void CheckAll(const std::vector<Expected>& expected) {
    using Functions = ArrayFunctions<Sample>;
    const std::vector<Sample> ground = Ground<Sample>();
    std::vector<std::uint8_t> out(kCells);
    const auto check = [&](const std::string& function, const auto& samples) {
        Checksum checksum;
        checksum.Add(samples.data(), samples.size());
        Check(expected, function + Functions::kName, checksum);
    };
    for (const int step : {1, 3}) {
        std::vector<double> s(4);
        Functions::kStatisticsEx(ground.data(), kRows, kColumns, step, &s[0], &s[1], &s[2], &s[3]);
        check("statistics " + std::to_string(step) + " ", s);
    }
    Functions::kLinearStretch(out.data(), ground.data(), kRows, kColumns, 1.5);
    check("stretch ", out);
    std::vector<double> bounds(2);
    Functions::kLinearStretchEx(out.data(), ground.data(), kRows, kColumns, 0, &bounds[0],
                                &bounds[1]);
    check("full stretch ", out);
    Functions::kHillshading(out.data(), ground.data(), kRows, kColumns, 45, 315, 0.3);
    check("hillshade ", out);
    Functions::kHillshading(out.data(), ground.data(), kRows, kColumns, 30, 100, -2);
    check("steep hillshade ", out);
    Functions::kSlope(out.data(), ground.data(), kRows, kColumns, 0.3);
    check("slope ", out);
    out.assign(kCells, 77);
    Functions::kAspect(out.data(), ground.data(), kRows, kColumns, 0.3);
    check("aspect ", out);
    std::vector<Sample> smooth(kCells);
    Functions::kConvolute3x3(smooth.data(), ground.data(), kRows, kColumns);
    check("smooth ", smooth);
}

TEST(Checksums, TheSameInEveryModule) {
    const std::vector<Expected> expected = {
#include "api/checksums.inc"
    };
    CheckAll<std::uint8_t>(expected);
    CheckAll<std::int16_t>(expected);
    CheckAll<std::int32_t>(expected);
    CheckAll<float>(expected);
    const std::vector<std::uint8_t> indices = Ground<std::uint8_t>();
    std::vector<std::uint8_t> shades(kCells);
    Rastrel_HillshadingByte(shades.data(), indices.data(), kRows, kColumns, 45, 315, 0.3);
    std::vector<std::uint32_t> palette(256);
    for (std::uint32_t i = 0; i < 256; ++i)
        palette[i] = i | (255 - i) << 8 | (i * 37 & 255) << 16;
    std::vector<std::uint8_t> colors(3 * kCells);
    Rastrel_Ipsometry(colors.data(), indices.data(), shades.data(), 0.4, kRows, kColumns,
                      palette.data());
    Checksum checksum;
    checksum.Add(colors.data(), colors.size());
    Check(expected, "ipsometry", checksum);
}

}  // namespace
}  // namespace rastrel_test
