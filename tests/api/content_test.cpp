// Files that read by what they contain: names that lie, and formats that have no extension here.

#include <cstdlib>
#include <filesystem>

#include "support/images.h"

namespace rastrel_test {
namespace {

namespace fs = std::filesystem;

void SetVariable(const char* name, const std::string& value) {
#if defined(_WIN32)
    _putenv_s(name, value.c_str());
#else
    setenv(name, value.c_str(), 1);
#endif
}

/// Has the library make its temporary files in a folder, which must be empty in the end.
class OwnTemporaryFolder {
  public:
    OwnTemporaryFolder() : old_(fs::temp_directory_path().string()) {
        SetVariable(kVariable, fs::path(folder_.Path("")).parent_path().string());
    }
    OwnTemporaryFolder(const OwnTemporaryFolder&) = delete;
    OwnTemporaryFolder& operator=(const OwnTemporaryFolder&) = delete;
    ~OwnTemporaryFolder() {
        EXPECT_EQ(folder_.Names(), std::vector<std::string>());
        SetVariable(kVariable, old_);
    }

  private:
#if defined(_WIN32)
    static constexpr const char* kVariable = "TMP";
#else
    static constexpr const char* kVariable = "TMPDIR";
#endif
    std::string old_;
    TestFolder folder_;
};

struct Other {
    const char* name;
    Bytes file;
    int depth;
    std::vector<Rgb> colors;  ///< the upper-left pixels of the top row
};

/// Two pixels side by side: orange and blue, or the greys 9 and 200.
std::vector<Other> OtherFiles() {
    const Rgb orange = {250, 128, 3};
    const Rgb blue = {10, 20, 240};
    const auto targa = [](int kind, int bits, const Bytes& pixels) {
        // From the top down; 8 bits of alpha in pixels of 32.
        return FieldWriter()
            .U8({0, 0, kind, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 1, 0, bits, bits == 32 ? 40 : 32})
            .Raw(pixels)
            .Done();
    };
    const auto photoshop = [](int channels, const Bytes& planes) {
        return FieldWriter()
            .Text("8BPS")
            .U8({0, 1, 0, 0, 0, 0, 0, 0, 0, channels, 0, 0, 0, 1, 0, 0, 0, 2, 0, 8, 0, 3})
            .U8({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0})
            .Raw(planes)
            .Done();
    };
    const Bytes bgr = {3, 128, 250, 240, 20, 10};
    return {
        {"ppm",
         FieldWriter().Text("P6\n2 1\n255\n").U8({250, 128, 3, 10, 20, 240}).Done(),
         24,
         {orange, blue}},
        {"pgm",
         FieldWriter().Text("P5\n# grey\n2 1\n255\n").U8({9, 200}).Done(),
         8,
         {{9, 9, 9}, {200, 200, 200}}},
        {"tga", targa(2, 24, bgr), 24, {orange, blue}},
        {"tga with alpha", targa(2, 32, {3, 128, 250, 255, 240, 20, 10, 7}), 32, {orange, blue}},
        {"tga in packets",
         targa(10, 24, {0x80, 3, 128, 250, 0x00, 240, 20, 10}),
         24,
         {orange, blue}},
        {"grey tga", targa(3, 8, {9, 200}), 8, {{9, 9, 9}, {200, 200, 200}}},
        {"psd", photoshop(3, {250, 10, 128, 20, 3, 240}), 24, {orange, blue}},
        {"psd with alpha", photoshop(4, {250, 10, 128, 20, 3, 240, 255, 255}), 32, {orange, blue}},
    };
}

TEST(ReadByContent, FormatsWithoutAClass) {
    const TestFolder folder;
    const OwnTemporaryFolder temporary;
    for (const Other& other : OtherFiles()) {
        SCOPED_TRACE(other.name);
        for (const char* name : {"sheet.xyz", "sheet", "sheet.tif", "sheet.bil"}) {
            const std::string path = folder.Write(name, other.file);
            const TestImage image;
            ASSERT_EQ(Rastrel_Read(image, path.c_str(), -1), 1) << name;
            EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_BMP);
            EXPECT_EQ(image.Depth(), other.depth);
            ASSERT_EQ(image.Width(), 2);
            for (int x = 0; x < 2; ++x)
                EXPECT_EQ(image.ColorAt(x, 0), other.colors[static_cast<std::size_t>(x)]);
            int width = 0;
            int height = 0;
            int bits = 0;
            EXPECT_EQ(Rastrel_ReadInfo(path.c_str(), &width, &height, &bits), 1);
            EXPECT_EQ((Bytes{2, 1, static_cast<std::uint8_t>(other.depth)}),
                      (Bytes{static_cast<std::uint8_t>(width), static_cast<std::uint8_t>(height),
                             static_cast<std::uint8_t>(bits)}));
        }
    }
}

TEST(ReadByContent, CutFilesFailOrKeepTheirSize) {
    const TestFolder folder;
    const OwnTemporaryFolder temporary;
    for (const Other& other : OtherFiles()) {
        for (std::size_t length = 0; length < other.file.size(); ++length) {
            const auto end = other.file.begin() + static_cast<std::ptrdiff_t>(length);
            const std::string path = folder.Write("cut", Bytes(other.file.begin(), end));
            const TestImage image;
            const bool read = Rastrel_Read(image, path.c_str(), -1) == 1;
            EXPECT_EQ(image.Width(), read ? 2 : 0) << other.name << " of " << length << " bytes";
        }
    }
}

TEST(ReadByContent, NoWrongColours) {
    const TestFolder folder;
    for (const char* file : {"P6 1 1 65535 abcdef", "P6 1 1 #255\n 15 abc", "P5 1 1 1 a"}) {
        const std::string path = folder.Write("a.ppm", Text(file));
        EXPECT_EQ(Rastrel_Read(TestImage(), path.c_str(), -1), 0) << file;
    }
}

TEST(ReadByContent, SizesThatLie) {
    const TestFolder folder;
    for (const char* head : {"P6 60000 60000 255\n", "P5 2147483647 1 255\n", "P5 0 5 255\n",
                             "P6 30000 30000 65535\n", "P6 99999999999 1 255\n"}) {
        const std::string path = folder.Write("big.ppm", Text(head));
        EXPECT_EQ(Rastrel_Read(TestImage(), path.c_str(), -1), 0) << head;
    }
}

TEST(ReadByContent, ExtensionsThatLie) {
    const TestFolder folder;
    const OwnTemporaryFolder temporary;
    for (const int bits : {1, 4, 8, 24}) {
        const TestImage image(47, 33, bits);
        FillWithPattern(image);
        for (const int type : {RASTREL_TYPE_BMP, RASTREL_TYPE_QVI, RASTREL_TYPE_TIFF}) {
            // Shallow ones come back as 8 bits with a short palette, which bitmap files fill up.
            if (type == RASTREL_TYPE_TIFF && bits < 8) continue;
            const std::string path = folder.Path(type == RASTREL_TYPE_TIFF ? "a.qvi" : "a.tif");
            const TestImage saved;
            Rastrel_Copy(saved, image);
            ASSERT_EQ(Rastrel_Save(saved, path.c_str(), type), 1);
            TestImage expected;
            ASSERT_EQ(Rastrel_Read(expected, path.c_str(), type), 1);
            const TestImage read;
            ASSERT_EQ(Rastrel_Read(read, path.c_str(), -1), 1) << bits << " bits, type " << type;
            EXPECT_EQ(Rastrel_GetImageType(read), RASTREL_TYPE_BMP);
            EXPECT_EQ(read.Fingerprint(), expected.Fingerprint()) << bits << " bits, type " << type;

            const TestImage part;
            ASSERT_EQ(Rastrel_ReadPartialEx(part, path.c_str(), -1, 5, 6, 20, 21, 2), 1);
            ASSERT_EQ(Rastrel_ReadPartialEx(expected, path.c_str(), type, 5, 6, 20, 21, 2), 1);
            EXPECT_EQ(part.Fingerprint(), expected.Fingerprint());
        }
    }
}

TEST(ReadByContent, AFailureLeavesTheImageAlone) {
    const TestFolder folder;
    const OwnTemporaryFolder temporary;
    const TestImage image(4, 3, 8);
    ASSERT_EQ(Rastrel_Save(image, folder.Path("a.bmp").c_str(), RASTREL_TYPE_QVI), 1);
    const TestImage other(5, 5, 24);
    FillWithPattern(other);
    const std::string before = other.Fingerprint();
    // The bitmap class reads what it can of the library's own files, but this part is outside.
    EXPECT_EQ(Rastrel_ReadPartial(other, folder.Path("a.bmp").c_str(), -1, 9, 9, 2, 2), 0);
    EXPECT_EQ(other.Fingerprint(), before);
    EXPECT_EQ(Rastrel_Read(other, folder.Write("b.bmp", Text("P7 what is this")).c_str(), -1), 0);
    EXPECT_EQ(other.Fingerprint(), before);
}

TEST(ReadByContent, NothingIsSavedUnderTheTemporaryName) {
    const TestFolder folder;
    const OwnTemporaryFolder temporary;
    const std::string path = folder.Write("a.ppm", Text("P5 1 1 255\nx"));
    const TestImage image;
    ASSERT_EQ(Rastrel_Read(image, path.c_str(), -1), 1);
    EXPECT_EQ(Rastrel_Save(image, "", RASTREL_TYPE_BMP), 0);
    EXPECT_EQ(FileBytes(path), Text("P5 1 1 255\nx"));
}

}  // namespace
}  // namespace rastrel_test
