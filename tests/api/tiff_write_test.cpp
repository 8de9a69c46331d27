// Writing TIFF files: the tags, the compressions, what cannot be written.

#include "support/images.h"
#include "support/tiff_recipe.h"

namespace rastrel_test {
namespace {

using Values = std::vector<std::uint32_t>;

Bytes Saved(const TestImage& image, const TestFolder& folder) {
    const std::string path = folder.Path("saved.tif");
    EXPECT_EQ(Rastrel_Save(image, path.c_str(), -1), 1);
    return FileBytes(path);
}

TEST(TiffWrite, FormsHaveTheirTags) {
    struct Case {
        const char* what;
        int depth;
        std::vector<Rgb> palette;
        Values bits;
        std::uint32_t photometric;
        std::size_t map_entries;
    };
    std::vector<Rgb> grey(256);
    for (int i = 0; i < 256; ++i)
        grey[static_cast<std::size_t>(i)] = {i, i, i};
    std::vector<Rgb> nearly_grey = grey;
    nearly_grey[200][1] = 199;
    const std::vector<Rgb> half_grey(grey.begin(), grey.begin() + 255);
    const Case cases[] = {
        {"full colour", 24, {}, {8, 8, 8}, 2, 0},
        {"grey", 8, grey, {8}, 1, 0},
        {"nearly grey", 8, nearly_grey, {8}, 3, 768},
        {"one entry too few", 8, half_grey, {8}, 3, 768},
        {"without palette", 8, {}, {8}, 3, 768},
        {"4 bits", 4, {{1, 2, 3}}, {4}, 3, 48},
        {"black first", 1, {{0, 0, 0}, {9, 9, 9}}, {1}, 1, 0},
        {"white first", 1, {{255, 255, 255}, {0, 0, 0}}, {1}, 0, 0},
        {"equally bright to five bits", 1, {{31, 0, 0}, {30, 0, 0}}, {1}, 1, 0},
        {"without palette", 1, {}, {1}, 1, 0},
    };
    const TestFolder folder;
    for (const Case& c : cases) {
        const TestImage image(5, 3, c.depth);
        if (!c.palette.empty()) SetPalette(image, c.palette);
        const Bytes file = Saved(image, folder);
        EXPECT_EQ(TagOf(file, kBitsPerSample), c.bits) << c.what;
        EXPECT_EQ(TagOf(file, kSamplesPerPixel), Values{c.depth == 24 ? 3u : 1u}) << c.what;
        EXPECT_EQ(TagOf(file, kPhotometric), Values{c.photometric}) << c.what;
        EXPECT_EQ(TagOf(file, kColorMap).size(), c.map_entries) << c.what;
        for (const auto& [tag, value] : {std::pair{kImageWidth, 5u},
                                         {kImageLength, 3u},
                                         {kCompression, 1u},
                                         {kOrientation, 1u},
                                         {kRowsPerStrip, 3u},
                                         {kXResolution, 1200u},
                                         {kYResolution, 1200u},
                                         {kPlanarConfiguration, 1u},
                                         {kResolutionUnit, 2u}})
            EXPECT_EQ(TagOf(file, tag), Values{value}) << c.what << ' ' << tag;
        EXPECT_EQ(TagOf(file, kStripOffsets).size(), 1u) << c.what;
        EXPECT_EQ(TagOf(file, kImageDescription), Values{}) << c.what;
        EXPECT_EQ(TagOf(file, kT4Options), Values{}) << c.what;
    }
    const TestImage image(2, 2, 8);
    SetPalette(image, {{1, 128, 255}});
    const Values map = TagOf(Saved(image, folder), kColorMap);
    EXPECT_EQ((Values{map[0], map[256], map[512], map[1]}), (Values{257, 32896, 65535, 0}));
}

TEST(TiffWrite, EveryCompressionGivesThePixelsBack) {
    const TestFolder folder;
    for (const int depth : {1, 4, 8, 24}) {
        for (const int code : {1, 2, 3, 4, 5, 8, 32773, 32946}) {
            const TestImage image(47, 33, depth);
            FillWithPattern(image);
            if (depth == 1) SetPalette(image, {{0, 0, 0}, {255, 255, 255}});
            if (depth == 4 || depth == 8) Rastrel_SetGrayPalette(image);
            Bytes before(47 * 33 * 3);
            Rastrel_GetImageByte(image, before.data(), 24, 0, 0, 47, 33);
            Rastrel_SetQuality(image, code);
            const Bytes file = Saved(image, folder);
            const bool fax = code >= 2 && code <= 4;
            const std::uint32_t expected = fax && depth != 1 ? 1 : static_cast<std::uint32_t>(code);
            EXPECT_EQ(TagOf(file, kCompression), Values{expected}) << depth;
            EXPECT_EQ(TagOf(file, kT4Options), expected == 3 ? Values{5} : Values{}) << depth;
            ASSERT_EQ(Rastrel_Read(image, folder.Path("saved.tif").c_str(), -1), 1);
            Bytes after(before.size());
            Rastrel_GetImageByte(image, after.data(), 24, 0, 0, 47, 33);
            EXPECT_EQ(after, before) << depth << " bits, compression " << code;
        }
    }
}

TEST(TiffWrite, TheCompressionIsTheFirstThatFits) {
    struct Case {
        const char* what;
        int depth;
        int quality;
        std::uint32_t source;  ///< compression of the file that is read first; 0: none is
        std::uint32_t expected;
    };
    const Case cases[] = {
        {"the quality's", 24, 5, 32773, 5},
        {"the quality is none", 24, 75, 32773, 32773},
        {"a fax code for colours", 24, 4, 32773, 32773},
        {"the old JPEG", 24, 6, 8, 8},
        {"JPEG for colours", 24, 7, 1, 7},
        {"JPEG for a palette", 8, 7, 5, 5},
        {"nothing known", 24, 0, 0, 1},
        {"no such tag", 24, 70000 + 5, 0, 1},
        {"negative", 24, -5, 0, 1},
    };
    const TestFolder folder;
    for (const Case& c : cases) {
        const TestImage image(4, 4, c.depth);
        if (c.depth == 8) SetPalette(image, {{1, 2, 3}, {4, 5, 6}});
        if (c.source != 0) {
            Rastrel_SetQuality(image, static_cast<int>(c.source));
            ASSERT_EQ(TagOf(Saved(image, folder), kCompression), Values{c.source}) << c.what;
            Rastrel_Read(image, folder.Path("saved.tif").c_str(), -1);
        }
        const TestImage copy;
        ASSERT_EQ(Rastrel_Copy(copy, image), 1);
        Rastrel_SetQuality(copy, c.quality);
        EXPECT_EQ(TagOf(Saved(copy, folder), kCompression), Values{c.expected}) << c.what;
    }
}

TEST(TiffWrite, DeepImagesAreRefusedWithoutAFile) {
    LogFolder log;
    const TestImage image(4, 4, 32);
    EXPECT_EQ(Rastrel_Save(image, log.Folder().Path("deep.tif").c_str(), -1), 0);
    EXPECT_EQ(log.Folder().Names(), std::vector<std::string>{"RASTER.LOG"});
    EXPECT_EQ(log.NewText(), "\nFATAL ERROR:\n\nImage format not supported for output to tiff\n\n");
    EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_BMP);
    EXPECT_EQ(image.Depth(), 32) << "the image finds its way back";
}

TEST(TiffWrite, AnEmptyNameMeansTheImagesOwnFile) {
    const TestFolder folder;
    const TestImage image(2, 1, 8);
    Rastrel_SetGrayPalette(image);
    const Bytes old = Saved(image, folder);
    Rastrel_SetIndex(image, 0, 0, 7);
    EXPECT_EQ(Rastrel_Save(image, "", RASTREL_TYPE_TIFF), 1);
    EXPECT_NE(FileBytes(folder.Path("saved.tif")), old);
    EXPECT_EQ(Rastrel_Read(image, "", RASTREL_TYPE_TIFF), 1);
    EXPECT_EQ(image.Indices(), (Picture{"7."}));
}

}  // namespace
}  // namespace rastrel_test
