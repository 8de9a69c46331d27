// The vector forms of colour reduction against the formulas, for every set of instructions.

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <vector>

#include "formats/quantize/conv24to8.h"
#include "formats/quantize/nearest_color.h"
#include "inside/targets.h"

namespace rastrel {
namespace {

/// A component at a scale of so many bits, halved from scale to scale.
unsigned Rescaled(unsigned part, int bits) {
    for (unsigned maximum = 255; maximum > (1u << bits) - 1; maximum /= 2)
        part = part * (maximum / 2) / maximum;
    return part;
}

TEST(ShortKeys, AreTheRescaledParts) {
    std::vector<std::uint8_t> pixels;
    for (unsigned value = 0; value < 256; ++value) {
        for (const unsigned part : {value, 255 - value, value * 77 % 256})
            pixels.push_back(static_cast<std::uint8_t>(part));
    }
    for (const std::int64_t target : Targets()) {
        const ChosenTarget chosen(target);
        for (const int bits : {1, 3, 4, 5}) {
            for (const std::size_t count : {0u, 1u, 31u, 32u, 33u, 256u}) {
                std::vector<std::uint16_t> keys(count + 1, 0xa5a5);
                const std::size_t done = simd::ShortKeys(pixels.data(), count, bits, keys.data());
                ASSERT_LE(done, count);
                for (std::size_t i = 0; i < done; ++i) {
                    const unsigned expected = Rescaled(pixels[3 * i], bits) << 2 * bits |
                                              Rescaled(pixels[3 * i + 1], bits) << bits |
                                              Rescaled(pixels[3 * i + 2], bits);
                    ASSERT_EQ(keys[i], expected) << i << ", " << bits << " bits, " << target;
                }
                EXPECT_EQ(keys[done], 0xa5a5) << "nothing behind them is written";
            }
        }
    }
}

TEST(NearestColor, IsTheFirstOfTheNearest) {
    std::mt19937 random(8);
    for (const std::int64_t target : Targets()) {
        const ChosenTarget chosen(target);
        for (const std::size_t count : {1u, 2u, 15u, 16u, 17u, 200u, 256u}) {
            for (const unsigned spread : {255u, 3u}) {
                std::vector<ColorParts> colors(count + 100);
                for (ColorParts& color : colors) {
                    for (std::uint8_t& part : color)
                        part = static_cast<std::uint8_t>(random() & spread);
                }
                const auto searched = std::span(colors).first(count);
                for (const ColorDistance kind :
                     {ColorDistance::kCityBlock, ColorDistance::kSquares}) {
                    const NearestColor nearest(searched, kind);
                    for (const ColorParts& color : colors) {
                        std::size_t first = 0;
                        int least = 1000000;
                        for (std::size_t i = 0; i < count; ++i) {
                            int sum = 0;
                            for (std::size_t part = 0; part < 3; ++part) {
                                const int difference = colors[i][part] - color[part];
                                sum += kind == ColorDistance::kSquares ? difference * difference
                                                                       : std::abs(difference);
                            }
                            if (sum >= least) continue;
                            least = sum;
                            first = i;
                        }
                        ASSERT_EQ(nearest.Find(color), first) << count << ", " << target;
                    }
                }
            }
        }
    }
}

TEST(Conv24to8, TellsWhetherColoursWereLost) {
    RasterImage image;
    ASSERT_TRUE(image.Create(16, 17, 24, -1));
    for (int y = 0; y < 17; ++y) {
        for (int x = 0; x < 16; ++x)
            image.SetRgb(x, y, {static_cast<std::uint8_t>(x), static_cast<std::uint8_t>(y), 0});
    }
    struct Case {
        int maximum;
        const char* status;
        std::size_t entries;
    };
    for (const Case& c :
         {Case{-1, "", 255}, {0, "", 255}, {1, "", 1}, {256, "", 256}, {1000, "", 256}}) {
        std::string status;
        const auto reduced = Conv24to8(image, c.maximum, status);
        ASSERT_TRUE(reduced);
        EXPECT_EQ(status, c.status) << c.maximum;
        EXPECT_EQ(reduced->palette.Entries().size(), c.entries) << c.maximum;
    }
    for (int x = 0; x < 16; ++x)
        image.SetRgb(x, 16, {0, 0, 0});
    for (const int maximum : {256, 1000}) {
        std::string status;
        const auto reduced = Conv24to8(image, maximum, status);
        ASSERT_TRUE(reduced);
        EXPECT_EQ(status, "Compressione dei colori non necessaria.");
        EXPECT_EQ(reduced->palette.Entries().size(), 256u);
    }
}

}  // namespace
}  // namespace rastrel
