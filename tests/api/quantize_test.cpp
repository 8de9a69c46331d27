// Colour reduction, held to the algorithm as it is told.

#include <cmath>
#include <random>

#include "support/images.h"
#include "support/plain_quantizer.h"

namespace rastrel_test {
namespace {

constexpr std::size_t kUsualColors = 255;

/// Random pixels (blue, green, red) of as many colours as told, all of them used, some more often
/// than others; spread over a range that makes directions of different lengths.
Bytes PixelsOfColors(std::size_t colors, std::size_t pixels, unsigned seed) {
    std::mt19937 random(seed);
    Bytes table;
    for (std::uint32_t i = 0; i < colors; ++i) {
        // All different: an odd factor only rearranges the colours.
        const std::uint32_t color = (i * 0x5bd1e5u + seed * 77777u) & 0xffffffu;
        for (const unsigned shift : {0u, 8u, 16u})
            table.push_back(static_cast<std::uint8_t>(color >> shift));
    }
    Bytes bytes;
    for (std::size_t i = 0; i < pixels; ++i) {
        const std::size_t any = random() % colors;
        const std::size_t color = i < colors ? i : random() % (any + 1);
        bytes.insert(bytes.end(), &table[3 * color], &table[3 * color] + 3);
    }
    return bytes;
}

/// A picture whose neighbours are alike, with noise: the colours of photographs lie in a few
/// clouds.
Bytes Photograph(int width, int height, unsigned seed) {
    std::mt19937 random(seed);
    Bytes bytes;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double phase = x * 0.031 + y * 0.017 + seed;
            for (const double part : {std::sin(phase), std::cos(phase * 1.7), std::sin(y * 0.05)})
                bytes.push_back(
                    static_cast<std::uint8_t>(128 + 90 * part + static_cast<int>(random() % 32)));
        }
    }
    return bytes;
}

std::vector<Rgb> Colors(const std::vector<std::array<std::uint8_t, 3>>& palette) {
    std::vector<Rgb> colors;
    for (const auto& [blue, green, red] : palette)
        colors.push_back({red, green, blue});
    return colors;
}

Bytes IndicesOf(const TestImage& image) {
    Bytes indices(static_cast<std::size_t>(image.Width() * image.Height()));
    EXPECT_EQ(Rastrel_GetImageByte(image, indices.data(), 8, 0, 0, image.Width(), image.Height()),
              1);
    return indices;
}

void ExpectReducedAsTold(const Bytes& pixels, int width, const std::string& what) {
    const int height = static_cast<int>(pixels.size()) / 3 / width;
    const TestImage image;
    ASSERT_EQ(Rastrel_CreateFromByte24(image, pixels.data(), width, height), 1);
    Rastrel_SetQuality(image, 42);
    ASSERT_EQ(Rastrel_Conv24To8(image), 1);
    const PlainReduction expected = ReducePlainly(pixels, kUsualColors);
    EXPECT_EQ(image.Depth(), 8);
    EXPECT_EQ(image.Palette(), Colors(expected.palette)) << what;
    EXPECT_EQ(IndicesOf(image), expected.indices) << what;
    EXPECT_EQ(Rastrel_GetQuality(image), 42);
}

TEST(Conv24To8, GivesThePalettesAndIndicesOfTheAlgorithm) {
    for (const std::size_t colors : {1u, 2u, 3u, 100u, 254u, 255u, 256u, 257u, 1000u, 32766u,
                                     32767u, 32768u, 32769u, 40000u, 66000u, 200000u}) {
        constexpr std::size_t kWidth = 47;
        const std::size_t rows = colors * 5 / 4 / kWidth + 10;
        ExpectReducedAsTold(PixelsOfColors(colors, rows * kWidth, 1), kWidth,
                            std::to_string(colors) + " colours");
    }
}

TEST(Conv24To8, GivesThoseOfTheAlgorithmForPictures) {
    for (const int side : {1, 2, 33, 300, 700})
        ExpectReducedAsTold(Photograph(side, side, 5), side, "side " + std::to_string(side));
}

TEST(Conv24To8, RescalesAsOftenAsItTakes) {
    // Every colour that five bits a component can tell apart, and so one too many at that scale.
    Bytes pixels;
    for (int blue = 0; blue < 256; blue += 4) {
        for (int green = 0; green < 256; green += 4) {
            for (int red = 0; red < 256; red += 4)
                pixels.insert(pixels.end(),
                              {static_cast<std::uint8_t>(blue), static_cast<std::uint8_t>(green),
                               static_cast<std::uint8_t>(red)});
        }
    }
    ExpectReducedAsTold(pixels, 512, "the whole cube");
}

TEST(Conv24To8, CutsBetweenEqualColoursAsTold) {
    // Grey pixels have equal ranges but for the weights; planes have many colours alike in the
    // direction of a cut.
    Bytes planes;
    for (int i = 0; i < 5000; ++i) {
        const auto low = static_cast<std::uint8_t>(i % 7);
        const auto high = static_cast<std::uint8_t>(i / 7 % 250);
        planes.insert(planes.end(), {high, low, static_cast<std::uint8_t>(i % 3)});
    }
    ExpectReducedAsTold(planes, 50, "planes");
    Bytes weighted;
    for (int i = 0; i < 3000; ++i)
        weighted.insert(weighted.end(),
                        {static_cast<std::uint8_t>(i % 150), static_cast<std::uint8_t>(i % 77),
                         static_cast<std::uint8_t>(i / 77 * 3)});
    ExpectReducedAsTold(weighted, 50, "equal weighted ranges");
}

TEST(Conv24To8, KeepsFewColoursSortedByBlueGreenRed) {
    const TestImage image(5, 1, 24);
    const std::vector<Rgb> colors = {{9, 0, 1}, {0, 9, 1}, {0, 0, 2}, {9, 0, 1}, {8, 0, 1}};
    for (int x = 0; x < 5; ++x) {
        const Rgb& color = colors[static_cast<std::size_t>(x)];
        Rastrel_SetRGB(image, x, 0, color[0], color[1], color[2]);
    }
    ASSERT_EQ(Rastrel_Conv24To8(image), 1);
    EXPECT_EQ(image.Palette(), (std::vector<Rgb>{{8, 0, 1}, {9, 0, 1}, {0, 9, 1}, {0, 0, 2}}));
    EXPECT_EQ(image.Indices(), (Picture{"1231."}));
    EXPECT_EQ(Rastrel_SetRGB(image, 0, 0, 0, 9, 0), 1) << "it has a palette's colour type";
    EXPECT_EQ(Rastrel_GetIndex(image, 0, 0), 2);
}

TEST(Conv24To8, TakesOtherDeepImagesAsTheirColours) {
    const TestImage with_alpha(9, 3, 32);
    FillWithPattern(with_alpha);
    Bytes pixels(9 * 3 * 3);
    Rastrel_GetImageByte(with_alpha, pixels.data(), 24, 0, 0, 9, 3);
    ASSERT_EQ(Rastrel_Conv24To8(with_alpha), 1);
    Bytes reduced(pixels.size());
    Rastrel_GetImageByte(with_alpha, reduced.data(), 24, 0, 0, 9, 3);
    EXPECT_EQ(reduced, pixels);
}

TEST(Conv24To8, LeavesShallowImages) {
    for (const int bits : {1, 4, 8}) {
        const TestImage image(9, 3, bits);
        FillWithPattern(image);
        const std::string before = image.Fingerprint();
        EXPECT_EQ(Rastrel_Conv24To8(image), 1);
        EXPECT_EQ(Rastrel_Conv24To8_Precalcolata(image, 1, Bytes{1}.data(), Bytes{2}.data(),
                                                 Bytes{3}.data()),
                  1);
        EXPECT_EQ(image.Fingerprint(), before) << bits;
    }
}

TEST(Conv24To8, RefusesWhatIsNoImage) {
    const TestImage empty;
    const TestImage image(2, 2, 24);
    const Bytes levels(300);
    EXPECT_EQ(Rastrel_Conv24To8(empty), 0);
    EXPECT_EQ(Rastrel_Conv24To8(-1), 0);
    const auto* some = levels.data();
    EXPECT_EQ(Rastrel_Conv24To8_Precalcolata(empty, 3, some, some, some), 0);
    for (const int count : {-1, 0, 257})
        EXPECT_EQ(Rastrel_Conv24To8_Precalcolata(image, count, some, some, some), 0) << count;
    EXPECT_EQ(Rastrel_Conv24To8_Precalcolata(image, 3, nullptr, some, some), 0);
    EXPECT_EQ(Rastrel_Conv24To8_Precalcolata(image, 3, some, nullptr, some), 0);
    EXPECT_EQ(Rastrel_Conv24To8_Precalcolata(image, 3, some, some, nullptr), 0);
    EXPECT_EQ(image.Depth(), 24);
}

TEST(Conv24To8Precalcolata, TakesTheNearestEntryByCityBlock) {
    std::mt19937 random(3);
    for (const std::size_t entries : {1u, 2u, 16u, 255u, 256u}) {
        for (const unsigned spread : {255u, 7u}) {
            std::vector<std::array<std::uint8_t, 3>> palette(entries);
            std::array<Bytes, 3> channels;
            for (auto& entry : palette) {
                for (std::size_t part = 0; part < 3; ++part) {
                    entry[part] = static_cast<std::uint8_t>(random() % (spread + 1));
                    channels[part].push_back(entry[part]);
                }
            }
            Bytes pixels = Photograph(90, 70, 2);
            for (std::uint8_t& part : pixels)
                part &= static_cast<std::uint8_t>(spread);
            const TestImage image;
            ASSERT_EQ(Rastrel_CreateFromByte24(image, pixels.data(), 90, 70), 1);
            ASSERT_EQ(
                Rastrel_Conv24To8_Precalcolata(image, static_cast<int>(entries), channels[2].data(),
                                               channels[1].data(), channels[0].data()),
                1);
            EXPECT_EQ(image.Palette(), Colors(palette));
            EXPECT_EQ(IndicesOf(image), MapPlainly(pixels, palette))
                << entries << " entries up to " << spread;
        }
    }
}

}  // namespace
}  // namespace rastrel_test
