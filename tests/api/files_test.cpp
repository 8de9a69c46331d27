// Reading and saving through a handle: which format, what becomes of the image, what of the files.

#include <filesystem>
#include <thread>

#include "support/images.h"
#if !defined(_WIN32)
#include "support/limits.h"
#endif

namespace rastrel_test {
namespace {

namespace fs = std::filesystem;

/// A file of 4 x 3 pixels of 8 bits with a palette, saved under the name.
std::string SaveSample(const TestFolder& folder, const std::string& name, int type = -1) {
    const TestImage image(4, 3, 8);
    Draw(image, {"1234", "5678", "9abc"});
    Rastrel_SetGrayPalette(image);
    EXPECT_EQ(Rastrel_Save(image, folder.Path(name).c_str(), type), 1) << name;
    return folder.Path(name);
}

TEST(Read, TakesTheFormatFromTheExtensionInAnyCase) {
    const TestFolder folder;
    const std::string plain = SaveSample(folder, "a.bmp");
    for (const char* name : {"b.BMP", "c.BmP", "d.e.bmp", "f..bmp"}) {
        fs::copy_file(plain, folder.Path(name));
        const TestImage image;
        EXPECT_EQ(Rastrel_Read(image, folder.Path(name).c_str(), -1), 1) << name;
        EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_BMP);
    }
}

TEST(Read, ExtensionsStandForTheirTypes) {
    const TestFolder folder;
    struct Case {
        const char* extension;
        int type;
    };
    for (const Case& c :
         {Case{"bil", 6}, {"BIN", 15}, {"bip", 7},  {"bmp", 0},   {"Bsq", 8},  {"ecw", 10},
          {"FOT", 11},    {"gaf", 14}, {"gfc", 13}, {"gif", 2},   {"jp2", 15}, {"JPG", 1},
          {"map", 12},    {"png", 3},  {"sid", 9},  {"tif", 4},   {"qvi", 5},  {"jpeg", -1},
          {"tiff", -1},   {"bm", -1},  {"", -1},    {"bmpx", -1}, {"5", -1}}) {
        const TestImage image;
        // The type is taken on even though there is no such file.
        EXPECT_EQ(Rastrel_Read(image, folder.Path(std::string("x.") + c.extension).c_str(), -1), 0);
        EXPECT_EQ(Rastrel_GetImageType(image), c.type) << c.extension;
    }
    const TestImage image;
    EXPECT_EQ(Rastrel_Read(image, folder.Path("bmp").c_str(), -1), 0);
    EXPECT_EQ(Rastrel_GetImageType(image), -1) << "a name without a point";
}

TEST(Read, ATypeGivenGoesBeforeTheExtension) {
    const TestFolder folder;
    const std::string path = SaveSample(folder, "sheet.dat", RASTREL_TYPE_QVI);
    const TestImage image;
    EXPECT_EQ(Rastrel_Read(image, path.c_str(), RASTREL_TYPE_QVI), 1);
    EXPECT_EQ(image.Indices(), (Picture{"1234", "5678", "9abc"}));
    // No such type: no raster. What the content is then decides.
    for (const int type : {99, -2}) {
        EXPECT_EQ(Rastrel_Read(image, folder.Path("missing.dat").c_str(), type), 0);
        EXPECT_EQ(image.Width(), 0);
        EXPECT_EQ(Rastrel_Read(image, path.c_str(), type), 1);
        EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_BMP);
    }
}

TEST(Read, AFailedReadOfTheSameTypeKeepsTheImage) {
    const TestFolder folder;
    const std::string path = SaveSample(folder, "a.bmp");
    const std::string broken = folder.Write("broken.bmp", Bytes(200, 0x33));
    const TestImage image;
    ASSERT_EQ(Rastrel_Read(image, path.c_str(), -1), 1);
    const std::string before = image.Fingerprint();
    EXPECT_EQ(Rastrel_Read(image, broken.c_str(), -1), 0);
    EXPECT_EQ(Rastrel_Read(image, folder.Path("missing.bmp").c_str(), -1), 0);
    EXPECT_EQ(Rastrel_Read(image, folder.Path("").c_str(), 0), 0) << "a folder";
    EXPECT_EQ(Rastrel_Read(image, nullptr, 0), 0);
    EXPECT_EQ(image.Fingerprint(), before);

    EXPECT_EQ(Rastrel_Read(image, folder.Path("missing.qvi").c_str(), -1), 0);
    EXPECT_EQ(image.Width(), 0) << "a change of type makes a new raster first";
    EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_QVI);
}

TEST(Read, AnEmptyNameStandsForTheFileBefore) {
    const TestFolder folder;
    const std::string path = SaveSample(folder, "a.bmp");
    const TestImage image;
    ASSERT_EQ(Rastrel_Read(image, path.c_str(), -1), 1);
    const std::string before = image.Fingerprint();
    Rastrel_Fill(image, 0, 0, 0);
    EXPECT_EQ(Rastrel_Read(image, folder.Path("missing.bmp").c_str(), -1), 0);
    EXPECT_EQ(Rastrel_Read(image, "", RASTREL_TYPE_BMP), 1);
    EXPECT_EQ(image.Fingerprint(), before);
    Rastrel_Fill(image, 1, 1, 1);
    EXPECT_EQ(Rastrel_Save(image, "", RASTREL_TYPE_BMP), 1);
    const TestImage back;
    ASSERT_EQ(Rastrel_Read(back, path.c_str(), -1), 1);
    EXPECT_EQ(back.Fingerprint(), image.Fingerprint());
    EXPECT_EQ(Rastrel_Read(TestImage(), "", RASTREL_TYPE_BMP), 0);
}

TEST(ReadInfo, TellsTheSizeAndLeavesOutputsAloneOnFailure) {
    const TestFolder folder;
    const std::string path = SaveSample(folder, "a.qvi");
    int width = -5;
    int height = -5;
    int bits = -5;
    EXPECT_EQ(Rastrel_ReadInfo(folder.Path("missing.bmp").c_str(), &width, &height, &bits), 0);
    EXPECT_EQ(Rastrel_ReadInfo(nullptr, &width, &height, &bits), 0);
    EXPECT_EQ(width, -5);
    EXPECT_EQ(Rastrel_ReadInfo(path.c_str(), &width, &height, &bits), 1);
    EXPECT_EQ(width, 4);
    EXPECT_EQ(height, 3);
    EXPECT_EQ(bits, 8);
    EXPECT_EQ(Rastrel_ReadInfo(path.c_str(), nullptr, nullptr, nullptr), 1);
}

TEST(ReadPartial, EqualsReadingAndExtracting) {
    const TestFolder folder;
    struct Rectangle {
        int x, y, width, height;
    };
    for (const int bits : {1, 4, 8, 24, 32}) {
        for (const char* name : {"a.bmp", "a.qvi"}) {
            const TestImage image(47, 33, bits);
            FillWithPattern(image);
            ASSERT_EQ(Rastrel_Save(image, folder.Path(name).c_str(), -1), 1);
            const std::string path = folder.Path(name);
            for (const Rectangle& r : {Rectangle{0, 0, 47, 33}, {5, 7, 13, 11}, {-4, 30, 20, 20}}) {
                const TestImage part;
                EXPECT_EQ(Rastrel_ReadPartial(part, path.c_str(), -1, r.x, r.y, r.width, r.height),
                          1);
                const TestImage whole;
                ASSERT_EQ(Rastrel_Read(whole, path.c_str(), -1), 1);
                ASSERT_EQ(Rastrel_ExtractPortion(whole, r.x, r.y, r.width, r.height), 1);
                EXPECT_EQ(part.Fingerprint(), whole.Fingerprint()) << name << ' ' << bits;
            }
        }
    }
}

TEST(ReadPartial, ReductionKeepsEveryNthFromTheUpperLeft) {
    const TestFolder folder;
    for (const int bits : {1, 4, 8, 24, 32}) {
        const TestImage image(47, 33, bits);
        FillWithPattern(image);
        if (bits <= 8) Rastrel_SetGrayPalette(image);
        ASSERT_EQ(Rastrel_Save(image, folder.Path("a.bmp").c_str(), -1), 1);
        for (const int reduction : {1, 2, 3, 7, 100}) {
            const TestImage part;
            ASSERT_EQ(Rastrel_ReadPartialEx(part, folder.Path("a.bmp").c_str(), -1, 3, 2, 30, 90,
                                            reduction),
                      1);
            ASSERT_EQ(part.Width(), (30 + reduction - 1) / reduction);
            ASSERT_EQ(part.Height(), (31 + reduction - 1) / reduction);
            Bytes pixel(4);
            Bytes kept(4);
            for (int y = 0; y < part.Height(); ++y) {
                for (int x = 0; x < part.Width(); ++x) {
                    Rastrel_GetImageByte(part, kept.data(), 32, x, y, 1, 1);
                    Rastrel_GetImageByte(image, pixel.data(), 32, 3 + x * reduction,
                                         2 + y * reduction, 1, 1);
                    ASSERT_EQ(kept, pixel) << bits << ' ' << reduction;
                }
            }
        }
    }
}

TEST(ReadPartial, NothingToKeepLeavesTheImage) {
    const TestFolder folder;
    const std::string path = SaveSample(folder, "a.bmp");
    const TestImage image;
    ASSERT_EQ(Rastrel_Read(image, path.c_str(), -1), 1);
    Rastrel_SetIndex(image, 0, 0, 99);
    const std::string before = image.Fingerprint();
    EXPECT_EQ(Rastrel_ReadPartial(image, path.c_str(), -1, 4, 0, 2, 2), 0);
    EXPECT_EQ(Rastrel_ReadPartial(image, path.c_str(), -1, 0, 0, 0, 2), 0);
    EXPECT_EQ(Rastrel_ReadPartialEx(image, path.c_str(), -1, 0, 0, 2, 2, 0), 0);
    EXPECT_EQ(Rastrel_ReadPartialEx(image, path.c_str(), -1, 0, 0, 2, 2, -1), 0);
    EXPECT_EQ(Rastrel_ReadPartial(image, folder.Path("missing.bmp").c_str(), -1, 0, 0, 2, 2), 0);
    EXPECT_EQ(image.Fingerprint(), before);
    EXPECT_EQ(Rastrel_ReadPartial(image, "", 0, 1, 1, 2, 2), 1) << "the file before";
    EXPECT_EQ(image.Indices(), (Picture{"67", "ab"}));
}

TEST(Read3, CombinesFilesOrTakesOne) {
    const TestFolder folder;
    const std::string sample = SaveSample(folder, "a.bmp");
    const TestImage other(4, 3, 24);
    Rastrel_Fill(other, 100, 110, 120);
    ASSERT_EQ(Rastrel_Save(other, folder.Path("b.qvi").c_str(), -1), 1);
    const std::string second = folder.Path("b.qvi");
    const TestImage image;
    EXPECT_EQ(Rastrel_Read3(image, second.c_str(), sample.c_str(), second.c_str(), -1), 1);
    EXPECT_EQ(image.ColorAt(0, 2), (Rgb{100, 1, 120}));
    EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_BMP);
    for (const char* none : {static_cast<const char*>(nullptr), ""}) {
        EXPECT_EQ(Rastrel_Read3(image, sample.c_str(), none, none, -1), 1);
        EXPECT_EQ(image.Depth(), 24);
        EXPECT_EQ(image.ColorAt(3, 2), (Rgb{4, 4, 4}));
    }
    EXPECT_EQ(Rastrel_Read3(image, sample.c_str(), sample.c_str(), "", -1), 0);
    EXPECT_EQ(image.Width(), 0) << "what it held is gone";
    EXPECT_EQ(Rastrel_Read3(image, nullptr, nullptr, nullptr, -1), 0);
    EXPECT_EQ(Rastrel_Read3(image, sample.c_str(), sample.c_str(), sample.c_str(), 5), 1)
        << "the type goes before the extension; of its pixels a plain file has none to expand";
}

TEST(Save, ChangesTheTypeAndNoPixel) {
    const TestFolder folder;
    const std::string path = SaveSample(folder, "a.bmp");
    const TestImage image;
    ASSERT_EQ(Rastrel_Read(image, path.c_str(), -1), 1);
    Rastrel_SetQuality(image, 42);
    const std::string before = image.Fingerprint();
    EXPECT_EQ(Rastrel_Save(image, folder.Path("a.QVI").c_str(), -1), 1);
    EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_QVI);
    EXPECT_EQ(image.Fingerprint(), before);
    EXPECT_EQ(Rastrel_GetQuality(image), 42);
    EXPECT_EQ(Rastrel_SetRGB(image, 0, 0, 7, 7, 7), 1);
    EXPECT_EQ(Rastrel_GetIndex(image, 0, 0), 7) << "it is palettised as before";
    EXPECT_EQ(Rastrel_Save(image, folder.Path("a").c_str(), RASTREL_TYPE_BMP), 1);
    EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_BMP);
}

TEST(Save, WhatFailsChangesNothing) {
    const TestFolder folder;
    const TestImage image(4, 3, 24);
    FillWithPattern(image);
    fs::create_directory(folder.Path("folder.bmp"));
    const std::string before = image.Fingerprint();
    for (const char* name : {"a.tiff", "b.sid", "c", "d.", "no/such/folder/e.bmp", "folder.bmp",
                             "no/such/folder/f.qvi"}) {
        EXPECT_EQ(Rastrel_Save(image, folder.Path(name).c_str(), -1), 0) << name;
        EXPECT_EQ(image.Fingerprint(), before) << name;
        EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_BMP) << name;
    }
    EXPECT_EQ(Rastrel_Save(image, nullptr, 0), 0);
    EXPECT_EQ(Rastrel_Save(image, "", 0), 0) << "it has no file yet";
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"folder.bmp"});
}

TEST(Save, ReplacesAFileWholeAndLeavesNothingElse) {
    const TestFolder folder;
    const std::string path = SaveSample(folder, "a.bmp");
    const TestImage image(2, 2, 24);
    EXPECT_EQ(Rastrel_Save(image, path.c_str(), -1), 1);
    EXPECT_EQ(FileBytes(path).size(), 54u + 16u);
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.bmp"});
    EXPECT_EQ(Rastrel_Read(image, path.c_str(), -1), 1);
    EXPECT_EQ(Rastrel_Save(image, path.c_str(), -1), 1) << "onto the file that it was read from";
}

TEST(Save, TakesPathsWithEitherSeparator) {
    const TestFolder folder;
    fs::create_directory(folder.Path("sub"));
    const TestImage image(2, 2, 24);
    EXPECT_EQ(Rastrel_Save(image, folder.Path("sub\\a.bmp").c_str(), -1), 1);
    EXPECT_TRUE(fs::exists(folder.Path("sub/a.bmp")));
    EXPECT_EQ(Rastrel_Read(image, folder.Path("sub\\a.bmp").c_str(), -1), 1);
}

#if !defined(_WIN32)

TEST(Save, AFullDiskLeavesTheOldFile) {
    const TestFolder folder;
    const std::string bmp = SaveSample(folder, "a.bmp");
    const std::string qvi = SaveSample(folder, "a.qvi");
    const Bytes before = FileBytes(bmp);
    const Bytes qvi_before = FileBytes(qvi);
    const TestImage image(100, 100, 24);
    FillWithPattern(image);
    for (const rlim_t room : {rlim_t{0}, rlim_t{10}, rlim_t{54}, rlim_t{1000}}) {
        const FullDisk disk(room);
        EXPECT_EQ(Rastrel_Save(image, bmp.c_str(), -1), 0) << room;
        EXPECT_EQ(Rastrel_Save(image, qvi.c_str(), -1), 0) << room;
        EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_BMP);
    }
    EXPECT_EQ(FileBytes(bmp), before);
    EXPECT_EQ(FileBytes(qvi), qvi_before);
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.bmp", "a.qvi"}));
    EXPECT_EQ(Rastrel_Save(image, "/dev/full", 0), 0);
}

TEST(Save, AFullDiskLeavesTheOldTiff) {
    const TestFolder folder;
    const std::string path = SaveSample(folder, "a.tif");
    const Bytes before = FileBytes(path);
    const TestImage image(100, 100, 24);
    FillWithPattern(image);
    for (const int compression : {1, 5, 7, 8, 32773}) {
        Rastrel_SetQuality(image, compression);
        ASSERT_EQ(Rastrel_Save(image, folder.Path("whole.tif").c_str(), -1), 1);
        const rlim_t length = FileBytes(folder.Path("whole.tif")).size();
        // The directory stands at the end, and the header is written last.
        for (const rlim_t room : {rlim_t{0}, rlim_t{4}, rlim_t{8}, length / 2, length - 20}) {
            const FullDisk disk(room);
            EXPECT_EQ(Rastrel_Save(image, path.c_str(), -1), 0) << compression << ' ' << room;
        }
        EXPECT_EQ(FileBytes(path), before) << compression;
        EXPECT_EQ(Rastrel_Save(image, "/dev/full", RASTREL_TYPE_TIFF), 0) << compression;
    }
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.tif", "whole.tif"}));
}

TEST(Save, AFullDiskLeavesTheOldFilesOfCodecs) {
    const TestFolder folder;
    const TestImage image(300, 300, 24);
    FillWithPattern(image);
    Rastrel_SetQuality(image, 100);
    for (const char* name : {"a.jpg", "a.png", "a.jp2"}) {
        const std::string path = folder.Path(name);
        ASSERT_EQ(Rastrel_Save(image, path.c_str(), -1), 1);
        const Bytes before = FileBytes(path);
        for (const rlim_t room : {rlim_t{0}, rlim_t{8}, rlim_t{70000}, rlim_t{before.size() - 1}}) {
            const FullDisk disk(room);
            EXPECT_EQ(Rastrel_Save(image, path.c_str(), -1), 0) << name << ' ' << room;
        }
        EXPECT_EQ(FileBytes(path), before) << name;
        EXPECT_EQ(Rastrel_Save(image, "/dev/full", Rastrel_GetImageType(image)), 0) << name;
    }
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.jp2", "a.jpg", "a.png"}));
}

TEST(Save, BandsOnAFullDiskFail) {
    const TestFolder folder;
    const TestImage band(300, 300, 24);
    FillWithPattern(band);
    for (const rlim_t room : {rlim_t{0}, rlim_t{1000}, rlim_t{400000}, rlim_t{540000}}) {
        const FullDisk disk(room);
        const intptr_t writer =
            Rastrel_TIFFOpen(folder.Path("tall.tif").c_str(), 1, 300, 600, band);
        const bool all_well = writer != 0 && Rastrel_TIFFAppend(writer, band) == 1;
        EXPECT_FALSE(Rastrel_TIFFClose(writer) == 1 && all_well) << room;
        const intptr_t jpeg = Rastrel_JPEGOpen(folder.Path("tall.jpg").c_str(), 99, 300, 600, band);
        const bool jpeg_well = jpeg != 0 && Rastrel_JPEGAppend(jpeg, band) == 1;
        EXPECT_FALSE(Rastrel_JPEGClose(jpeg, 0) == 1 && jpeg_well && room < 100000) << room;
    }
}

TEST(Save, WhatMayNotBeWrittenStays) {
    const TestFolder folder;
    const std::string path = SaveSample(folder, "a.bmp");
    const Bytes before = FileBytes(path);
    const fs::perms all_write =
        fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    fs::permissions(path, all_write, fs::perm_options::remove);
    fs::permissions(folder.Path(""), fs::perms::all);
    const TestImage image(2, 2, 24);
    {
        const OrdinaryUser user;
        EXPECT_EQ(Rastrel_Save(image, path.c_str(), -1), 0) << "the file forbids it";
        EXPECT_EQ(Rastrel_Save(image, folder.Path("new.bmp").c_str(), -1), 1);
    }
    fs::permissions(folder.Path(""), all_write, fs::perm_options::remove);
    {
        const OrdinaryUser user;
        EXPECT_EQ(Rastrel_Save(image, folder.Path("new.bmp").c_str(), -1), 0)
            << "the folder forbids it";
        EXPECT_EQ(Rastrel_Save(image, folder.Path("newer.bmp").c_str(), -1), 0);
    }
    fs::permissions(folder.Path(""), fs::perms::owner_all);
    EXPECT_EQ(FileBytes(path), before);
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.bmp", "new.bmp"}));
}

TEST(Save, KeepsPermissionsAndLinks) {
    const TestFolder folder;
    const std::string path = SaveSample(folder, "a.bmp");
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("a.bmp", folder.Path("link.bmp"));
    const TestImage image(2, 2, 24);
    EXPECT_EQ(Rastrel_Save(image, folder.Path("link.bmp").c_str(), -1), 1);
    EXPECT_TRUE(fs::is_symlink(folder.Path("link.bmp")));
    EXPECT_EQ(fs::file_size(path), 54u + 16u);
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(Read, DoesNotWaitForPipes) {
    const TestFolder folder;
    ASSERT_EQ(mkfifo(folder.Path("pipe.bmp").c_str(), 0600), 0);
    EXPECT_EQ(Rastrel_Read(TestImage(), folder.Path("pipe.bmp").c_str(), -1), 0);
}

#else

TEST(Save, AReadOnlyFileStays) {
    const TestFolder folder;
    const std::string path = SaveSample(folder, "a.bmp");
    const Bytes before = FileBytes(path);
    fs::permissions(path, fs::perms::all, fs::perm_options::remove);
    EXPECT_EQ(Rastrel_Save(TestImage(2, 2, 24), path.c_str(), -1), 0);
    EXPECT_EQ(FileBytes(path), before);
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.bmp"});
    fs::permissions(path, fs::perms::all, fs::perm_options::add);
}

#endif

TEST(Description, IsCutToTheBufferAndEnded) {
    const TestImage image(2, 2, 8);
    std::array<char, 64> text;
    for (const int size : {1, 2, 23, 40, 41, 64}) {
        text.fill('#');
        ASSERT_EQ(Rastrel_GetDescription(image, text.data(), size), 1);
        const std::string whole = "Windows Bitmap, 8 bit.\nNo compression.";
        EXPECT_EQ(std::string(text.data()), whole.substr(0, static_cast<std::size_t>(size) - 1));
        if (size < 64) {
            EXPECT_EQ(text[static_cast<std::size_t>(size)], '#');
        }
    }
    EXPECT_EQ(Rastrel_GetDescription(image, text.data(), 0), 0);
    EXPECT_EQ(Rastrel_GetDescription(image, nullptr, 10), 0);
}

}  // namespace
}  // namespace rastrel_test
