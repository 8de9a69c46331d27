// Images as the bytes of files in memory, and back.

#include <limits>

#include "support/images.h"

namespace rastrel_test {
namespace {

/// An image's stream, by asking for its size first.
Bytes StreamOf(int image, int type) {
    int size = 0;
    EXPECT_EQ(Rastrel_Image2Stream(image, nullptr, 0, type, &size), 0);
    Bytes bytes(static_cast<std::size_t>(size));
    int again = 0;
    EXPECT_EQ(Rastrel_Image2Stream(image, bytes.data(), size, type, &again), 1);
    EXPECT_EQ(again, size);
    return bytes;
}

const std::vector<std::pair<int, const char*>> kFormats = {{RASTREL_TYPE_BMP, "a.bmp"},
                                                           {RASTREL_TYPE_QVI, "a.qvi"},
                                                           {RASTREL_TYPE_PNG, "a.png"},
                                                           {RASTREL_TYPE_JPEG, "a.jpg"}};

TEST(Streams, AreTheBytesOfFiles) {
    const TestFolder folder;
    for (const int bits : {1, 4, 8, 24, 32}) {
        const TestImage image(37, 11, bits);
        FillWithPattern(image);
        const std::string before = image.Fingerprint();
        for (const auto& [type, name] : kFormats) {
            if (type == RASTREL_TYPE_JPEG && bits != 8 && bits != 24) continue;
            SCOPED_TRACE(std::string(name) + " of " + std::to_string(bits) + " bits");
            const Bytes stream = StreamOf(image, type);
            EXPECT_EQ(image.Fingerprint(), before);
            EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_BMP);
            const TestImage saved;
            Rastrel_Copy(saved, image);
            ASSERT_EQ(Rastrel_Save(saved, folder.Path(name).c_str(), -1), 1);
            EXPECT_EQ(stream, FileBytes(folder.Path(name)));
            const TestImage from_file;
            ASSERT_EQ(Rastrel_Read(from_file, folder.Path(name).c_str(), -1), 1);
            for (const int read_as : {type, -1}) {
                const TestImage read;
                ASSERT_EQ(Rastrel_Stream2Image(read, stream.data(), static_cast<int>(stream.size()),
                                               read_as),
                          1);
                EXPECT_EQ(read.Fingerprint(), from_file.Fingerprint());
                EXPECT_EQ(Rastrel_GetImageType(read), type);
            }
        }
        const Bytes compact = StreamOf(image, -1);
        EXPECT_EQ(compact, StreamOf(image, RASTREL_TYPE_QVI));
        EXPECT_GE(Rastrel_StreamMaxSize(image), static_cast<int>(compact.size()));
    }
}

TEST(Streams, SmallBuffersAreNotOverrun) {
    const TestImage image(20, 20, 24);
    FillWithPattern(image);
    const auto needed = static_cast<int>(StreamOf(image, RASTREL_TYPE_BMP).size());
    for (const int capacity : {0, 1, 54, needed / 2, needed - 1}) {
        Bytes buffer(static_cast<std::size_t>(needed) + 16, 0xcc);
        int size = 0;
        EXPECT_EQ(Rastrel_Image2Stream(image, buffer.data(), capacity, RASTREL_TYPE_BMP, &size), 0);
        EXPECT_EQ(size, needed);
        for (auto at = static_cast<std::size_t>(capacity); at < buffer.size(); ++at)
            ASSERT_EQ(buffer[at], 0xcc) << at;
    }
    Bytes buffer(static_cast<std::size_t>(needed));
    EXPECT_EQ(Rastrel_Image2Stream(image, buffer.data(), needed, RASTREL_TYPE_BMP, nullptr), 1);
    int size = -7;
    for (const int type : {int{RASTREL_TYPE_TIFF}, int{RASTREL_TYPE_BIL}, 99, -2})
        EXPECT_EQ(Rastrel_Image2Stream(image, buffer.data(), needed, type, &size), 0) << type;
    EXPECT_EQ(Rastrel_Image2Stream(image, buffer.data(), -1, RASTREL_TYPE_BMP, &size), 0);
    EXPECT_EQ(Rastrel_Image2Stream(TestImage(), buffer.data(), needed, -1, &size), 0);
    EXPECT_EQ(size, -7);
    EXPECT_EQ(Rastrel_StreamMaxSize(TestImage()), 0);
}

TEST(Streams, WorstCaseFitsTheMostThatIsTold) {
    // Pixels that do not compress.
    const TestImage image(333, 200, 32);
    FillWithPattern(image);
    Bytes buffer(static_cast<std::size_t>(Rastrel_StreamMaxSize(image)));
    int size = 0;
    EXPECT_EQ(
        Rastrel_Image2Stream(image, buffer.data(), static_cast<int>(buffer.size()), -1, &size), 1);
    EXPECT_GT(size, 333 * 200 * 4);
}

TEST(Streams, BadBytesLeaveTheImageAlone) {
    const TestImage image(6, 5, 8);
    FillWithPattern(image);
    const std::string before = image.Fingerprint();
    const Bytes bmp = StreamOf(image, RASTREL_TYPE_BMP);
    const auto size = static_cast<int>(bmp.size());
    for (int cut = 1; cut < 54; ++cut)
        EXPECT_EQ(Rastrel_Stream2Image(image, bmp.data(), cut, -1), 0) << cut;
    const Bytes other(100, 'x');
    EXPECT_EQ(Rastrel_Stream2Image(image, other.data(), 100, -1), 0);
    EXPECT_EQ(Rastrel_Stream2Image(image, other.data(), 100, RASTREL_TYPE_BMP), 0);
    for (const int type : {int{RASTREL_TYPE_TIFF}, int{RASTREL_TYPE_GIF}, 99, -2})
        EXPECT_EQ(Rastrel_Stream2Image(image, bmp.data(), size, type), 0) << type;
    EXPECT_EQ(Rastrel_Stream2Image(image, bmp.data(), 0, -1), 0);
    EXPECT_EQ(Rastrel_Stream2Image(image, bmp.data(), -5, -1), 0);
    EXPECT_EQ(Rastrel_Stream2Image(image, nullptr, size, -1), 0);
    EXPECT_EQ(image.Fingerprint(), before);
    EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_BMP);
}

}  // namespace
}  // namespace rastrel_test
