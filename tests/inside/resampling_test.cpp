// Resizing and rectifying give the same bytes whatever instructions the machine has.

#include <gtest/gtest.h>

#include <random>

#include "imaging/rectify.h"
#include "imaging/resize.h"
#include "inside/targets.h"

namespace rastrel {
namespace {

void MakeNoise(RasterImage& image, Size size, int bits) {
    ASSERT_TRUE(image.Create(size.width, size.height, bits, -1));
    std::mt19937 random(5);
    for (int y = 0; y < size.height; ++y) {
        for (std::uint8_t& byte : image.Row(y))
            byte = static_cast<std::uint8_t>(random() >> 16);
    }
}

/// The bytes of the rows, without what pads them.
std::vector<std::uint8_t> PixelBytes(const RasterImage& image) {
    std::vector<std::uint8_t> bytes;
    const auto row_bytes = static_cast<std::size_t>(image.Width() * image.Bits() / 8);
    for (int y = 0; y < image.Height(); ++y) {
        const auto row = image.Row(y).first(row_bytes);
        bytes.insert(bytes.end(), row.begin(), row.end());
    }
    return bytes;
}

template <class Make>
void ExpectSameOnAllTargets(Make make) {
    std::vector<std::uint8_t> first;
    for (const std::int64_t target : Targets()) {
        const ChosenTarget chosen(target);
        RasterImage result;
        ASSERT_TRUE(make(result));
        const auto bytes = PixelBytes(result);
        if (first.empty()) first = bytes;
        ASSERT_TRUE(bytes == first) << target;
    }
}

TEST(Resampling, ResizesAlikeOnAllTargets) {
    for (const int bits : {8, 24, 32}) {
        RasterImage source;
        MakeNoise(source, {203, 151}, bits);
        for (const Size size : {Size{77, 59}, {203, 700}, {611, 41}, {500, 433}, {3, 2}}) {
            for (const auto way : {Resampling::kBilinear, Resampling::kBicubic, Resampling::kArea})
                ExpectSameOnAllTargets([&](RasterImage& result) {
                    return Resize(source, {1, 2, 202, 147}, size, way, result);
                });
        }
    }
}

TEST(Resampling, RectifiesAlikeOnAllTargets) {
    for (const int bits : {8, 24, 32}) {
        RasterImage source;
        MakeNoise(source, {203, 151}, bits);
        Rectification order;
        order.to_pixel = {0.61, 0.33, -20.125, 0.31, -0.65, 130.7};
        order.box = {-100, -100, 400, 400};
        for (const auto way : {Resampling::kNearest, Resampling::kBilinear, Resampling::kBicubic}) {
            order.way = way;
            ExpectSameOnAllTargets(
                [&](RasterImage& result) { return Rectify(source, order, result); });
        }
    }
}

}  // namespace
}  // namespace rastrel
