// Raw files: pixels of BIL, BIP and BSQ with their header and palette files.

#include <filesystem>
#include <ostream>

#include "support/images.h"
#if !defined(_WIN32)
#include "support/limits.h"
#endif

namespace rastrel_test {
namespace {

namespace fs = std::filesystem;

const std::vector<std::string> kLayouts = {"bil", "bip", "bsq"};

std::string HeaderText(int width, int height, int bands, const std::string& layout = "BIL") {
    return "BYTEORDER I\nLAYOUT " + layout + "\nNROWS " + std::to_string(height) + "\nNCOLS " +
           std::to_string(width) + "\nNBANDS " + std::to_string(bands) + "\nNBITS 8\n";
}

int Save(const TestImage& image, const std::string& path) {
    return Rastrel_Save(image, path.c_str(), -1);
}

int Read(const TestImage& image, const std::string& path) {
    return Rastrel_Read(image, path.c_str(), -1);
}

/// What Rastrel_ReadInfo tells of a file.
struct Info {
    int result = 0;
    int width = -7;
    int height = -7;
    int bits = -7;

    friend bool operator==(const Info&, const Info&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Info& i) {
        return out << i.result << ": " << i.width << " x " << i.height << " x " << i.bits;
    }
};

constexpr Info kNoInfo;

Info ReadInfo(const std::string& path) {
    Info info;
    info.result = Rastrel_ReadInfo(path.c_str(), &info.width, &info.height, &info.bits);
    return info;
}

/// Two rows of three pixels; the digits tell row and column, the hundreds the band.
void DrawNumberedPixels(const TestImage& image) {
    for (int row = 0; row < 2; ++row) {
        for (int column = 0; column < 3; ++column) {
            const int place = 10 * (row + 1) + column + 1;
            ASSERT_EQ(Rastrel_SetRGB(image, column, 1 - row, place, 100 + place, 200 + place), 1);
        }
    }
}

const Bytes kNumberedBil = {11, 12, 13, 111, 112, 113, 211, 212, 213,
                            21, 22, 23, 121, 122, 123, 221, 222, 223};
const Bytes kNumberedBip = {11, 111, 211, 12, 112, 212, 13, 113, 213,
                            21, 121, 221, 22, 122, 222, 23, 123, 223};
const Bytes kNumberedBsq = {11,  12,  13,  21,  22,  23,  111, 112, 113,
                            121, 122, 123, 211, 212, 213, 221, 222, 223};

TEST(Raw, TrueColourFilesToTheByte) {
    struct Case {
        const char* name;
        const char* layout;
        Bytes pixels;
    };
    const TestFolder folder;
    for (const Case& c : {Case{"a.bil", "BIL", kNumberedBil},
                          {"b.bip", "BIP", kNumberedBip},
                          {"c.bsq", "BSQ", kNumberedBsq}}) {
        const TestImage image(3, 2, 24);
        DrawNumberedPixels(image);
        const std::string before = image.Fingerprint();
        ASSERT_EQ(Save(image, folder.Path(c.name)), 1);
        EXPECT_EQ(FileBytes(folder.Path(c.name)), c.pixels) << c.layout;
        EXPECT_EQ(FileText(folder.Path(std::string(1, c.name[0]) + ".hdr")),
                  HeaderText(3, 2, 3, c.layout));
        EXPECT_EQ(image.Description(), std::string(c.layout) + " Format, 24 bit.\nNo compression.");
        EXPECT_EQ(image.Fingerprint(), before) << "saving changes no pixel";

        const TestImage back;
        ASSERT_EQ(Read(back, folder.Path(c.name)), 1);
        EXPECT_EQ(back.Fingerprint(), before) << c.layout;
        EXPECT_EQ(ReadInfo(folder.Path(c.name)), (Info{1, 3, 2, 24}));
        EXPECT_EQ(Rastrel_SetRGB(back, 0, 0, 1, 2, 3), 1) << "true colour, not palettised";
        EXPECT_EQ(back.ColorAt(0, 0), (Rgb{1, 2, 3}));
    }
    EXPECT_EQ(folder.Names(),
              (std::vector<std::string>{"a.bil", "a.hdr", "b.bip", "b.hdr", "c.bsq", "c.hdr"}))
        << "no palette files";
}

TEST(Raw, PalettisedFilesToTheByte) {
    const TestFolder folder;
    const TestImage image(3, 2, 8);
    Draw(image, {"12.", "345"});
    SetPalette(image, {{1, 2, 3}, {40, 50, 60}, {255, 254, 253}});
    for (const std::string& layout : kLayouts) {
        ASSERT_EQ(Save(image, folder.Path("a." + layout)), 1);
        EXPECT_EQ(FileBytes(folder.Path("a." + layout)), (Bytes{1, 2, 0, 3, 4, 5})) << layout;
        EXPECT_EQ(FileText(folder.Path("a.clr")), "0  1 2 3\n1  40 50 60\n2  255 254 253\n");
    }
    EXPECT_EQ(FileText(folder.Path("a.hdr")), HeaderText(3, 2, 1, "BSQ"));

    const TestImage back;
    ASSERT_EQ(Read(back, folder.Path("a.bil")), 1);
    EXPECT_EQ(back.Indices(), (Picture{"12.", "345"}));
    const std::vector<Rgb> palette = back.Palette();
    ASSERT_EQ(palette.size(), 256u);
    EXPECT_EQ(palette[1], (Rgb{40, 50, 60}));
    EXPECT_EQ(palette[3], (Rgb{3, 3, 3})) << "no line tells of it";
    EXPECT_EQ(Rastrel_SetRGB(back, 0, 0, 250, 250, 250), 1);
    EXPECT_EQ(Rastrel_GetIndex(back, 0, 0), 250) << "the nearest entry: it is palettised";
}

TEST(Raw, EveryDepthThatCanBeWrittenComesBack) {
    const TestFolder folder;
    for (const std::string& layout : kLayouts) {
        for (const int bits : {1, 4, 8, 24}) {
            const TestImage image(47, 33, bits);
            FillWithPattern(image);
            if (bits <= 8) Rastrel_SetGrayPalette(image);
            const std::string path = folder.Path("a." + layout);
            ASSERT_EQ(Save(image, path), 1);
            EXPECT_EQ(FileBytes(path).size(), bits == 24 ? 47u * 33 * 3 : 47u * 33);
            const TestImage back;
            ASSERT_EQ(Read(back, path), 1);
            // Indices of fewer bits are widened as they are.
            if (bits < 8) Rastrel_Conv1To8(image);
            EXPECT_EQ(back.Fingerprint(), image.Fingerprint()) << layout << ' ' << bits;
        }
    }
}

TEST(Raw, HeadersWithFourKeywords) {
    struct Case {
        const char* what;
        std::string text;
        Info want;
    };
    const TestFolder folder;
    for (const Case& c : std::initializer_list<Case>{
             {"three bands", HeaderText(5, 4, 3), {1, 5, 4, 24}},
             {"any order", "NBITS 8\nNBANDS 1\nNCOLS 5\nNROWS 4\n", {1, 5, 4, 8}},
             {"tabs, returns and blanks",
              "\tNCOLS\t5\r\n NROWS  +4\r\nNBANDS 1 x\r\nNBITS 8",
              {1, 5, 4, 8}},
             {"other lines",
              "nrows 9\nSKIPBYTES 7\nLAYOUT BIP\n\n" + HeaderText(5, 4, 1),
              {1, 5, 4, 8}},
             {"georeference",
              HeaderText(5, 4, 1) + "ULXMAP 1\nULYMAP 2\nXDIM 3\nYDIM 3\n",
              {1, 5, 4, 8}},
             {"later lines count", HeaderText(9, 9, 9) + HeaderText(5, 4, 1), {1, 5, 4, 8}},
             {"later lines count even without a number", HeaderText(5, 4, 1) + "NBITS\n", kNoInfo},
             {"more bits than can be read",
              "NCOLS 5\nNROWS 4\nNBANDS 4\nNBITS 16\n",
              {1, 5, 4, 64}},
             {"no NBITS", "NCOLS 5\nNROWS 4\nNBANDS 1\n", kNoInfo},
             {"no NBANDS", "NCOLS 5\nNROWS 4\nNBITS 8\n", kNoInfo},
             {"no NCOLS", "NBITS 8\nNROWS 4\nNBANDS 1\n", kNoInfo},
             {"no NROWS", "NCOLS 5\nNBITS 8\nNBANDS 1\n", kNoInfo},
             {"lower case", "ncols 5\nNROWS 4\nNBANDS 1\nNBITS 8\n", kNoInfo},
             {"glued", "NCOLS=5\nNROWS 4\nNBANDS 1\nNBITS 8\n", kNoInfo},
             {"words for numbers", "NCOLS five\nNROWS 4\nNBANDS 1\nNBITS 8\n", kNoInfo},
             {"no image", "NCOLS 0\nNROWS 4\nNBANDS 1\nNBITS 8\n", kNoInfo},
             {"negative", "NCOLS 5\nNROWS -4\nNBANDS 1\nNBITS 8\n", kNoInfo},
             {"two negatives", "NCOLS 5\nNROWS 4\nNBANDS -1\nNBITS -8\n", kNoInfo},
             {"beyond int", "NCOLS 5\nNROWS 4\nNBANDS 65536\nNBITS 65536\n", kNoInfo},
             {"far beyond int", "NCOLS 4294967301\nNROWS 4\nNBANDS 1\nNBITS 8\n", kNoInfo},
             {"nothing", "", kNoInfo},
         }) {
        folder.Write("a.hdr", Text(c.text));
        for (const std::string& layout : kLayouts)
            EXPECT_EQ(ReadInfo(folder.Path("a." + layout)), c.want) << c.what;
    }
    EXPECT_EQ(ReadInfo(folder.Path("missing.bil")), kNoInfo);
}

TEST(Raw, TheNameTellsTheLayoutNotTheHeader) {
    const TestFolder folder;
    folder.Write("a.hdr", Text(HeaderText(3, 2, 3, "BSQ")));
    const TestImage numbered(3, 2, 24);
    DrawNumberedPixels(numbered);
    for (const auto& [name, pixels] : {std::pair{"a.BIL", kNumberedBil}, {"a.bip", kNumberedBip}}) {
        const TestImage image;
        ASSERT_EQ(Read(image, folder.Write(name, pixels)), 1);
        EXPECT_EQ(image.Fingerprint(), numbered.Fingerprint()) << name;
    }
    folder.Write("b.hdr", Text("NCOLS 3\nNROWS 2\nNBANDS 1\nNBITS 24\n"));
    const TestImage image;
    ASSERT_EQ(Read(image, folder.Write("b.bip", kNumberedBip)), 1) << "bits times bands are 24";
    EXPECT_EQ(image.Fingerprint(), numbered.Fingerprint());
}

TEST(Raw, PaletteFilesLineByLine) {
    const TestFolder folder;
    folder.Write("a.hdr", Text(HeaderText(1, 1, 1)));
    folder.Write("a.bil", {0});
    folder.Write("a.clr", Text("# a comment\n"
                               "1 10 20 30\n"
                               "\t2  +11\t21 31 alpha\r\n"
                               "300 1 2 3\n"
                               "-1 1 2 3\n"
                               "3 1 2\n"
                               "4 1 x 3\n"
                               "5 300 -1 256\n"
                               "6 4294967296 1 1\n" +
                               std::string(200, ' ') + "7 1 1 1\n" + std::string(199, '-') +
                               "\n8 9 9 9\n255 5 6 7"));
    const TestImage image;
    ASSERT_EQ(Read(image, folder.Path("a.bil")), 1);
    const std::vector<Rgb> palette = image.Palette();
    ASSERT_EQ(palette.size(), 256u);
    for (int i = 0; i < 256; ++i) {
        Rgb want = {i, i, i};
        if (i == 1) want = {10, 20, 30};
        if (i == 2) want = {11, 21, 31};
        if (i == 5) want = {300 - 256, 255, 0};  // stored as bytes
        if (i == 8) want = {9, 9, 9};
        if (i == 255) want = {5, 6, 7};
        EXPECT_EQ(palette[static_cast<std::size_t>(i)], want) << i;
    }
}

TEST(Raw, NamesOfTheThreeFiles) {
    const TestFolder folder;
    const TestImage image(3, 2, 8);
    Rastrel_SetGrayPalette(image);
    // The pixel file takes the extension of its layout.
    ASSERT_EQ(Rastrel_Save(image, folder.Path("a.dat").c_str(), RASTREL_TYPE_BSQ), 1);
    ASSERT_EQ(Rastrel_Save(image, folder.Path("b.x.bil").c_str(), RASTREL_TYPE_BIP), 1);
    ASSERT_EQ(Rastrel_Save(image, folder.Path("c").c_str(), RASTREL_TYPE_BIL), 1);
    EXPECT_EQ(folder.Names(),
              (std::vector<std::string>{"a.bsq", "a.clr", "a.hdr", "b.x.bip", "b.x.clr", "b.x.hdr",
                                        "c.bil", "c.clr", "c.hdr"}));
    Rastrel_SetIndex(image, 0, 0, 9);
    EXPECT_EQ(Rastrel_Save(image, "", RASTREL_TYPE_BIL), 1) << "the file before";
    EXPECT_EQ(FileBytes(folder.Path("c.bil")), (Bytes{0, 0, 0, 9, 0, 0}));
    EXPECT_EQ(Rastrel_Save(TestImage(2, 2, 8), "", RASTREL_TYPE_BIL), 0);

    // Any name of a pixel file can be read when the type is given.
    fs::rename(folder.Path("a.bsq"), folder.Path("a.dat"));
    EXPECT_EQ(Rastrel_Read(TestImage(), folder.Path("a.dat").c_str(), RASTREL_TYPE_BSQ), 1);
    // Header and palette are found in upper case, too.
    fs::rename(folder.Path("c.hdr"), folder.Path("c.HDR"));
    folder.Write("c.clr", Text("9 1 2 3\n"));
    fs::rename(folder.Path("c.clr"), folder.Path("c.CLR"));
    const TestImage back;
    ASSERT_EQ(Read(back, folder.Path("c.bil")), 1);
    EXPECT_EQ(back.ColorAt(0, 0), (Rgb{1, 2, 3}));
}

TEST(Raw, APaletteFileLeftBehindColoursNoOtherImage) {
    const TestFolder folder;
    for (const char* left : {"a.clr", "a.CLR"}) {
        folder.Write(left, Text("1 10 20 30\n"));
        const TestImage image(2, 2, 8);
        Rastrel_SetIndex(image, 0, 0, 1);
        ASSERT_EQ(Save(image, folder.Path("a.bil")), 1);
        EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.bil", "a.hdr"}));
        const TestImage back;
        ASSERT_EQ(Read(back, folder.Path("a.bil")), 1);
        EXPECT_EQ(back.ColorAt(0, 0), (Rgb{1, 1, 1}));
    }
}

TEST(Raw, WhatCannotBeReadKeepsTheImage) {
    const TestFolder folder;
    const Bytes pixels(1000, 5);
    struct Case {
        const char* what;
        std::string header;
        bool has_pixels = true;
    };
    const TestImage image;
    folder.Write("good.hdr", Text(HeaderText(10, 10, 1)));
    ASSERT_EQ(Read(image, folder.Write("good.bil", pixels)), 1);
    const std::string before = image.Fingerprint();
    for (const Case& c : std::initializer_list<Case>{
             {"16 bits", "NCOLS 10\nNROWS 10\nNBANDS 1\nNBITS 16\n"},
             {"1 bit", "NCOLS 10\nNROWS 10\nNBANDS 1\nNBITS 1\n"},
             {"2 bands", HeaderText(10, 10, 2)},
             {"4 bands", HeaderText(10, 10, 4)},
             {"much more than the file holds", HeaderText(100000, 100000, 3)},
             {"more than any block holds", HeaderText(2000000000, 2000000000, 3)},
             {"a keyword missing", "NCOLS 10\nNROWS 10\nNBANDS 1\n"},
             {"no pixel file", HeaderText(10, 10, 1), false},
         }) {
        folder.Write("a.hdr", Text(c.header));
        fs::remove(folder.Path("a.bil"));
        if (c.has_pixels) folder.Write("a.bil", pixels);
        EXPECT_EQ(Read(image, folder.Path("a.bil")), 0) << c.what;
        EXPECT_EQ(Rastrel_ReadPartial(image, folder.Path("a.bil").c_str(), -1, 0, 0, 1, 1), 0)
            << c.what;
        EXPECT_EQ(image.Fingerprint(), before) << c.what;
    }
    fs::remove(folder.Path("a.hdr"));
    folder.Write("a.bil", pixels);
    EXPECT_EQ(Read(image, folder.Path("a.bil")), 0) << "no header";
    EXPECT_EQ(image.Fingerprint(), before);
}

TEST(Raw, FilesCutAtAnyByteLoadWithWhatTheyHold) {
    const TestFolder folder;
    for (const std::string& layout : kLayouts) {
        const TestImage image(5, 4, 24);
        FillWithPattern(image);
        const std::string path = folder.Path("a." + layout);
        ASSERT_EQ(Save(image, path), 1);
        const Bytes pixels = FileBytes(path);
        const Bytes header = FileBytes(folder.Path("a.hdr"));
        for (std::size_t length = 0; length <= pixels.size(); ++length) {
            Bytes cut = pixels;
            cut.resize(length);
            const TestImage from_cut;
            ASSERT_EQ(Read(from_cut, folder.Write("a." + layout, cut)), 1) << length;
            cut.resize(pixels.size());
            const TestImage from_zeros;
            ASSERT_EQ(Read(from_zeros, folder.Write("a." + layout, cut)), 1) << length;
            ASSERT_EQ(from_cut.Fingerprint(), from_zeros.Fingerprint()) << layout << ' ' << length;
        }
        for (std::size_t length = 0; length <= header.size(); ++length) {
            folder.Write("a.hdr", Bytes(header.begin(),
                                        header.begin() + static_cast<std::ptrdiff_t>(length)));
            const TestImage from_cut;
            // The line's end does not count.
            ASSERT_EQ(Read(from_cut, path), length + 1 >= header.size() ? 1 : 0) << length;
        }
    }
}

TEST(RawPart, EqualsReadingAndExtracting) {
    const TestFolder folder;
    struct Rectangle {
        int x, y, width, height;
    };
    // The wide ones have rows that are read in pieces.
    for (const auto& [width, height] : {std::pair{47, 33}, {70001, 3}, {200003, 2}}) {
        for (const std::string& layout : kLayouts) {
            for (const int bits : {8, 24}) {
                const TestImage image(width, height, bits);
                FillWithPattern(image);
                if (bits == 8) SetPalette(image, {{1, 2, 3}, {4, 5, 6}});
                const std::string path = folder.Path("a." + layout);
                ASSERT_EQ(Save(image, path), 1);
                for (const Rectangle& r : {Rectangle{0, 0, width, height},
                                           {0, 1, width, height - 1},
                                           {5, 1, 13, 11},
                                           {-4, -2, 20, 20},
                                           {3, 0, width, 2},
                                           {width - 1, height - 1, 1, 1}}) {
                    for (const int reduction : {1, 2, 7, 70000}) {
                        const TestImage part;
                        ASSERT_EQ(Rastrel_ReadPartialEx(part, path.c_str(), -1, r.x, r.y, r.width,
                                                        r.height, reduction),
                                  1);
                        // The same from a class that reads the whole.
                        const TestImage expected;
                        ASSERT_EQ(Rastrel_Copy(expected, image), 1);
                        ASSERT_EQ(Rastrel_Save(expected, folder.Path("e.bmp").c_str(), -1), 1);
                        ASSERT_EQ(Rastrel_ReadPartialEx(expected, folder.Path("e.bmp").c_str(), -1,
                                                        r.x, r.y, r.width, r.height, reduction),
                                  1);
                        ASSERT_EQ(part.StoredBytes(), expected.StoredBytes())
                            << layout << ' ' << bits << ' ' << width << ' ' << r.x << ' '
                            << reduction;
                    }
                }
            }
        }
    }
}

TEST(RawPart, KeepsThePaletteAndFailsLikeAnyOther) {
    const TestFolder folder;
    const TestImage image(9, 8, 8);
    FillWithPattern(image);
    SetPalette(image, {{1, 2, 3}, {4, 5, 6}});
    const std::string path = folder.Path("a.bip");
    ASSERT_EQ(Save(image, path), 1);
    const TestImage whole;
    ASSERT_EQ(Read(whole, path), 1);
    ASSERT_EQ(Rastrel_ExtractPortion(whole, 2, 3, 4, 4), 1);
    const TestImage part;
    ASSERT_EQ(Rastrel_ReadPartial(part, path.c_str(), -1, 2, 3, 4, 4), 1);
    EXPECT_EQ(part.Fingerprint(), whole.Fingerprint());
    EXPECT_EQ(Rastrel_GetImageType(part), RASTREL_TYPE_BIP);
    const std::string before = part.Fingerprint();
    EXPECT_EQ(Rastrel_ReadPartial(part, path.c_str(), -1, 9, 0, 4, 4), 0);
    EXPECT_EQ(Rastrel_ReadPartial(part, path.c_str(), -1, 0, 0, 0, 4), 0);
    EXPECT_EQ(Rastrel_ReadPartialEx(part, path.c_str(), -1, 0, 0, 4, 4, 0), 0);
    EXPECT_EQ(part.Fingerprint(), before);
    EXPECT_EQ(Rastrel_ReadPartial(part, "", RASTREL_TYPE_BIP, 2, 3, 4, 4), 1) << "the file before";
    EXPECT_EQ(part.Fingerprint(), before);
}

TEST(RawPart, OfFilesBeyondAnyBlock) {
    // Three gigabytes, of which the file system keeps one row.
    constexpr std::uintmax_t kWidth = 100000;
    constexpr std::uintmax_t kHeight = 30000;
    const TestFolder folder;
    const std::string path = folder.Write("a.bsq", Bytes(3));
    folder.Write("a.hdr", Text(HeaderText(kWidth, kHeight, 1)));
    std::error_code error;
    fs::resize_file(path, kWidth * (kHeight - 1), error);
    ASSERT_FALSE(error) << error.message();
    {
        std::FILE* file = std::fopen(path.c_str(), "ab");
        ASSERT_NE(file, nullptr);
        const Bytes row(kWidth, 77);
        EXPECT_EQ(std::fwrite(row.data(), 1, row.size(), file), row.size());
        std::fclose(file);
    }
    const TestImage image;
    EXPECT_EQ(Read(image, path), 0) << "no block is as large";
    ASSERT_EQ(Rastrel_ReadPartial(image, path.c_str(), -1, 5, kHeight - 2, 4, 2), 1);
    EXPECT_EQ(image.StoredBytes(), (Bytes{77, 77, 77, 77, 0, 0, 0, 0}));
}

TEST(Raw, WhatCannotBeWrittenLeavesTheOldFiles) {
    const TestFolder folder;
    const TestImage old(3, 2, 8);
    SetPalette(old, {{1, 2, 3}});
    BmpRecipe sixteen;
    sixteen.bits = 16;
    sixteen.pixels = Bytes(16);
    BmpRecipe coded;
    coded.bits = 8;
    coded.compression = 1;
    coded.table = Bytes(1024);
    coded.pixels = {3, 1, 0, 0, 3, 2, 0, 1};
    coded.image_size = 8;
    for (const std::string& layout : kLayouts) {
        const std::string path = folder.Path("a." + layout);
        ASSERT_EQ(Save(old, path), 1);
        for (const BmpRecipe& recipe : {sixteen, coded}) {
            const TestImage image;
            ASSERT_EQ(Read(image, folder.Write("s.bmp", recipe.File())), 1);
            EXPECT_EQ(Save(image, path), 0) << layout << ' ' << recipe.bits;
            EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_BMP);
        }
        EXPECT_EQ(Save(TestImage(3, 2, 32), path), 0) << layout;
        EXPECT_EQ(FileBytes(path), Bytes(6));
        EXPECT_EQ(FileText(folder.Path("a.clr")), "0  1 2 3\n");
    }
    EXPECT_EQ(Save(old, folder.Path("no/folder/a.bil")), 0);
    fs::create_directory(folder.Path("b.hdr"));
    EXPECT_EQ(Save(old, folder.Path("b.bil")), 0) << "the header's name is taken";
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.bil", "a.bip", "a.bsq", "a.clr", "a.hdr",
                                                        "b.hdr", "s.bmp"}));
}

#if !defined(_WIN32)

TEST(Raw, AFullDiskLeavesTheOldFiles) {
    const TestFolder folder;
    const TestImage old(3, 2, 8);
    SetPalette(old, {{1, 2, 3}});
    const std::string path = folder.Path("a.bil");
    ASSERT_EQ(Save(old, path), 1);
    const TestImage image(100, 100, 8);
    Rastrel_SetGrayPalette(image);
    // Too little for the header, for the palette of 256 lines, and for the pixels.
    for (const rlim_t room : {rlim_t{0}, rlim_t{60}, rlim_t{500}, rlim_t{9999}}) {
        const FullDisk disk(room);
        EXPECT_EQ(Save(image, path), 0) << room;
    }
    EXPECT_EQ(FileBytes(path), Bytes(6));
    EXPECT_EQ(FileText(folder.Path("a.hdr")), HeaderText(3, 2, 1));
    EXPECT_EQ(FileText(folder.Path("a.clr")), "0  1 2 3\n");
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.bil", "a.clr", "a.hdr"}));
}

#endif

TEST(Raw, TheGeoreferenceInTheHeaderDoesNotDisturb) {
    const TestFolder folder;
    const TestImage image(9, 8, 24);
    FillWithPattern(image);
    const std::string path = folder.Path("a.bsq");
    ASSERT_EQ(Save(image, path), 1);
    ASSERT_EQ(Rastrel_WriteGeoref(path.c_str(), 600000, 5100000, 2), 1);
    const TestImage back;
    ASSERT_EQ(Read(back, path), 1);
    EXPECT_EQ(back.Fingerprint(), image.Fingerprint());
    EXPECT_EQ(FileText(folder.Path("a.hdr")).substr(0, HeaderText(9, 8, 3).size()),
              HeaderText(9, 8, 3, "BSQ"));
}

}  // namespace
}  // namespace rastrel_test
