// Conversions of depth, crops, fills and copies of pixels, against their definitions by pixels.

#include <limits>

#include "support/images.h"

namespace rastrel_test {
namespace {

int GreyOf(const Rgb& color) {
    return (77 * color[0] + 150 * color[1] + 29 * color[2]) >> 8;
}

/// What an image shows at a place, told pixel by pixel through the interface.
Rgb ShownColor(const TestImage& image, int x, int y) {
    if (image.Depth() > 8 || !image.Palette().empty())
        return image.ColorAt(x, y).value_or(Rgb{0, 0, 0});
    const int index = Rastrel_GetIndex(image, x, y);
    const int grey = image.Depth() == 1 ? index * 255 : image.Depth() == 4 ? index * 17 : index;
    return {grey, grey, grey};
}

Bytes ExpectedPixel(const TestImage& image, int depth, int x, int y) {
    const Rgb color = ShownColor(image, x, y);
    const auto byte = [](int value) { return static_cast<std::uint8_t>(value); };
    if (depth == 8)
        return {byte(image.Depth() <= 8 ? Rastrel_GetIndex(image, x, y) : GreyOf(color))};
    Bytes pixel = {byte(color[2]), byte(color[1]), byte(color[0])};
    if (depth == 32) {
        const std::size_t at = static_cast<std::size_t>(y * Rastrel_GetEffWidth(image)) +
                               4 * static_cast<std::size_t>(x);
        pixel.push_back(image.Depth() == 32 ? image.StoredBytes()[at + 3] : byte(255));
    }
    return pixel;
}

/// Images of every depth, of a size that is a multiple of nothing, with and without palettes.
void ForEachKindOfImage(const std::function<void(const TestImage&, const std::string&)>& check) {
    for (const int bits : {1, 4, 8, 24, 32}) {
        for (const int colors : {0, 2, 11, 256}) {
            if (bits > 8 && colors > 0) continue;
            const TestImage image(47, 7, bits);
            FillWithPattern(image, static_cast<unsigned>(bits + colors));
            std::vector<Rgb> palette;
            for (int i = 0; i < colors; ++i)
                palette.push_back({255 - i, (i * 7) & 255, i});
            if (colors > 0) {
                ASSERT_EQ(SetPalette(image, palette), 1);
            }
            check(image, std::to_string(bits) + " bits, " + std::to_string(colors) + " colours");
        }
    }
}

TEST(GetImageByte, CopiesEveryRectangleAtEveryDepth) {
    constexpr std::uint8_t kCanary = 0xa5;
    struct Rectangle {
        int x, y, width, height;
    };
    ForEachKindOfImage([&](const TestImage& image, const std::string& kind) {
        for (const int depth : {8, 24, 32}) {
            for (const Rectangle& r : {Rectangle{0, 0, 47, 7},
                                       {5, 2, 9, 3},
                                       {13, 1, 17, 1},
                                       {-3, -2, 6, 5},
                                       {40, 4, 20, 20},
                                       {-5, -5, 100, 20},
                                       {46, 6, 1, 1},
                                       {7, 0, 1, 7}}) {
                const auto bytes = static_cast<std::size_t>(depth / 8);
                Bytes expected(static_cast<std::size_t>(r.width * r.height) * bytes + 16, kCanary);
                for (int row = 0; row < r.height; ++row) {
                    for (int column = 0; column < r.width; ++column) {
                        const int x = r.x + column;
                        const int y = r.y + row;
                        if (x < 0 || x >= 47 || y < 0 || y >= 7) continue;
                        const Bytes pixel = ExpectedPixel(image, depth, x, 6 - y);
                        std::copy(pixel.begin(), pixel.end(),
                                  expected.begin() + static_cast<std::ptrdiff_t>(bytes) *
                                                         (row * r.width + column));
                    }
                }
                Bytes out(expected.size(), kCanary);
                EXPECT_EQ(
                    Rastrel_GetImageByte(image, out.data(), depth, r.x, r.y, r.width, r.height), 1);
                EXPECT_EQ(out, expected)
                    << kind << " as " << depth << " from " << r.x << ',' << r.y;
            }
        }
    });
}

TEST(GetImageByte, WritesNothingForOtherDepthsAndPlaces) {
    const TestImage image(5, 5, 8);
    const int kMost = std::numeric_limits<int>::max();
    const int kLeast = std::numeric_limits<int>::min();
    Bytes out(64, 0xa5);
    const Bytes before = out;
    for (const int depth : {0, 1, 4, 16, -8, 64})
        EXPECT_EQ(Rastrel_GetImageByte(image, out.data(), depth, 0, 0, 2, 2), 1);
    EXPECT_EQ(Rastrel_GetImageByte(image, out.data(), 8, 5, 0, 2, 2), 1);
    EXPECT_EQ(Rastrel_GetImageByte(image, out.data(), 8, 0, -2, 2, 2), 1);
    EXPECT_EQ(Rastrel_GetImageByte(image, out.data(), 8, 0, 0, -1, 5), 1);
    EXPECT_EQ(Rastrel_GetImageByte(image, out.data(), 8, kMost, kMost, kMost, kMost), 1);
    EXPECT_EQ(Rastrel_GetImageByte(image, out.data(), 8, kLeast, kLeast, kMost, kMost), 1);
    EXPECT_EQ(Rastrel_GetImageByte(image, nullptr, 8, 0, 0, 2, 2), 1);
    EXPECT_EQ(out, before);
}

TEST(Conv8To24, ShowsTheSameColours) {
    ForEachKindOfImage([](const TestImage& image, const std::string& kind) {
        const bool changes = !image.Palette().empty() && image.Depth() <= 8;
        const std::string before = image.Fingerprint();
        Bytes expected(47 * 7 * 3);
        Rastrel_GetImageByte(image, expected.data(), 24, 0, 0, 47, 7);
        Rastrel_SetQuality(image, 77);
        EXPECT_EQ(Rastrel_Conv8To24(image), 1);
        if (!changes) {
            EXPECT_EQ(image.Fingerprint(), before) << kind;
            return;
        }
        EXPECT_EQ(image.Depth(), 24) << kind;
        EXPECT_TRUE(image.Palette().empty());
        EXPECT_EQ(Rastrel_GetQuality(image), 77);
        Bytes out(expected.size());
        Rastrel_GetImageByte(image, out.data(), 24, 0, 0, 47, 7);
        EXPECT_EQ(out, expected) << kind;
        EXPECT_EQ(Rastrel_SetRGB(image, 0, 0, 9, 8, 7), 1) << "it takes colours as they are";
        EXPECT_EQ(image.ColorAt(0, 0), (Rgb{9, 8, 7}));
    });
}

TEST(Conv1To8, KeepsIndicesAndPalette) {
    ForEachKindOfImage([](const TestImage& image, const std::string& kind) {
        const std::string before = image.Fingerprint();
        const Picture indices = image.Indices();
        const auto palette = image.Palette();
        EXPECT_EQ(Rastrel_Conv1To8(image), image.Depth() <= 8 ? 1 : 0) << kind;
        if (image.Depth() > 8) {
            EXPECT_EQ(image.Fingerprint(), before) << kind;
            return;
        }
        EXPECT_EQ(image.Depth(), 8) << kind;
        EXPECT_EQ(image.Indices(), indices) << kind;
        EXPECT_EQ(image.Palette(), palette) << kind;
    });
}

TEST(Conv8To1, KeepsIndices0And1) {
    const TestImage image(11, 2, 8);
    Draw(image, {"1..1....1.1", "...1.....11"});
    ASSERT_EQ(SetPalette(image, {{9, 8, 7}, {1, 1, 1}, {255, 0, 0}}), 1);
    EXPECT_EQ(Rastrel_Conv8To1(image), 1);
    EXPECT_EQ(image.Depth(), 1);
    EXPECT_EQ(image.Indices(), (Picture{"1..1....1.1", "...1.....11"}));
    EXPECT_EQ(image.Palette(), (std::vector<Rgb>{{9, 8, 7}, {1, 1, 1}}));
    EXPECT_EQ(Rastrel_Conv8To1(image), 1) << "1 bit is left as it is";
}

TEST(Conv8To1, SplitsOtherImagesAtTheMiddleGrey) {
    ForEachKindOfImage([](const TestImage& image, const std::string& kind) {
        if (image.Depth() == 1) return;
        const std::string before = image.Fingerprint();
        if (image.Depth() != 8) {
            EXPECT_EQ(Rastrel_Conv8To1(image), 0) << kind;
            EXPECT_EQ(image.Fingerprint(), before) << kind;
            return;
        }
        Picture expected(7, std::string(47, '.'));
        for (int y = 0; y < 7; ++y) {
            for (int x = 0; x < 47; ++x) {
                if (GreyOf(ShownColor(image, x, 6 - y)) >= 128)
                    expected[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] = '1';
            }
        }
        EXPECT_EQ(Rastrel_Conv8To1(image), 1);
        EXPECT_EQ(image.Indices(), expected) << kind;
        EXPECT_EQ(image.Palette(), (std::vector<Rgb>{{0, 0, 0}, {255, 255, 255}}));
    });
}

TEST(Fill, GivesEveryPixelTheColour) {
    const Rgb color = {200, 30, 90};
    ForEachKindOfImage([&](const TestImage& image, const std::string& kind) {
        const bool has_palette = !image.Palette().empty();
        int nearest = 0;
        int least = std::numeric_limits<int>::max();
        for (std::size_t i = 0; has_palette && i < image.Palette().size(); ++i) {
            int distance = 0;
            for (std::size_t c = 0; c < 3; ++c)
                distance += (image.Palette()[i][c] - color[c]) * (image.Palette()[i][c] - color[c]);
            if (distance < least) {
                least = distance;
                nearest = static_cast<int>(i);
            }
        }
        const int grey = GreyOf(color);
        EXPECT_EQ(Rastrel_Fill(image, color[0], color[1], color[2]), 1);
        for (int y = 0; y < 7; ++y) {
            for (int x = 0; x < 47; ++x) {
                if (image.Depth() > 8) {
                    ASSERT_EQ(image.ColorAt(x, y), color) << kind;
                    continue;
                }
                const int value = has_palette ? nearest : grey;
                const int expected = image.Depth() == 8   ? value
                                     : image.Depth() == 4 ? (has_palette ? value & 15 : value >> 4)
                                     : has_palette        ? (value != 0)
                                                          : (value >= 128);
                ASSERT_EQ(Rastrel_GetIndex(image, x, y), expected) << kind;
            }
        }
        if (image.Depth() == 32) {
            EXPECT_EQ(image.StoredBytes()[3], 255);
        }
    });
}

TEST(ExtractPortion, KeepsWhatTheRectangleShows) {
    struct Rectangle {
        int x, y, width, height;
    };
    ForEachKindOfImage([](const TestImage& image, const std::string& kind) {
        for (const Rectangle& r : {Rectangle{0, 0, 47, 7},
                                   {3, 1, 13, 4},
                                   {8, 0, 16, 2},
                                   {-10, -10, 12, 12},
                                   {45, 5, 10, 10},
                                   {1, 6, 1, 1}}) {
            const TestImage part;
            ASSERT_EQ(Rastrel_Copy(part, image), 1);
            Rastrel_SetQuality(part, 60);
            const int left = std::max(r.x, 0);
            const int top = std::max(r.y, 0);
            const int width = std::min(r.x + r.width, 47) - left;
            const int height = std::min(r.y + r.height, 7) - top;
            Bytes expected(static_cast<std::size_t>(width * height) * 4);
            Rastrel_GetImageByte(image, expected.data(), 32, left, top, width, height);

            EXPECT_EQ(Rastrel_ExtractPortion(part, r.x, r.y, r.width, r.height), 1) << kind;
            EXPECT_EQ(part.Width(), width);
            EXPECT_EQ(part.Height(), height);
            EXPECT_EQ(part.Depth(), image.Depth());
            EXPECT_EQ(part.Palette(), image.Palette());
            EXPECT_EQ(Rastrel_GetQuality(part), 60);
            Bytes out(expected.size());
            Rastrel_GetImageByte(part, out.data(), 32, 0, 0, width, height);
            EXPECT_EQ(out, expected) << kind << " at " << r.x << ',' << r.y;
        }
    });
}

TEST(ExtractPortion, RefusesWhatLiesOutside) {
    const TestImage image(5, 4, 8);
    FillWithPattern(image);
    const std::string before = image.Fingerprint();
    const int kMost = std::numeric_limits<int>::max();
    EXPECT_EQ(Rastrel_ExtractPortion(image, 5, 0, 3, 3), 0);
    EXPECT_EQ(Rastrel_ExtractPortion(image, -3, 0, 3, 3), 0);
    EXPECT_EQ(Rastrel_ExtractPortion(image, 0, 0, 0, 3), 0);
    EXPECT_EQ(Rastrel_ExtractPortion(image, 0, 0, 3, -3), 0);
    EXPECT_EQ(Rastrel_ExtractPortion(image, kMost, kMost, kMost, kMost), 0);
    EXPECT_EQ(image.Fingerprint(), before);
    EXPECT_EQ(Rastrel_ExtractPortion(image, 0, 0, kMost, kMost), 1) << "clipped to the whole";
    EXPECT_EQ(image.Fingerprint(), before);
}

TEST(Copy, IsDeep) {
    ForEachKindOfImage([](const TestImage& image, const std::string& kind) {
        const TestImage copy;
        Rastrel_SetQuality(image, 33);
        ASSERT_EQ(Rastrel_Copy(copy, image), 1);
        EXPECT_EQ(copy.Fingerprint(), image.Fingerprint()) << kind;
        EXPECT_EQ(Rastrel_GetQuality(copy), 33);
        EXPECT_EQ(Rastrel_GetImageType(copy), Rastrel_GetImageType(image));
        const std::string before = image.Fingerprint();
        Rastrel_Fill(copy, 1, 2, 3);
        EXPECT_EQ(image.Fingerprint(), before);
        EXPECT_EQ(Rastrel_Copy(image, image), 1) << "onto itself";
        EXPECT_EQ(image.Fingerprint(), before);
    });
}

TEST(Copy, OfAnEmptyImageEmptiesTheTarget) {
    const TestImage target(2, 2, 8);
    const TestImage empty;
    EXPECT_EQ(Rastrel_Copy(target, empty), 0);
    EXPECT_EQ(target.Width(), 0);
    EXPECT_EQ(Rastrel_Create(target, 2, 2, 8), 1) << "the handle stays";
}

TEST(CreateFrom, BytesBecomeGreysOrColours) {
    const TestImage image;
    const Bytes greys = {1, 2, 3, 4, 5, 6};
    ASSERT_EQ(Rastrel_CreateFromByte(image, greys.data(), 3, 2), 1);
    EXPECT_EQ(image.Indices(), (Picture{"123", "456"}));
    EXPECT_EQ(image.Palette().size(), 256u);
    EXPECT_EQ(image.ColorAt(0, 1), (Rgb{1, 1, 1}));
    EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_BMP);

    const Bytes colors = {1, 2, 3, 4, 5, 6};
    ASSERT_EQ(Rastrel_CreateFromByte24(image, colors.data(), 1, 2), 1);
    EXPECT_EQ(image.Depth(), 24);
    EXPECT_EQ(image.ColorAt(0, 1), (Rgb{3, 2, 1}));
    EXPECT_EQ(image.ColorAt(0, 0), (Rgb{6, 5, 4}));

    const Bytes with_alpha = {1, 2, 3, 99, 4, 5, 6, 99};
    ASSERT_EQ(Rastrel_CreateFromByte32(image, with_alpha.data(), 2, 1), 1);
    EXPECT_EQ(image.Depth(), 24);
    EXPECT_EQ(image.StoredBytes(), (Bytes{1, 2, 3, 4, 5, 6, 0, 0}));
}

TEST(CreateFrom, SamplesAreStretchedOverTheirRange) {
    const TestImage image;
    const std::vector<std::int16_t> shorts = {-32768, 0, 32767, 32766};
    ASSERT_EQ(Rastrel_CreateFromShort(image, shorts.data(), 4, 1), 1);
    EXPECT_EQ(image.StoredBytes(), (Bytes{0, 127, 255, 254}));

    const int kMost = std::numeric_limits<int>::max();
    const int kLeast = std::numeric_limits<int>::min();
    const std::vector<std::int32_t> ints = {kLeast, kMost, 0, kMost - 1};
    ASSERT_EQ(Rastrel_CreateFromInt(image, ints.data(), 4, 1), 1);
    EXPECT_EQ(image.StoredBytes(), (Bytes{0, 255, 127, 254}));

    const float kNan = std::numeric_limits<float>::quiet_NaN();
    const float kInf = std::numeric_limits<float>::infinity();
    const std::vector<float> floats = {kNan, -1.0f, 1.0f, 0.0f, kInf, -kInf, 0.99f, kNan};
    ASSERT_EQ(Rastrel_CreateFromFloat(image, floats.data(), 8, 1), 1);
    EXPECT_EQ(image.StoredBytes(), (Bytes{0, 0, 255, 127, 255, 0, 253, 0}));

    const std::vector<float> flat = {2.5f, 2.5f, 2.5f, 2.5f};
    ASSERT_EQ(Rastrel_CreateFromFloat(image, flat.data(), 4, 1), 1);
    EXPECT_EQ(image.StoredBytes(), (Bytes{0, 0, 0, 0}));
    const std::vector<float> none = {kNan, kNan, kNan, kNan};
    ASSERT_EQ(Rastrel_CreateFromFloat(image, none.data(), 2, 2), 1);
    EXPECT_EQ(image.StoredBytes(), Bytes(8));
}

TEST(CreateFrom, ImpossibleSizesLeaveAnEmptyImage) {
    const Bytes bytes(64);
    const int kMost = std::numeric_limits<int>::max();
    for (const auto& [width, height] : {std::pair{0, 4}, {4, 0}, {-4, -4}, {kMost, kMost}}) {
        const TestImage image(2, 2, 8);
        EXPECT_EQ(Rastrel_CreateFromByte(image, bytes.data(), width, height), 0);
        EXPECT_EQ(image.Width(), 0);
        EXPECT_EQ(Rastrel_CreateFromByte24(image, bytes.data(), width, height), 0);
        EXPECT_EQ(Rastrel_CreateFromFloat(image, reinterpret_cast<const float*>(bytes.data()),
                                          width, height),
                  0);
    }
}

TEST(CreateFrom3Bands, TakesOneChannelOfEach) {
    const TestImage red(2, 1, 24);
    const TestImage green;
    const TestImage blue(2, 1, 4);
    Rastrel_Fill(red, 10, 11, 12);
    Rastrel_CreateFromByte(green, Bytes{20, 21}.data(), 2, 1);
    Draw(blue, {"3f"});
    const TestImage target;
    ASSERT_EQ(Rastrel_CreateFrom3Bands(target, red, green, blue), 1);
    EXPECT_EQ(target.Depth(), 24);
    EXPECT_EQ(target.ColorAt(0, 0), (Rgb{10, 20, 51}));
    EXPECT_EQ(target.ColorAt(1, 0), (Rgb{10, 21, 255}));

    EXPECT_EQ(Rastrel_CreateFrom3Bands(red, red, red, red), 1) << "the target may be a band";
    EXPECT_EQ(red.ColorAt(0, 0), (Rgb{10, 11, 12}));

    const TestImage other(3, 1, 8);
    EXPECT_EQ(Rastrel_CreateFrom3Bands(target, red, other, blue), 0) << "sizes differ";
    EXPECT_EQ(target.Width(), 0);
}

}  // namespace
}  // namespace rastrel_test
