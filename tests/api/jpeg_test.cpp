// JPEG files: what the quality code stands for, what reads back, parts, damage, and files from
// bands.

#include <algorithm>
#include <cstdlib>

#include "support/images.h"

namespace rastrel_test {
namespace {

/// What a file's markers say.
struct Markers {
    int components = 0;
    int width = 0;
    int height = 0;
    int first_step = 0;          ///< of the first quantisation table: it tells the quality
    std::size_t size_field = 0;  ///< where height and width stand, two bytes each

    friend bool operator==(const Markers& a, const Markers& b) {
        return a.components == b.components && a.first_step == b.first_step;
    }
};

Markers MarkersOf(const Bytes& file) {
    Markers found;
    const auto u16 = [&file](std::size_t at) { return file[at] << 8 | file[at + 1]; };
    for (std::size_t at = 2; at + 12 < file.size() && file[at] == 0xff;) {
        const int marker = file[at + 1];
        if (marker == 0xdb && found.first_step == 0) found.first_step = file[at + 5];
        if (marker == 0xc0) {
            found.size_field = at + 5;
            found.height = u16(at + 5);
            found.width = u16(at + 7);
            found.components = file[at + 9];
        }
        if (marker == 0xda) break;
        at += 2 + static_cast<std::size_t>(u16(at + 2));
    }
    return found;
}

/// The first entry of the standard brightness table, 16, scaled for a quality.
int FirstStep(int quality) {
    quality = std::max(quality, 1);
    const int scale = quality < 50 ? 5000 / quality : 200 - 2 * quality;
    return std::clamp((16 * scale + 50) / 100, 1, 255);
}

/// Slow changes, which survive coarse coding.
void FillSmoothly(const TestImage& image) {
    std::uint8_t* rows = Rastrel_GetRawImage(image);
    const int bytes = image.Depth() / 8;
    for (int y = 0; y < image.Height(); ++y) {
        for (int x = 0; x < image.Width() * bytes; ++x)
            rows[y * Rastrel_GetEffWidth(image) + x] =
                static_cast<std::uint8_t>(60 + x % bytes * 30 + x / bytes + y);
    }
}

/// The greatest difference of any channel anywhere.
int Difference(const TestImage& a, const TestImage& b) {
    int greatest =
        std::abs(a.Width() - b.Width()) + std::abs(a.Height() - b.Height()) > 0 ? 999 : 0;
    for (int y = 0; y < a.Height() && greatest < 999; ++y) {
        for (int x = 0; x < a.Width(); ++x) {
            const Rgb one = a.ColorAt(x, y).value_or(Rgb{999, 0, 0});
            const Rgb other = b.ColorAt(x, y).value_or(Rgb{});
            for (std::size_t i = 0; i < 3; ++i)
                greatest = std::max(greatest, std::abs(one[i] - other[i]));
        }
    }
    return greatest;
}

Bytes Saved(const TestImage& image, const TestFolder& folder) {
    const std::string path = folder.Path("saved.jpg");
    EXPECT_EQ(Rastrel_Save(image, path.c_str(), -1), 1);
    return FileBytes(path);
}

TEST(Jpeg, QualityCodesDecideOnColoursAndQuality) {
    struct Case {
        int depth, code, components, quality;
    };
    const TestFolder folder;
    for (const Case& c : {Case{8, 150, 1, 50},
                          {8, 101, 1, 1},
                          {8, 199, 1, 99},
                          {8, 200, 1, 0},
                          {8, 201, 1, 1},
                          {8, 100, 3, 100},
                          {8, 75, 3, 75},
                          {8, 0, 3, 0},
                          {24, 150, 3, 100},
                          {24, 200, 3, 100},
                          {24, 75, 3, 75},
                          {24, 1, 3, 1},
                          {24, 0, 3, 0},
                          {24, -5, 3, 0},
                          {32, 150, 3, 100},
                          {4, 175, 3, 100},
                          {1, 30, 3, 30},
                          {24, 2147483647, 3, 100},
                          {8, 2147483647, 1, 47}}) {
        const TestImage image(17, 9, c.depth);
        FillWithPattern(image);
        Rastrel_SetQuality(image, c.code);
        const Markers found = MarkersOf(Saved(image, folder));
        EXPECT_EQ(found.components, c.components) << c.depth << " bits, code " << c.code;
        EXPECT_EQ(found.first_step, FirstStep(c.quality)) << c.depth << " bits, code " << c.code;
        EXPECT_EQ(Rastrel_GetQuality(image), c.code);
        EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_JPEG);
    }
}

TEST(Jpeg, GreyReadsBackAsEightBits) {
    const TestFolder folder;
    const TestImage image(47, 33, 8);
    FillSmoothly(image);
    SetPalette(image, {{9, 8, 7}, {6, 5, 4}});
    Rastrel_SetQuality(image, 199);
    Saved(image, folder);
    const TestImage again;
    Rastrel_SetQuality(again, 150);
    ASSERT_EQ(Rastrel_Read(again, folder.Path("saved.jpg").c_str(), -1), 1);
    EXPECT_EQ(again.Depth(), 8);
    ASSERT_EQ(again.Palette().size(), 256u);
    EXPECT_EQ(again.Palette()[200], (Rgb{200, 200, 200}));
    EXPECT_EQ(again.Description(), "Jpeg Grayscale, 8 bit.\nCompression 0.");
    // The indices are the levels, whatever the palette showed.
    Rastrel_SetGrayPalette(image);
    EXPECT_LE(Difference(image, again), 2);
    int width = 0;
    int height = 0;
    int bits = 0;
    EXPECT_EQ(Rastrel_ReadInfo(folder.Path("saved.jpg").c_str(), &width, &height, &bits), 1);
    EXPECT_EQ((std::vector<int>{width, height, bits}), (std::vector<int>{47, 33, 8}));
}

TEST(Jpeg, EveryDepthIsWrittenAsItLooks) {
    const TestFolder folder;
    for (const int depth : {1, 4, 8, 24, 32}) {
        for (const auto& [width, height] : {std::pair{47, 33}, {1, 1}, {8, 1}, {1, 17}, {64, 65}}) {
            const TestImage image(width, height, depth);
            if (depth >= 8) FillSmoothly(image);
            if (depth == 8) Rastrel_SetGrayPalette(image);
            if (depth < 8) {
                SetPalette(image, {{10, 200, 30}, {200, 100, 0}});
                Rastrel_Fill(image, 200, 100, 0);
            }
            Rastrel_SetQuality(image, 100);
            Saved(image, folder);
            const TestImage again;
            ASSERT_EQ(Rastrel_Read(again, folder.Path("saved.jpg").c_str(), -1), 1);
            EXPECT_EQ(again.Depth(), 24);
            EXPECT_TRUE(again.Palette().empty());
            EXPECT_LE(Difference(image, again), depth >= 24 ? 8 : 3)
                << depth << " bits, " << width << " x " << height;
            EXPECT_EQ(again.Description(), "Jpeg RGB, 24 bit.\nCompression 0.");
        }
    }
}

TEST(Jpeg, PartsAreThoseOfTheWhole) {
    const TestFolder folder;
    const std::string path = folder.Path("saved.jpg");
    for (const int code : {75, 175}) {
        const TestImage image(147, 133, code == 75 ? 24 : 8);
        FillWithPattern(image);
        Rastrel_SetQuality(image, code);
        Saved(image, folder);
        const TestImage whole;
        ASSERT_EQ(Rastrel_Read(whole, path.c_str(), -1), 1);
        for (const int x : {0, 1, 7, 15, 16, 17, 33, 100, 146}) {
            for (const int y : {0, 1, 2, 15, 16, 17, 47, 132}) {
                for (const int side : {1, 2, 31, 200}) {
                    const TestImage expected;
                    Rastrel_Copy(expected, whole);
                    ASSERT_EQ(Rastrel_ExtractPortion(expected, x, y, side, side), 1);
                    const TestImage part;
                    ASSERT_EQ(Rastrel_ReadPartial(part, path.c_str(), -1, x, y, side, side), 1);
                    ASSERT_EQ(part.Fingerprint(), expected.Fingerprint())
                        << x << ' ' << y << ' ' << side << " code " << code;
                }
            }
        }
        const TestImage reduced;
        ASSERT_EQ(Rastrel_ReadPartialEx(reduced, path.c_str(), -1, 20, 30, 100, 1000, 4), 1);
        EXPECT_EQ(reduced.Width(), 25);
        EXPECT_EQ(reduced.Height(), 26);
        EXPECT_EQ(reduced.ColorAt(3, 25 - 5), whole.ColorAt(32, 132 - 50));
        const std::string before = reduced.Fingerprint();
        EXPECT_EQ(Rastrel_ReadPartial(reduced, path.c_str(), -1, 147, 0, 5, 5), 0);
        EXPECT_EQ(Rastrel_ReadPartialEx(reduced, path.c_str(), -1, 0, 133, 5, 5, 2), 0);
        EXPECT_EQ(reduced.Fingerprint(), before) << "nothing of it lies in the image";
    }
}

TEST(Jpeg, CutFilesReadOrFailWithoutHarm) {
    const TestFolder folder;
    const TestImage image(20, 18, 24);
    FillSmoothly(image);
    Rastrel_SetQuality(image, 90);
    const Bytes file = Saved(image, folder);
    std::size_t scan = 0;
    while (file[scan] != 0xff || file[scan + 1] != 0xda)
        ++scan;
    const TestImage cut(2, 2, 24);
    const std::string small = folder.Path("small.jpg");
    ASSERT_EQ(Rastrel_Save(cut, small.c_str(), -1), 1);
    ASSERT_EQ(Rastrel_Read(cut, small.c_str(), -1), 1);
    const std::string before = cut.Fingerprint();
    for (std::size_t length = 0; length < file.size(); ++length) {
        const std::string path = folder.Write("cut.jpg", {file.begin(), file.begin() + length});
        ASSERT_EQ(Rastrel_Read(cut, small.c_str(), -1), 1);
        const int result = Rastrel_Read(cut, path.c_str(), -1);
        // What is missing of the picture shows grey, as in other programs.
        if (length > scan + 14) {
            ASSERT_EQ(result, 1) << length;
        }
        if (length <= scan) {
            ASSERT_EQ(result, 0) << length;
        }
        if (result == 1) {
            ASSERT_EQ(cut.Width(), 20) << length;
        } else {
            ASSERT_EQ(cut.Fingerprint(), before) << length;
        }
    }
}

TEST(Jpeg, DamageDoesNoHarm) {
    const TestFolder folder;
    const TestImage image(40, 36, 24);
    FillWithPattern(image);
    Rastrel_SetQuality(image, 50);
    const Bytes file = Saved(image, folder);
    unsigned chance = 1;
    for (int i = 0; i < 2000; ++i) {
        Bytes damaged = file;
        for (int byte = 0; byte < 3; ++byte) {
            chance = chance * 1664525u + 1013904223u;
            damaged[chance / 64 % damaged.size()] = static_cast<std::uint8_t>(chance >> 24);
        }
        const TestImage read;
        const int result =
            Rastrel_Read(read, folder.Write("damaged.jpg", damaged).c_str(), RASTREL_TYPE_JPEG);
        ASSERT_EQ(Rastrel_GetRawImage(read) != nullptr, result == 1);
    }
}

TEST(Jpeg, ClaimsOfHugeSizesTakeNoMemory) {
    const TestFolder folder;
    const TestImage image(16, 16, 24);
    Bytes file = Saved(image, folder);
    const std::size_t field = MarkersOf(file).size_field;
    for (const int side : {65500, 65535}) {
        for (std::size_t i = 0; i < 4; i += 2) {
            file[field + i] = static_cast<std::uint8_t>(side >> 8);
            file[field + i + 1] = static_cast<std::uint8_t>(side);
        }
        const std::string path = folder.Write("huge.jpg", file);
        EXPECT_EQ(Rastrel_Read(image, path.c_str(), -1), 0) << side;
        EXPECT_EQ(Rastrel_ReadPartial(image, path.c_str(), -1, 0, 0, 65500, 65500), 0) << side;
    }
    EXPECT_EQ(image.Width(), 16);
}

TEST(Jpeg, SidesBeyondTheFormatAreRefused) {
    const TestFolder folder;
    const TestImage image(65501, 1, 8);
    EXPECT_EQ(Rastrel_Save(image, folder.Path("wide.jpg").c_str(), -1), 0);
    EXPECT_TRUE(folder.Names().empty());
}

/// Three bands of one image, of 16, 1 and 20 rows.
class Bands {
  public:
    explicit Bands(const TestImage& whole) {
        int y = 0;
        for (auto& [band, height] : bands_) {
            Rastrel_Copy(band, whole);
            EXPECT_EQ(Rastrel_ExtractPortion(band, 0, y, whole.Width(), height), 1);
            y += height;
        }
    }
    [[nodiscard]] const TestImage& operator[](std::size_t i) const { return bands_[i].image; }

  private:
    struct Band {
        TestImage image;
        int height;
    };
    std::array<Band, 3> bands_ = {{{{}, 16}, {{}, 1}, {{}, 20}}};
};

TEST(JpegBands, MakeTheFileThatTheWholeMakes) {
    const TestFolder folder;
    const std::string path = folder.Path("bands.jpg");
    for (const int depth : {8, 24, 32}) {
        const TestImage whole(23, 37, depth);
        FillWithPattern(whole);
        if (depth == 8) Rastrel_SetGrayPalette(whole);
        const Bands bands(whole);
        for (const auto& [given, taken] : {std::pair{80, 80}, {0, 1}, {-7, 1}, {100, 99}}) {
            const intptr_t writer = Rastrel_JPEGOpen(path.c_str(), given, 23, 37, bands[0]);
            ASSERT_NE(writer, 0);
            EXPECT_EQ(Rastrel_JPEGAppend(writer, bands[1]), 1);
            EXPECT_EQ(Rastrel_JPEGAppend(writer, bands[2]), 1);
            EXPECT_EQ(Rastrel_JPEGClose(writer, 0), 1);
            Rastrel_SetQuality(whole, depth == 8 ? 100 + taken : taken);
            EXPECT_EQ(FileBytes(path), Saved(whole, folder)) << depth << " bits, quality " << given;
        }
    }
}

TEST(JpegBands, GreyFilesTakeTheRedOfThePalette) {
    const TestFolder folder;
    const std::string path = folder.Path("bands.jpg");
    const TestImage band(8, 8, 8);
    SetPalette(band, {{80, 1, 2}, {170, 3, 4}});
    Rastrel_Fill(band, 170, 3, 4);
    const intptr_t writer = Rastrel_JPEGOpen(path.c_str(), 99, 8, 16, band);
    const TestImage shallow(8, 8, 1);
    SetPalette(shallow, {{80, 1, 2}, {170, 3, 4}});
    EXPECT_EQ(Rastrel_JPEGAppend(writer, shallow), 1);
    EXPECT_EQ(Rastrel_JPEGClose(writer, 0), 1);
    const TestImage read;
    ASSERT_EQ(Rastrel_Read(read, path.c_str(), -1), 1);
    EXPECT_EQ(Rastrel_GetIndex(read, 4, 12), 170);
    EXPECT_EQ(Rastrel_GetIndex(read, 4, 4), 80);
}

TEST(JpegBands, MixedBandsAreTakenWithoutHarm) {
    const TestFolder folder;
    const std::string path = folder.Path("bands.jpg");
    const TestImage grey(8, 8, 8);
    const TestImage colors(8, 8, 24);
    Rastrel_Fill(colors, 250, 20, 30);
    for (const auto& [first, second] : {std::pair{&grey, &colors}, {&colors, &grey}}) {
        const intptr_t writer = Rastrel_JPEGOpen(path.c_str(), 90, 8, 16, *first);
        ASSERT_NE(writer, 0);
        EXPECT_EQ(Rastrel_JPEGAppend(writer, *second), 1);
        EXPECT_EQ(Rastrel_JPEGClose(writer, 0), 1);
        const TestImage read;
        ASSERT_EQ(Rastrel_Read(read, path.c_str(), -1), 1);
        EXPECT_EQ(read.Depth(), first == &grey ? 8 : 24);
        EXPECT_EQ(read.Height(), 16);
    }
    // A shallow band repeats the last row of a file in colour.
    const TestImage read;
    ASSERT_EQ(Rastrel_Read(read, path.c_str(), -1), 1);
    EXPECT_GT(read.ColorAt(4, 2).value()[0], 230);
}

TEST(JpegBands, OpenRefusesWithoutAFile) {
    const TestFolder folder;
    const std::string path = folder.Path("no.jpg");
    const TestImage band(4, 2, 24);
    const TestImage empty;
    struct Case {
        const char* what;
        int width, height, handle;
    };
    for (const Case& c : {Case{"another width", 5, 2, band},
                          {"no height", 4, 0, band},
                          {"less than none", 4, -2, band},
                          {"beyond the format", 4, 65501, band},
                          {"no raster", 4, 2, empty},
                          {"no image", 4, 2, -1}})
        EXPECT_EQ(Rastrel_JPEGOpen(path.c_str(), 75, c.width, c.height, c.handle), 0) << c.what;
    EXPECT_EQ(Rastrel_JPEGOpen(nullptr, 75, 4, 2, band), 0);
    EXPECT_TRUE(folder.Names().empty());
    EXPECT_EQ(Rastrel_JPEGOpen(folder.Path("no/such/folder.jpg").c_str(), 75, 4, 2, band), 0);
}

TEST(JpegBands, HeightsThatDoNotAddUp) {
    const TestFolder folder;
    const std::string path = folder.Path("bands.jpg");
    const TestImage band(4, 2, 24);
    const TestImage wide(5, 2, 24);
    intptr_t writer = Rastrel_JPEGOpen(path.c_str(), 75, 4, 3, band);
    EXPECT_EQ(Rastrel_JPEGAppend(writer, wide), 0) << "another width";
    EXPECT_EQ(Rastrel_JPEGAppend(writer, -1), 0);
    EXPECT_EQ(Rastrel_JPEGAppend(writer + 1, band), 0);
    EXPECT_EQ(Rastrel_JPEGAppend(0, band), 0);
    EXPECT_EQ(Rastrel_JPEGAppend(writer, band), 1) << "its second row is dropped";
    EXPECT_EQ(Rastrel_JPEGAppend(writer, band), 1);
    EXPECT_EQ(Rastrel_JPEGClose(writer, 0), 1);
    EXPECT_EQ(MarkersOf(FileBytes(path)).height, 3);
    EXPECT_EQ(Rastrel_JPEGClose(writer, 0), 0);
    EXPECT_EQ(Rastrel_JPEGAppend(writer, band), 0);
    writer = Rastrel_JPEGOpen(path.c_str(), 75, 4, 3, band);
    EXPECT_EQ(Rastrel_JPEGClose(writer, 0), 0) << "a row is missing";
}

}  // namespace
}  // namespace rastrel_test
