// The rows of surfaces, for every set of instructions the machine has: at every count up to several
// vectors, at odd addresses, with sentinels around the output and nothing readable behind the
// input.

#include "display/surface/surface_rows.h"

#include <random>

#include "display/surface/sampling.h"
#include "inside/canary.h"

namespace rastrel {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes RandomBytes(std::size_t count) {
    std::mt19937 random(static_cast<unsigned>(count) + 1);
    Bytes bytes(count);
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(random() >> 13);
    return bytes;
}

SurfaceColors RandomColors(std::uint32_t unused_bytes) {
    std::mt19937 random(3);
    DeviceColors colors = {};
    for (std::uint32_t& color : colors)
        color = static_cast<std::uint32_t>(random()) & (0x00ffffff | unused_bytes);
    return SurfaceColors(colors);
}

/// Runs a conversion into an output that begins at an odd address.
template <class Run>
void ExpectPixels(const std::vector<std::uint32_t>& pixels, const std::string& what, Run run) {
    const std::size_t bytes = pixels.size() * 4;
    Framed<std::uint8_t> expected(bytes + 1);
    if (bytes > 0) std::memcpy(expected.Data() + 1, pixels.data(), bytes);
    ExpectOnEveryTarget(expected, bytes + 1, what,
                        [&](std::uint8_t* out) { run(std::span(out + 1, bytes)); });
}

TEST(SurfaceRows, ConvertOneToOne) {
    for (const std::uint32_t unused : {0u, 0xff000000u}) {
        const SurfaceColors colors = RandomColors(unused);
        for (std::size_t count = 0; count <= 200; ++count) {
            const Bytes indices = RandomBytes(count);
            std::vector<std::uint32_t> pixels;
            for (const std::uint8_t index : indices)
                pixels.push_back(colors.pixels[index]);
            ExpectPixels(pixels, std::to_string(count) + " indices",
                         [&](auto out) { BgrxFromIndices(indices.data(), colors, out); });
        }
    }
    for (std::size_t count = 0; count <= 70; ++count) {
        const Bytes source = RandomBytes(3 * count);
        std::vector<std::uint32_t> pixels;
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint8_t* bgr = &source[3 * i];
            pixels.push_back(bgr[0] | unsigned{bgr[1]} << 8 | unsigned{bgr[2]} << 16);
        }
        ExpectPixels(pixels, std::to_string(count) + " of 24 bits",
                     [&](auto out) { BgrxFrom24(source.data(), out); });
    }
}

/// Columns of a row of width pixels scaled to count, forward and mirrored.
std::vector<std::uint32_t> Columns(int count, int width, bool mirrored, std::uint32_t bytes) {
    const Samples samples = ChooseSamples({0, count}, count, {0, width}, width, mirrored);
    std::vector<std::uint32_t> offsets;
    for (const int source : samples.sources)
        offsets.push_back(static_cast<std::uint32_t>(source) * bytes);
    return offsets;
}

struct Scale {
    int count;
    int width;
};
// Around the sizes of groups and windows, enlarged, reduced by 2 to 9, and far apart.
constexpr Scale kScales[] = {{1, 1},      {63, 300},  {64, 255},   {64, 256},  {64, 257},
                             {65, 130},   {130, 512}, {200, 1000}, {100, 900}, {300, 257},
                             {480, 1024}, {16, 85},   {16, 86},    {17, 100},  {1000, 300}};

TEST(SurfaceRows, ChooseIndices) {
    for (const std::uint32_t unused : {0u, 0xff000000u}) {
        const SurfaceColors colors = RandomColors(unused);
        for (const Scale& scale : kScales) {
            for (const bool mirrored : {false, true}) {
                const Bytes row = RandomBytes(static_cast<std::size_t>(scale.width));
                const auto offsets = Columns(scale.count, scale.width, mirrored, 1);
                std::vector<std::uint32_t> pixels;
                for (const std::uint32_t offset : offsets)
                    pixels.push_back(colors.pixels[row[offset]]);
                const ChosenBytes groups = GroupIndices(offsets, row.size());
                ExpectPixels(pixels, std::to_string(scale.width), [&](auto out) {
                    ChooseFromIndices(row.data(), offsets, groups, colors, out);
                });
            }
        }
    }
}

TEST(SurfaceRows, ChooseTrueColours) {
    for (const Scale& scale : kScales) {
        for (const bool mirrored : {false, true}) {
            // One byte more, which is read and does not count.
            const auto row_bytes = static_cast<std::size_t>(scale.width) * 3;
            const Bytes row = RandomBytes(row_bytes + 1);
            const auto offsets = Columns(scale.count, scale.width, mirrored, 3);
            std::vector<std::uint32_t> pixels;
            for (const std::uint32_t offset : offsets)
                pixels.push_back(row[offset] | unsigned{row[offset + 1]} << 8 |
                                 unsigned{row[offset + 2]} << 16);
            const ChosenBytes groups = Group24(offsets, row_bytes);
            ExpectPixels(pixels, std::to_string(scale.width),
                         [&](auto out) { ChooseFrom24(row.data(), offsets, groups, out); });
        }
    }
}

TEST(SurfaceRows, AreCombined) {
    for (std::size_t count = 0; count <= 70; ++count) {
        const Bytes pixels = RandomBytes(4 * count);
        std::vector<std::uint32_t> both;
        std::vector<std::uint32_t> either;
        for (std::size_t i = 0; i < count; ++i) {
            std::uint32_t pixel = 0;
            std::memcpy(&pixel, &pixels[4 * i], sizeof pixel);
            both.push_back(pixel & 0x3c3c3c3c);
            either.push_back(pixel | 0x3c3c3c3c);
        }
        ExpectPixels(both, "and", [&](auto out) {
            std::ranges::fill(out, 0x3c);
            AndBytes(pixels, out);
        });
        ExpectPixels(either, "or", [&](auto out) {
            std::ranges::fill(out, 0x3c);
            OrBytes(pixels, out);
        });
    }
}

TEST(SurfaceRows, FormGroupsWhereTheyHelp) {
    EXPECT_EQ(GroupIndices(Columns(480, 1024, false, 1), 1024).groups.size(), 8u);
    EXPECT_EQ(GroupIndices(Columns(480, 1024, true, 1), 1024).groups.size(), 8u);
    EXPECT_TRUE(GroupIndices(Columns(480, 4096, false, 1), 4096).groups.empty()) << "far apart";
    EXPECT_TRUE(GroupIndices(Columns(63, 300, false, 1), 300).groups.empty()) << "too few";
    EXPECT_EQ(Group24(Columns(480, 1024, false, 3), 3072).groups.size(), 30u);
}

}  // namespace
}  // namespace rastrel
