// Handles, the table behind them, and plain array allocation.

#include <atomic>
#include <functional>
#include <limits>
#include <thread>

#include "support/images.h"

namespace rastrel_test {
namespace {

TEST(Registry, GivesTheLowestFreeHandle) {
    std::vector<int> handles;
    for (int i = 0; i < 4; ++i)
        handles.push_back(Rastrel_New());
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(handles[static_cast<std::size_t>(i)], handles[0] + i);

    EXPECT_EQ(Rastrel_Delete(handles[1]), 1);
    EXPECT_EQ(Rastrel_New(), handles[1]);

    EXPECT_EQ(Rastrel_Delete(handles[0]), 1);
    EXPECT_EQ(Rastrel_Delete(handles[2]), 1);
    EXPECT_EQ(Rastrel_New(), handles[0]);
    EXPECT_EQ(Rastrel_New(), handles[2]);
    for (const int handle : handles)
        EXPECT_EQ(Rastrel_Delete(handle), 1);
}

TEST(Registry, DeletesOnce) {
    const int handle = Rastrel_New();
    EXPECT_EQ(Rastrel_Delete(handle), 1);
    EXPECT_EQ(Rastrel_Delete(handle), 0);
    EXPECT_EQ(Rastrel_Delete(-1), 0);
    EXPECT_EQ(Rastrel_Delete(handle + 1000), 0);
}

TEST(Registry, FailedCreateFreesTheHandleAndTheOthersKeepIt) {
    const int handle = Rastrel_New();
    EXPECT_EQ(Rastrel_Create(handle, 0, 10, 8), 0);
    EXPECT_EQ(Rastrel_Delete(handle), 0);
    EXPECT_EQ(Rastrel_New(), handle);

    EXPECT_EQ(Rastrel_Create(handle, 4, 4, 8), 1);
    EXPECT_EQ(Rastrel_CreateFromByte(handle, nullptr, 4, 4), 0);
    EXPECT_EQ(Rastrel_GetWidth(handle), 0) << "the old image must be gone";
    EXPECT_EQ(Rastrel_GetImageType(handle), -1);
    EXPECT_EQ(Rastrel_Delete(handle), 1);
}

TEST(Registry, CreateRefusesImpossibleSizes) {
    struct Case {
        int width, height, bits;
    };
    const int kMost = std::numeric_limits<int>::max();
    for (const Case& c : {Case{0, 1, 8},
                          {1, 0, 8},
                          {-1, 1, 24},
                          {1, -5, 24},
                          {1, 1, 0},
                          {1, 1, 2},
                          {1, 1, 16},
                          {1, 1, -8},
                          {kMost, kMost, 32},
                          {kMost, 1, 24},
                          {30000, 30000, 24},
                          {1, kMost, 1}}) {
        const int handle = Rastrel_New();
        EXPECT_EQ(Rastrel_Create(handle, c.width, c.height, c.bits), 0)
            << c.width << " x " << c.height << " x " << c.bits;
        EXPECT_EQ(Rastrel_Delete(handle), 0);
    }
}

/// Every function that takes a handle, with harmless other arguments.
std::vector<std::pair<const char*, std::function<std::intptr_t(int)>>> HandleFunctions() {
    static std::array<std::uint8_t, 4096> bytes;
    static std::array<std::int16_t, 16> shorts;
    static std::array<std::int32_t, 16> ints;
    static std::array<float, 16> floats;
    static std::array<char, 64> text;
    std::uint8_t* b = bytes.data();
    const auto address = [](const void* pointer) {
        return reinterpret_cast<std::intptr_t>(pointer);
    };
    return {
        {"Delete", [](int h) { return Rastrel_Delete(h); }},
        {"Create", [](int h) { return Rastrel_Create(h, 2, 2, 8); }},
        {"CreateFromByte", [b](int h) { return Rastrel_CreateFromByte(h, b, 2, 2); }},
        {"CreateFromByte24", [b](int h) { return Rastrel_CreateFromByte24(h, b, 2, 2); }},
        {"CreateFromByte32", [b](int h) { return Rastrel_CreateFromByte32(h, b, 2, 2); }},
        {"CreateFromShort", [](int h) { return Rastrel_CreateFromShort(h, shorts.data(), 2, 2); }},
        {"CreateFromInt", [](int h) { return Rastrel_CreateFromInt(h, ints.data(), 2, 2); }},
        {"CreateFromFloat", [](int h) { return Rastrel_CreateFromFloat(h, floats.data(), 2, 2); }},
        {"CreateFrom3Bands", [](int h) { return Rastrel_CreateFrom3Bands(h, h, h, h); }},
        {"Copy", [](int h) { return Rastrel_Copy(h, h); }},
        {"Read", [](int h) { return Rastrel_Read(h, "missing.bmp", -1); }},
        {"Read3", [](int h) { return Rastrel_Read3(h, "missing.bmp", "", "", -1); }},
        {"ReadPartial",
         [](int h) { return Rastrel_ReadPartial(h, "missing.bmp", -1, 0, 0, 1, 1); }},
        {"ReadPartialEx",
         [](int h) { return Rastrel_ReadPartialEx(h, "missing.bmp", -1, 0, 0, 1, 1, 1); }},
        {"Save", [](int h) { return Rastrel_Save(h, "never.bmp", -1); }},
        {"GetImageType", [](int h) { return Rastrel_GetImageType(h); }},
        {"GetDescription", [](int h) { return Rastrel_GetDescription(h, text.data(), 64); }},
        {"SetQuality", [](int h) { return Rastrel_SetQuality(h, 5); }},
        {"GetQuality", [](int h) { return Rastrel_GetQuality(h); }},
        {"GetWidth", [](int h) { return Rastrel_GetWidth(h); }},
        {"GetHeight", [](int h) { return Rastrel_GetHeight(h); }},
        {"GetDepth", [](int h) { return Rastrel_GetDepth(h); }},
        {"GetEffWidth", [](int h) { return Rastrel_GetEffWidth(h); }},
        {"GetRawImage", [address](int h) { return address(Rastrel_GetRawImage(h)); }},
        {"GetIndex", [](int h) { return Rastrel_GetIndex(h, 0, 0); }},
        {"SetIndex", [](int h) { return Rastrel_SetIndex(h, 0, 0, 1); }},
        {"GetRGB", [b](int h) { return Rastrel_GetRGB(h, 0, 0, b, b, b); }},
        {"SetRGB", [](int h) { return Rastrel_SetRGB(h, 0, 0, 1, 2, 3); }},
        {"Fill", [](int h) { return Rastrel_Fill(h, 1, 2, 3); }},
        {"GetTransparentColor", [b](int h) { return Rastrel_GetTransparentColor(h, b, b, b); }},
        {"GetImageByte", [b](int h) { return Rastrel_GetImageByte(h, b, 8, 0, 0, 2, 2); }},
        {"ExtractPortion", [](int h) { return Rastrel_ExtractPortion(h, 0, 0, 1, 1); }},
        {"SetPalette", [b](int h) { return Rastrel_SetPalette(h, 2, b, b, b); }},
        {"GetPalette", [b](int h) { return Rastrel_GetPalette(h, 2, b, b, b); }},
        {"CopyPalette", [](int h) { return Rastrel_CopyPalette(h, h); }},
        {"SetGrayPalette", [](int h) { return Rastrel_SetGrayPalette(h); }},
        {"Conv8To24", [](int h) { return Rastrel_Conv8To24(h); }},
        {"Conv1To8", [](int h) { return Rastrel_Conv1To8(h); }},
        {"Conv8To1", [](int h) { return Rastrel_Conv8To1(h); }},
        {"Copy2HBitmap", [address](int h) { return address(Rastrel_Copy2HBitmap(h)); }},
    };
}

TEST(Registry, BadHandlesGiveTheFailureValue) {
    const int deleted = Rastrel_New();
    Rastrel_Delete(deleted);
    for (const auto& [name, call] : HandleFunctions()) {
        for (const int handle : {-1, deleted, 1000000, std::numeric_limits<int>::min(),
                                 std::numeric_limits<int>::max()})
            EXPECT_EQ(call(handle), 0) << name << " on " << handle;
    }
}

TEST(Registry, EmptyImagesHaveNoPixelsToGive) {
    for (const auto& [name, call] : HandleFunctions()) {
        const std::string function = name;
        // These work on an image without a raster, say so otherwise, or end it.
        if (function.starts_with("Create") || function == "Delete" || function == "GetImageType" ||
            function == "GetImageByte")
            continue;
        const TestImage empty;
        EXPECT_EQ(call(empty), 0) << name;
    }
    EXPECT_EQ(Rastrel_GetImageType(TestImage()), -1);
    EXPECT_EQ(Rastrel_GetImageByte(TestImage(), nullptr, 8, 0, 0, 2, 2), 1);
}

TEST(Registry, FetchesEveryHandleBeforeAnyWork) {
    const TestImage target(3, 3, 8);
    const TestImage band(2, 2, 8);
    const std::string before = target.Fingerprint();
    EXPECT_EQ(Rastrel_Copy(target, -1), 0);
    EXPECT_EQ(Rastrel_CopyPalette(target, 12345), 0);
    EXPECT_EQ(Rastrel_CreateFrom3Bands(target, band, band, -1), 0);
    EXPECT_EQ(Rastrel_CreateFrom3Bands(target, band, 12345, band), 0);
    EXPECT_EQ(target.Fingerprint(), before);
}

TEST(Arrays, HoldWhatTheyAreAskedFor) {
    std::uint8_t* bytes = Rastrel_CreateArrayByte(7, 11);
    std::int16_t* shorts = Rastrel_CreateArrayShort(7, 11);
    std::int32_t* ints = Rastrel_CreateArrayInt(7, 11);
    float* floats = Rastrel_CreateArrayFloat(7, 11);
    ASSERT_TRUE(bytes && shorts && ints && floats);
    // Written from end to end: a sanitizer or the heap itself tells when one is too short.
    for (int i = 0; i < 77; ++i) {
        bytes[i] = 1;
        shorts[i] = 2;
        ints[i] = 3;
        floats[i] = 4;
    }
    Rastrel_DeleteArrayByte(bytes);
    Rastrel_DeleteArrayShort(shorts);
    Rastrel_DeleteArrayInt(ints);
    Rastrel_DeleteArrayFloat(floats);
    Rastrel_DeleteArrayFloat(nullptr);
}

TEST(Arrays, RefuseSizesThatNoHeapHas) {
    const int kMost = std::numeric_limits<int>::max();
    EXPECT_EQ(Rastrel_CreateArrayByte(-1, 10), nullptr);
    EXPECT_EQ(Rastrel_CreateArrayShort(10, -1), nullptr);
    EXPECT_EQ(Rastrel_CreateArrayInt(-4, -4), nullptr);
    EXPECT_EQ(Rastrel_CreateArrayFloat(kMost, kMost), nullptr);
    std::uint8_t* none = Rastrel_CreateArrayByte(0, 10);
    EXPECT_NE(none, nullptr);
    Rastrel_DeleteArrayByte(none);
}

TEST(Settings, AreAcceptedFromAnyThread) {
    int counter = 5;
    std::thread other([] { Rastrel_ProcessECWMessage(0); });
    Rastrel_SetPtrNumeroVisualizzazione(&counter);
    Rastrel_SetPtrNumeroVisualizzazione(nullptr);
    Rastrel_SetMainframeHandle(nullptr);
    other.join();
    Rastrel_ProcessECWMessage(1);
    EXPECT_EQ(Rastrel_SetImageHandle(-7, 9), 1);
    EXPECT_EQ(counter, 5);
}

/// One thread's life: images made, changed, saved, read, copied and deleted, and nothing of it seen
/// by the others. Returns how often something was not as it should be.
int WorkOnOwnImages(const TestFolder& folder, int number) {
    int wrong = 0;
    const auto check = [&wrong](bool right) { wrong += right ? 0 : 1; };
    const std::string name = folder.Path(std::to_string(number) + ".qvi");
    for (int round = 0; round < 30; ++round) {
        const int first = Rastrel_New();
        const int second = Rastrel_New();
        check(Rastrel_Create(first, 40 + number, 20, 24) == 1);
        check(Rastrel_Fill(first, number, round, 7) == 1);
        check(Rastrel_SetRGB(first, 3, 3, 1, 2, number) == 1);
        check(Rastrel_Save(first, name.c_str(), -1) == 1);
        check(Rastrel_Read(second, name.c_str(), -1) == 1);
        check(Rastrel_GetWidth(second) == 40 + number);
        std::uint8_t blue = 0;
        check(Rastrel_GetRGB(second, 3, 3, nullptr, nullptr, &blue) == 1 && blue == number);
        check(Rastrel_Copy(first, second) == 1);
        check(Rastrel_Create(second, 5, 5, 8) == 1);
        check(Rastrel_Delete(first) == 1);
        check(Rastrel_Delete(second) == 1);
    }
    return wrong;
}

/// The same for files of every format. All readers are at work at once.
int WorkOnOwnFiles(const TestFolder& folder, int number) {
    int wrong = 0;
    const auto check = [&wrong](bool right) { wrong += right ? 0 : 1; };
    for (int round = 0; round < 5; ++round) {
        for (const char* format : {"bmp", "qvi", "tif", "png", "jpg", "jp2", "gif", "bip"}) {
            const std::string name = folder.Path(std::to_string(number) + "." + format);
            const TestImage image(30 + number, 20, format == std::string("gif") ? 8 : 24);
            if (image.Depth() == 8) check(Rastrel_SetGrayPalette(image) == 1);
            check(Rastrel_Fill(image, 100 + number, 100 + number, 100 + number) == 1);
            check(Rastrel_Save(image, name.c_str(), -1) == 1);
            const TestImage read;
            check(Rastrel_Read(read, name.c_str(), -1) == 1);
            check(read.Width() == 30 + number);
            check(read.ColorAt(5, 5) == Rgb{100 + number, 100 + number, 100 + number} ||
                  format == std::string("jpg"));
        }
    }
    return wrong;
}

TEST(Registry, ThreadsOnDifferentHandlesDoNotMeet) {
    for (const auto work : {WorkOnOwnImages, WorkOnOwnFiles}) {
        const TestFolder folder;
        std::atomic<int> wrong{0};
        std::vector<std::thread> threads;
        for (int number = 0; number < 8; ++number)
            threads.emplace_back([&, number] { wrong += work(folder, number); });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(wrong, 0);
    }
}

TEST(Registry, DeletingAnImageInUseLetsTheCallFinish) {
    // Reading alone is no work on the image from two threads; the table must keep it alive.
    for (int round = 0; round < 200; ++round) {
        const int handle = Rastrel_New();
        ASSERT_EQ(Rastrel_CreateFromByte(handle, Bytes(64 * 64, 9).data(), 64, 64), 1);
        std::atomic<bool> started{false};
        std::thread reader([&] {
            Bytes out(64 * 64 * 3);
            started = true;
            while (Rastrel_GetImageByte(handle, out.data(), 24, 0, 0, 64, 64) == 1) {
            }
        });
        while (!started) {
        }
        EXPECT_EQ(Rastrel_Delete(handle), 1);
        reader.join();
    }
}

}  // namespace
}  // namespace rastrel_test
