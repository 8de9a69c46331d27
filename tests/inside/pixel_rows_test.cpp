// The vector forms of the row conversions against the plain ones: for every set of instructions the
// machine has, at every count up to several vectors, at odd addresses, with sentinels around.

#include "core/pixel_rows.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <vector>

#include "core/pixel_rows_plain.h"
#include "inside/targets.h"

namespace rastrel {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t kSentinel = 0x5a;
constexpr std::size_t kMargin = 70;

Bytes RandomBytes(std::size_t count) {
    std::mt19937 random(static_cast<unsigned>(count) + 1);
    Bytes bytes(count);
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(random() >> 13);
    return bytes;
}

using Convert = std::function<void(std::span<const std::uint8_t>, std::span<std::uint8_t>)>;

void ExpectSame(const char* what, const Convert& fast, const Convert& plain, std::size_t in_bytes,
                std::size_t out_bytes) {
    for (const std::int64_t target : Targets()) {
        const ChosenTarget chosen(target);
        for (std::size_t count = 0; count <= 270; ++count) {
            const std::size_t shift = count % 7;
            const Bytes in = RandomBytes(shift + count * in_bytes);
            Bytes expected(kMargin + count * out_bytes + kMargin, kSentinel);
            Bytes out = expected;
            const auto from = std::span(in).subspan(shift);
            plain(from, std::span(expected).subspan(kMargin - shift, count * out_bytes));
            fast(from, std::span(out).subspan(kMargin - shift, count * out_bytes));
            ASSERT_EQ(out, expected) << what << ", " << count << " pixels, " << target;
        }
    }
}

TEST(PixelRows, VectorFormsEqualThePlainOnes) {
    ValueColors colors;
    const Bytes random = RandomBytes(1024);
    for (std::size_t value = 0; value < 256; ++value) {
        colors.Set(value, random[4 * value] | static_cast<unsigned>(random[4 * value + 1]) << 8 |
                              static_cast<unsigned>(random[4 * value + 2]) << 16 | 0xff000000u);
    }
    ExpectSame(
        "expanded to 24", [&](auto in, auto out) { ExpandTo24(in, colors, out); },
        [&](auto in, auto out) { plain::ExpandTo24(in, colors, out); }, 1, 3);
    ExpectSame("24 from 32", Bgr24From32, plain::Bgr24From32, 4, 3);
    ExpectSame("32 from 24", Bgra32From24, plain::Bgra32From24, 3, 4);
    ExpectSame("red and blue swapped", SwapRedBlue24, plain::SwapRedBlue24, 3, 3);
    ExpectSame("24 from red, green, blue, alpha", Bgr24FromRgba32, plain::Bgr24FromRgba32, 4, 3);
    const auto from_planes = [](const auto& convert) {
        return [&convert](auto in, auto out) {
            const std::size_t count = in.size() / 3;
            convert(in.data(), in.subspan(count, count), in.data() + 2 * count, out);
        };
    };
    ExpectSame("24 from planes", from_planes(Bgr24FromPlanes), from_planes(plain::Bgr24FromPlanes),
               3, 3);
    for (const std::size_t pixel_bytes : {3u, 4u}) {
        ExpectSame(
            "grey", [&](auto in, auto out) { GreyFromBgr(in, pixel_bytes, out); },
            [&](auto in, auto out) { plain::GreyFromBgr(in, pixel_bytes, out); }, pixel_bytes, 1);
    }
    for (const std::size_t channel : {0u, 1u, 2u}) {
        ExpectSame(
            "one channel", [&](auto in, auto out) { TakeChannel(in, channel, out); },
            [&](auto in, auto out) { plain::TakeChannel(in, channel, out); }, 3, 1);
    }
    const auto copy = [](auto in, auto out) { std::copy(in.begin(), in.end(), out.begin()); };
    ExpectSame(
        "copied past the caches", [](auto in, auto out) { StreamCopy(in, out.data()); }, copy, 1,
        1);
}

TEST(PixelRows, UnpackAndPackAreInverse) {
    for (const int bits : {1, 4, 8}) {
        for (std::size_t count = 0; count <= 70; ++count) {
            Bytes indices = RandomBytes(count);
            for (std::uint8_t& index : indices)
                index = static_cast<std::uint8_t>(index >> (8 - bits));
            Bytes row(count + 2, kSentinel);
            PackIndices(indices, bits, row);
            const std::size_t used = (count * static_cast<std::size_t>(bits) + 7) / 8;
            EXPECT_EQ(row[used], kSentinel) << bits << ' ' << count;
            for (std::size_t first = 0; first <= count; first += 3) {
                Bytes out(count - first + 1, kSentinel);
                UnpackIndices(row, bits, static_cast<int>(first),
                              std::span(out).first(count - first));
                EXPECT_TRUE(std::equal(out.begin(), out.end() - 1,
                                       indices.begin() + static_cast<std::ptrdiff_t>(first)));
                EXPECT_EQ(out.back(), kSentinel);
            }
        }
    }
}

}  // namespace
}  // namespace rastrel
