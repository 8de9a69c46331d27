// Georeferences: the names of companion files, world files, headers of raw and of AIMA images.

#include <cmath>
#include <filesystem>
#include <limits>
#include <ostream>

#include "support/images.h"
#if !defined(_WIN32)
#include "support/limits.h"
#endif

namespace rastrel_test {
namespace {

namespace fs = std::filesystem;

/// What a reading gives to a caller who had -7 in all three places.
struct Reading {
    int result = 0;
    double x = -7;
    double y = -7;
    double pixel_size = -7;

    friend bool operator==(const Reading&, const Reading&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Reading& r) {
        out.precision(17);
        return out << r.result << ": " << r.x << ", " << r.y << ", " << r.pixel_size;
    }
};

constexpr Reading kUntouched = {0, -7, -7, -7};
constexpr Reading kDefaults = {0, 0, 0, 1};

Reading Read(const std::string& name) {
    Reading reading;
    reading.result = Rastrel_ReadGeoref(name.c_str(), &reading.x, &reading.y, &reading.pixel_size);
    return reading;
}

std::string CompanionOf(const std::string& name) {
    std::array<char, 300> text;
    text.fill('#');
    EXPECT_EQ(Rastrel_FileNameGeoref(name.c_str(), text.data()), 1);
    std::string companion = text.data();
    EXPECT_EQ(text[companion.size() + 1], '#') << "no byte behind the name's end is written";
    return companion;
}

TEST(CompanionName, FollowsTheImages) {
    struct Case {
        const char* image;
        const char* companion;
    };
    for (const Case& c : std::initializer_list<Case>{
             {"C:\\maps\\sheet.TIF", "C:\\maps\\sheet.tfw"},
             {"C:\\maps\\sheet.bmp", "C:\\maps\\sheet.bpw"},
             {"C:\\maps\\sheet.Gif", "C:\\maps\\sheet.gfw"},
             {"C:\\maps\\sheet.jpg", "C:\\maps\\sheet.jgw"},
             {"C:\\maps\\sheet.jp2", "C:\\maps\\sheet.j2w"},
             {"C:\\maps\\sheet.png", "C:\\maps\\sheet.pgw"},
             {"C:\\maps\\sheet.sid", "C:\\maps\\sheet.sdw"},
             {"C:\\maps\\sheet.qvi", "C:\\maps\\sheet.qiw"},
             {"C:\\maps\\sheet.bil", "C:\\maps\\sheet.hdr"},
             {"C:\\maps\\sheet.BIP", "C:\\maps\\sheet.hdr"},
             {"C:\\maps\\sheet.bsq", "C:\\maps\\sheet.hdr"},
             {"C:\\maps\\sheet.ecw", "ECWxxx"},
             {"C:\\maps\\sheet.FOT", "FOTxxx"},
             {"sheet.map", "MAPxxx"},
             {"sheet.gfc", "GFCxxx"},
             {"sheet.gaf", "GAFxxx"},
             // Longer extensions are unknown ones; without a folder the root of the drive is meant.
             {"sheet.jpeg", "\\sheet"},
             {"C:\\maps\\sheet.tiff", "C:\\maps\\sheet"},
             {"C:\\maps\\sheet", "C:\\maps\\sheet"},
             {"C:\\maps\\sheet.", "C:\\maps\\sheet"},
             {"a.tif", "\\a.tfw"},
             {"C:a.tif", "C:\\a.tfw"},
             {"\\a.tif", "\\a.tfw"},
             {"C:\\a.tif", "C:\\a.tfw"},
             {"/maps/north/a.b.tif", "/maps/north\\a.b.tfw"},
             {"maps.old/sheet", "maps.old\\sheet"},
             {"maps.tif\\sheet.bmp", "maps.tif\\sheet.bpw"},
             {R"(\\server\maps\a.png)", R"(\\server\maps\a.pgw)"},
             {"maps\\.tif", "maps\\.tfw"},
             {"", "\\"},
         })
        EXPECT_EQ(CompanionOf(c.image), c.companion) << c.image;
    std::array<char, 4> buffer = {};
    EXPECT_EQ(Rastrel_FileNameGeoref(nullptr, buffer.data()), 0);
    EXPECT_EQ(Rastrel_FileNameGeoref("a.tif", nullptr), 0);
}

TEST(WorldFile, IsWrittenToTheLetter) {
    const TestFolder folder;
    ASSERT_EQ(Rastrel_WriteGeoref(folder.Path("a.bmp").c_str(), 1650000.5, -47.125, 0.25), 1);
    EXPECT_EQ(FileText(folder.Path("a.bpw")),
              "               0.25000000000000\n"
              "               0.00000000000000\n"
              "               0.00000000000000\n"
              "              -0.25000000000000\n"
              "         1650000.50000000000000\n"
              "             -47.12500000000000\n");
}

TEST(WorldFile, EveryFormatHasItsOwn) {
    const TestFolder folder;
    // MrSID's and ECW's, and those of unknown names, are written without extension.
    for (const char* name : {"tif", "bmp", "gif", "jpg", "jp2", "png", "qvi"}) {
        const std::string image = folder.Path(std::string("sheet.") + name);
        ASSERT_EQ(Rastrel_WriteGeoref(image.c_str(), 10, 20, 3), 1) << name;
        EXPECT_EQ(Read(image), (Reading{1, 10, 20, 3})) << name;
    }
    EXPECT_EQ(folder.Names(),
              (std::vector<std::string>{"sheet.bpw", "sheet.gfw", "sheet.j2w", "sheet.jgw",
                                        "sheet.pgw", "sheet.qiw", "sheet.tfw"}));
    for (const char* name : {"x.ecw", "y.sid", "z.jpeg"})
        ASSERT_EQ(Rastrel_WriteGeoref(folder.Path(name).c_str(), 1, 2, 3), 1) << name;
    EXPECT_EQ(FileText(folder.Path("x")), FileText(folder.Path("y")));
    EXPECT_EQ(Read(folder.Path("x.ecw")), kDefaults) << "ECW images tell by themselves";
    EXPECT_EQ(Read(folder.Path("y.sid")), kDefaults) << "MrSID images have y.sdw";
    EXPECT_EQ(Read(folder.Path("z.jpeg")), (Reading{1, 1, 2, 3}));
}

TEST(WorldFile, KeepsFourteenDecimals) {
    const TestFolder folder;
    const std::string image = folder.Path("a.png");
    for (const double value : {0.0, 1e-14, 0.1, 1.0 / 3, 123456.78901234567, -9876543.21, 4.9e15,
                               1e300, std::numeric_limits<double>::max()}) {
        ASSERT_EQ(Rastrel_WriteGeoref(image.c_str(), value, -value, value), 1);
        const Reading back = Read(image);
        EXPECT_EQ(back.result, 1);
        if (std::abs(value) < 1e180) {  // longer numbers do not fit a line
            EXPECT_NEAR(back.x, value, 5.1e-15) << value;
            EXPECT_EQ(back.y, -back.x);
            EXPECT_EQ(back.pixel_size, back.x);
        }
    }
}

TEST(WorldFile, IsReadLineByLine) {
    const std::string long_line(5000, '9');
    struct Case {
        const char* what;
        std::string text;
        Reading want;
    };
    const TestFolder folder;
    for (const Case& c : std::initializer_list<Case>{
             {"plain", "2.5\n0\n0\n-2.5\n600000\n5100000\n", {1, 600000, 5100000, 2.5}},
             {"carriage returns", "2.5\r\n0\r\n0\r\n-2.5\r\n6\r\n7\r\n", {1, 6, 7, 2.5}},
             {"no end", "2.5\n0\n0\n-2.5\n6\n7", {1, 6, 7, 2.5}},
             {"more lines", "1\n2\n3\n4\n5\n6\n7\n8\n", {1, 5, 6, 1}},
             {"signs, blanks, exponents", "\t+1e2\n\n\n\n  -.5\n 5.E-1 m\n", {1, -.5, .5, 100}},
             {"a comma ends a number", "1,5\n\n\n\n2,5\n3,5\n", {1, 2, 3, 1}},
             {"lines that hold no number", "x\n0\n0\n0\n\n--1\n", {1, -7, -7, -7}},
             {"rotation is not looked at", "1\na\nb\nc\n5\n6\n", {1, 5, 6, 1}},
             {"what is not finite is no number", "nan\n0\n0\n0\ninf\n-1e999\n", {1, -7, -7, -7}},
             {"one line", "8\n", {1, -7, -7, 8}},
             {"five lines", "8\n\n\n\n4", {1, 4, -7, 8}},
             {"nothing", "", {1, -7, -7, -7}},
             {"a line beyond the limit",
              long_line + "\n0\n0\n0\n5\n6\n",
              {1, 5, 6, std::stod(long_line.substr(0, 199))}},
             {"numbers beyond the limit",
              std::string(199, ' ') + "1\n0\n0\n0\n5\n6\n",
              {1, 5, 6, -7}},
         }) {
        folder.Write("a.tfw", Text(c.text));
        EXPECT_EQ(Read(folder.Path("a.tif")), c.want) << c.what;
    }
}

TEST(Georeference, WhatIsMissing) {
    const TestFolder folder;
    // Companion files that are not there give the grid of single pixels; files that hold the
    // georeference themselves, nothing.
    for (const char* name : {"a.tif", "a.bmp", "a.jpg", "a.bil", "a.sid", "a.ecw", "a", "a.tiff"})
        EXPECT_EQ(Read(folder.Path(name)), kDefaults) << name;
    for (const char* name : {"a.fot", "a.map", "a.gfc", "a.gaf"})
        EXPECT_EQ(Read(folder.Path(name)), kUntouched) << name;
    fs::create_directory(folder.Path("b.bpw"));
    EXPECT_EQ(Read(folder.Path("b.bmp")), kDefaults) << "a folder is no companion";

    double value = 1;
    EXPECT_EQ(Rastrel_ReadGeoref(nullptr, &value, &value, &value), 0);
    EXPECT_EQ(Rastrel_ReadGeoref("a.bmp", nullptr, &value, &value), 0);
    EXPECT_EQ(Rastrel_ReadGeoref("a.bmp", &value, nullptr, &value), 0);
    EXPECT_EQ(Rastrel_ReadGeoref("a.bmp", &value, &value, nullptr), 0);
    EXPECT_EQ(Rastrel_WriteGeoref(nullptr, 1, 2, 3), 0);
}

TEST(Georeference, ExtensionsInUpperCaseAreFoundToo) {
    const TestFolder folder;
    folder.Write("a.TFW", Text("1\n0\n0\n-1\n5\n6\n"));
    EXPECT_EQ(CompanionOf(folder.Path("a.TIF")),
              folder.Path("").substr(0, folder.Path("").size() - 1) + "\\a.tfw");
    EXPECT_EQ(Read(folder.Path("a.TIF")), (Reading{1, 5, 6, 1}));
    folder.Write("a.tfw", Text("2\n0\n0\n-2\n7\n8\n"));
    EXPECT_EQ(Read(folder.Path("a.TIF")), (Reading{1, 7, 8, 2})) << "the lower case goes first";

    folder.Write("b.HDR", Text("NCOLS 5\nxdim 1\n"));
    ASSERT_EQ(Rastrel_WriteGeoref(folder.Path("b.BIL").c_str(), 5, 6, 1), 1);
    EXPECT_EQ(FileText(folder.Path("b.HDR")).substr(0, 8), "NCOLS 5\n");
    EXPECT_EQ(Read(folder.Path("b.BIL")), (Reading{1, 5, 6, 1}));
}

TEST(HeaderGeoreference, NeedsThreeKeywordsWithNumbers) {
    struct Case {
        const char* what;
        std::string text;
        Reading want;
    };
    const TestFolder folder;
    for (const Case& c : std::initializer_list<Case>{
             {"plain", "NCOLS 9\nULXMAP 5.5\nULYMAP 6.5\nXDIM 0.5\nYDIM 0.25\n", {1, 5.5, 6.5, .5}},
             {"any case, order and space", "\txDim\t2\r\n ulymap  6\r\nUlXmap 5", {1, 5, 6, 2}},
             {"later lines count", "XDIM 1\nULXMAP 1\nULYMAP 1\nXDIM 2\n", {1, 1, 1, 2}},
             {"later lines count even without a number", "XDIM 1\nULXMAP 1\nULYMAP 1\nXDIM ?\n",
              kUntouched},
             {"no pixel size", "ULXMAP 5\nULYMAP 6\n", kUntouched},
             {"no pixel size but a height", "ULXMAP 5\nULYMAP 6\nYDIM 2\n", kUntouched},
             {"no x", "ULYMAP 6\nXDIM 2\n", kUntouched},
             {"other words", "ULXMAP: 5\nXULYMAP 6\nXDIM2 2\nnot XDIM 3\n", kUntouched},
             {"not finite", "ULXMAP nan\nULYMAP 6\nXDIM 2\n", kUntouched},
             {"beyond the limit", std::string(194, ' ') + "XDIM 2\nULXMAP 5\nULYMAP 6\n",
              kUntouched},
             {"behind the limit", std::string(199, 'x') + "XDIM 2\nULXMAP 5\nULYMAP 6\n",
              kUntouched},
             {"nothing", "", kUntouched},
         }) {
        folder.Write("a.hdr", Text(c.text));
        EXPECT_EQ(Read(folder.Path("a.bsq")), c.want) << c.what;
    }
}

const std::string kWrittenLines =
    "ULXMAP                5.50000000000000\n"
    "ULYMAP                6.25000000000000\n"
    "XDIM                  0.50000000000000\n"
    "YDIM                  0.50000000000000\n";

TEST(HeaderGeoreference, IsRewrittenBehindAllOtherLines) {
    struct Case {
        const char* what;
        std::string before;
        std::string kept;
    };
    const std::string long_line = "; " + std::string(5000, 'x') + " XDIM 7\n";
    const TestFolder folder;
    for (const Case& c : std::initializer_list<Case>{
             {"nothing", "", ""},
             {"others", "NROWS 5\nNCOLS 7\n", "NROWS 5\nNCOLS 7\n"},
             {"among others", "A 1\nULXMAP 1\nB\nxdim 2\n\nydim\nC\nULYMAP 3 4\n", "A 1\nB\n\nC\n"},
             {"no end", "A 1\nXDIM 3\nB 2", "A 1\nB 2\n"},
             {"no end of a dropped line", "A 1\nXDIM 3", "A 1\n"},
             {"carriage returns and tabs", "A\t1\r\n\tXDIM\t3\r\nB 2\r\n", "A\t1\r\nB 2\r\n"},
             {"long lines", long_line + "XDIM " + std::string(5000, '1') + "\nB\n",
              long_line + "B\n"},
         }) {
        folder.Write("a.hdr", Text(c.before));
        const std::string image = folder.Path("a.bip");
        for (int times = 0; times < 2; ++times) {
            ASSERT_EQ(Rastrel_WriteGeoref(image.c_str(), 5.5, 6.25, 0.5), 1) << c.what;
            EXPECT_EQ(FileText(folder.Path("a.hdr")), c.kept + kWrittenLines) << c.what;
        }
        EXPECT_EQ(Read(image), (Reading{1, 5.5, 6.25, 0.5})) << c.what;
    }
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.hdr"});
    fs::remove(folder.Path("a.hdr"));
    ASSERT_EQ(Rastrel_WriteGeoref(folder.Path("a.bil").c_str(), 5.5, 6.25, 0.5), 1);
    EXPECT_EQ(FileText(folder.Path("a.hdr")), kWrittenLines) << "there was none before";
}

/// An AIMA image whose header bytes, and some more, are their own places.
Bytes AimaImage(std::size_t length = 100) {
    Bytes bytes(length);
    for (std::size_t i = 0; i < length; ++i)
        bytes[i] = static_cast<std::uint8_t>(i);
    return bytes;
}

TEST(AimaHeader, IsReadInItsUnits) {
    const TestFolder folder;
    Bytes image = AimaImage();
    PutU32(image, 8, 16500005);
    PutU32(image, 12, 4000000000u);
    PutU32(image, 18, 20000);
    for (const char* name : {"a.fot", "a.MAP"}) {
        folder.Write(name, image);
        EXPECT_EQ(Read(folder.Path(name)), (Reading{1, 16500005 * 0.1, 4000000000.0 * 0.1, 2.0}));
    }
    PutU32(image, 18, 0xffffffffu);
    folder.Write("b.fot", image);
    EXPECT_EQ(Read(folder.Path("b.fot")).pixel_size, -1 * 0.0001);

    image = AimaImage();
    PutU32(image, 36, 16500005);
    PutU32(image, 40, 0xfffffff6u);
    PutU32(image, 48, 0x1234ea60);
    for (const char* name : {"a.gfc", "a.GAF"}) {
        folder.Write(name, image);
        EXPECT_EQ(Read(folder.Path(name)), (Reading{1, 16500005 * 0.1, -10 * 0.1, 6.0}));
    }
}

TEST(AimaHeader, IsPatchedInPlace) {
    const TestFolder folder;
    struct Case {
        const char* name;
        std::size_t x, y, pixel_size, pixel_size_bytes;
    };
    for (const Case& c : {Case{"a.fot", 8, 12, 18, 4},
                          {"a.map", 8, 12, 18, 4},
                          {"a.gfc", 36, 40, 48, 2},
                          {"a.gaf", 36, 40, 48, 2}}) {
        const std::string path = folder.Write(c.name, AimaImage());
        ASSERT_EQ(Rastrel_WriteGeoref(path.c_str(), 1650000.5, 4999999.96, 0.99995), 1);
        Bytes want = AimaImage();
        PutU32(want, c.x, 16500005);
        PutU32(want, c.y, 50000000);
        const Bytes pixel_size = FieldWriter().U32(9999).Done();  // not 10000: nearly rounded
        std::copy_n(pixel_size.begin(), c.pixel_size_bytes,
                    want.begin() + static_cast<std::ptrdiff_t>(c.pixel_size));
        EXPECT_EQ(FileBytes(path), want) << c.name;
        EXPECT_EQ(Read(path), (Reading{1, 16500005 * 0.1, 50000000 * 0.1, 9999 * 0.0001}));
    }
}

TEST(AimaHeader, RoundsAndTruncatesAsItAlwaysDid) {
    struct Case {
        double value, stored;
    };
    const TestFolder folder;
    const std::string path = folder.Write("a.gaf", AimaImage());
    for (const Case& c : {Case{0.05, 0},
                          {0.06, 1},
                          {-0.05, 0},
                          {-0.2, -1},
                          {-0.14, 0},
                          {12.34, 123},
                          {12.36, 124},
                          {214748364.7, 2147483647},
                          {-214748364.8, -2147483647}}) {
        ASSERT_EQ(Rastrel_WriteGeoref(path.c_str(), c.value, 0, 1), 1) << c.value;
        EXPECT_EQ(Read(path).x, c.stored * 0.1) << c.value;
    }
    // The pixel size of GFC and GAF has 16 bits, and what stands above them is lost.
    ASSERT_EQ(Rastrel_WriteGeoref(path.c_str(), 0, 0, 10), 1);
    EXPECT_EQ(Read(path).pixel_size, (100000 - 65536) * 0.0001);
}

TEST(AimaHeader, WhatCannotBeStoredChangesNothing) {
    struct Case {
        const char* name;
        std::size_t length;
        double x, y, pixel_size;
    };
    const double huge = 1e30;
    const double infinite = std::numeric_limits<double>::infinity();
    const TestFolder folder;
    for (const Case& c : {Case{"a.fot", 23, 1, 2, 3},
                          {"a.map", 0, 1, 2, 3},
                          {"a.gfc", 71, 1, 2, 3},
                          {"a.fot", 24, -1, 2, 3},
                          {"a.fot", 24, 1, 429496729.6, 3},
                          {"a.map", 24, 1, 2, 214748.4},
                          {"a.gaf", 72, 214748365, 2, 3},
                          {"a.gfc", 72, 1, -214748365, 3},
                          {"a.gfc", 72, 1, 2, huge},
                          {"a.fot", 24, huge, 2, 3},
                          {"a.fot", 24, 1, -huge, 3},
                          {"a.gaf", 72, infinite, 2, 3},
                          {"a.gaf", 72, 1, 2, std::nan("")}}) {
        const Bytes image = AimaImage(c.length);
        const std::string path = folder.Write(c.name, image);
        EXPECT_EQ(Rastrel_WriteGeoref(path.c_str(), c.x, c.y, c.pixel_size), 0) << c.name;
        EXPECT_EQ(FileBytes(path), image) << c.name;
        if (c.length < 24) {
            EXPECT_EQ(Read(path), kUntouched) << c.name;
        }
    }
    EXPECT_EQ(Rastrel_WriteGeoref(folder.Path("missing.fot").c_str(), 1, 2, 3), 0);
    EXPECT_FALSE(fs::exists(folder.Path("missing.fot")));
}

TEST(Georeference, OnlyFiniteNumbersAreWritten) {
    const TestFolder folder;
    const double nan = std::nan("");
    const double infinite = std::numeric_limits<double>::infinity();
    for (const char* name : {"a.tif", "a.bil", "a", "a.ecw"}) {
        for (const double value : {nan, infinite, -infinite}) {
            EXPECT_EQ(Rastrel_WriteGeoref(folder.Path(name).c_str(), value, 2, 3), 0);
            EXPECT_EQ(Rastrel_WriteGeoref(folder.Path(name).c_str(), 1, value, 3), 0);
            EXPECT_EQ(Rastrel_WriteGeoref(folder.Path(name).c_str(), 1, 2, value), 0);
        }
    }
    EXPECT_EQ(folder.Names(), std::vector<std::string>{});
    EXPECT_EQ(Rastrel_WriteGeoref(folder.Path("no/folder/a.bmp").c_str(), 1, 2, 3), 0);
}

#if !defined(_WIN32)

TEST(Georeference, AFullDiskLeavesTheOldFiles) {
    const TestFolder folder;
    folder.Write("a.bpw", Text("old"));
    folder.Write("a.hdr", Text("XDIM 5\nNCOLS 7\n"));
    for (const rlim_t room : {rlim_t{0}, rlim_t{20}, rlim_t{100}}) {
        const FullDisk disk(room);
        EXPECT_EQ(Rastrel_WriteGeoref(folder.Path("a.bmp").c_str(), 1, 2, 3), 0) << room;
        EXPECT_EQ(Rastrel_WriteGeoref(folder.Path("a.bil").c_str(), 1, 2, 3), 0) << room;
        EXPECT_EQ(Rastrel_WriteGeoref(folder.Path("new.bil").c_str(), 1, 2, 3), 0) << room;
    }
    EXPECT_EQ(FileText(folder.Path("a.bpw")), "old");
    EXPECT_EQ(FileText(folder.Path("a.hdr")), "XDIM 5\nNCOLS 7\n");
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.bpw", "a.hdr"}));
}

TEST(HeaderGeoreference, IsAppendedWhereTheHeaderCannotBeReplaced) {
    const TestFolder folder;
    struct Case {
        const char* what;
        fs::perms header;
        fs::perms in_folder;
        int result;
    };
    using enum fs::perms;
    const auto may_write = owner_write | group_write | others_write;
    const auto may_read = owner_read | group_read | others_read;
    for (const Case& c :
         {Case{"not to be read", may_write, all, 1},
          {"in a folder that takes no file", may_read | may_write, all & ~may_write, 1},
          {"not to be written", may_read, all, 0}}) {
        fs::permissions(folder.Path(""), all);
        const std::string old = "XDIM 9\nNCOLS 7";
        const std::string kept = old + "\n";
        const std::string header = folder.Write("a.hdr", Text(old));
        fs::permissions(header, c.header);
        fs::permissions(folder.Path(""), c.in_folder);
        const std::string image = folder.Path("a.bil");
        {
            const OrdinaryUser user;
            EXPECT_EQ(Rastrel_WriteGeoref(image.c_str(), 5.5, 6.25, 0.5), c.result) << c.what;
            const FullDisk disk(20);
            EXPECT_EQ(Rastrel_WriteGeoref(image.c_str(), 1, 2, 3), 0) << c.what;
        }
        fs::permissions(header, may_read | may_write);
        EXPECT_EQ(FileText(header), c.result == 1 ? kept + kWrittenLines : old) << c.what;
        EXPECT_EQ(Read(image), c.result == 1 ? (Reading{1, 5.5, 6.25, 0.5}) : kUntouched) << c.what;
    }
    fs::permissions(folder.Path(""), all);
}

TEST(AimaHeader, AReadOnlyImageStays) {
    const TestFolder folder;
    const std::string path = folder.Write("a.fot", AimaImage());
    using enum fs::perms;
    fs::permissions(path, owner_read | group_read | others_read);
    fs::permissions(folder.Path(""), all);
    const OrdinaryUser user;
    EXPECT_EQ(Rastrel_WriteGeoref(path.c_str(), 1, 2, 3), 0);
    EXPECT_EQ(FileBytes(path), AimaImage());
}

#endif

}  // namespace
}  // namespace rastrel_test
