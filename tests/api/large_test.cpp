// Images so large that output goes past the caches: the same pixels as from small ones.

#include "support/images.h"

namespace rastrel_test {
namespace {

constexpr int kSide = 2477;  // 18 MB at 24 bits

TEST(LargeImages, ConvertAndCopyLikeSmallOnes) {
    for (const int bits : {1, 4, 8, 24, 32}) {
        const TestImage image(kSide, kSide, bits);
        FillWithPattern(image);
        if (bits <= 8) Rastrel_SetGrayPalette(image);
        for (const int depth : {24, 32}) {
            const auto pixel_bytes = static_cast<std::size_t>(depth / 8);
            const std::size_t row_bytes = kSide * pixel_bytes;
            Bytes all(row_bytes * kSide + 1, 0xa5);
            ASSERT_EQ(Rastrel_GetImageByte(image, all.data(), depth, 0, 0, kSide, kSide), 1);
            EXPECT_EQ(all.back(), 0xa5);
            for (int y = 0; y < kSide; y += 97) {
                Bytes row(row_bytes);
                Rastrel_GetImageByte(image, row.data(), depth, 0, y, kSide, 1);
                const auto start = all.begin() + static_cast<std::ptrdiff_t>(row_bytes) * y;
                ASSERT_TRUE(std::equal(row.begin(), row.end(), start)) << bits << ' ' << depth;
            }
        }
    }
}

TEST(LargeImages, FillLikeSmallOnes) {
    for (const int bits : {8, 24, 32}) {
        const TestImage image(kSide + 2600, kSide, bits);
        ASSERT_EQ(Rastrel_Fill(image, 10, 20, 30), 1);
        const Bytes stored = image.StoredBytes();
        const auto row_bytes = static_cast<std::size_t>(Rastrel_GetEffWidth(image));
        EXPECT_EQ(stored[0], bits == 8 ? 18 : 30);
        for (std::size_t y = 1; y < kSide; ++y)
            ASSERT_TRUE(std::equal(stored.begin(), stored.begin() + static_cast<int>(row_bytes),
                                   stored.begin() + static_cast<std::ptrdiff_t>(y * row_bytes)))
                << bits << ' ' << y;
        const int last = image.Width() - 1;
        if (bits != 8) {
            EXPECT_EQ(image.ColorAt(last, 5), (Rgb{10, 20, 30}));
        } else {
            EXPECT_EQ(Rastrel_GetIndex(image, last, 5), 18);
        }
    }
}

}  // namespace
}  // namespace rastrel_test
