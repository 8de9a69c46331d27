// What only a DLL has: its resources, and its functions under the names that hosts look up.

#include <windows.h>

#include "support/images.h"

namespace rastrel_test {
namespace {

HMODULE Module() {
    return GetModuleHandleA("rastrel.dll");
}

TEST(Dll, CarriesAVersionResource) {
    std::array<char, MAX_PATH> path = {};
    ASSERT_GT(GetModuleFileNameA(Module(), path.data(), static_cast<DWORD>(path.size())), 0u);
    DWORD unused = 0;
    const DWORD size = GetFileVersionInfoSizeA(path.data(), &unused);
    ASSERT_GT(size, 0u);
    Bytes info(size);
    ASSERT_TRUE(GetFileVersionInfoA(path.data(), 0, size, info.data()));
    void* value = nullptr;
    UINT length = 0;
    ASSERT_TRUE(
        VerQueryValueA(info.data(), "\\StringFileInfo\\040904B0\\ProductName", &value, &length));
    EXPECT_STREQ(static_cast<const char*>(value), "Rastrel");
    ASSERT_TRUE(
        VerQueryValueA(info.data(), "\\StringFileInfo\\040904B0\\ProductVersion", &value, &length));
    EXPECT_STREQ(static_cast<const char*>(value), RASTREL_VERSION);
}

TEST(Dll, GivesItsFunctionsByName) {
    const FARPROC plain = GetProcAddress(Module(), "Rastrel_Create");
    ASSERT_NE(plain, nullptr);
#if !defined(_WIN64)
    EXPECT_EQ(GetProcAddress(Module(), "_Rastrel_Create@16"), plain);
#endif
    EXPECT_EQ(GetProcAddress(Module(), "Rastrel_Create@16"), nullptr);
}

TEST(Dll, KeepsBlocksInGlobalMemory) {
    const TestImage image(10, 10, 24);
    HGLOBAL block = GlobalHandle(Rastrel_GetRawImage(image) - 40);
    ASSERT_NE(block, nullptr) << "the block starts with its header";
    EXPECT_GE(GlobalSize(block), 1064u + 32u * 10u);
}

TEST(Dll, TakesHandlesOfTheSystem) {
    // The header's types are the system's own: this compiles, and a null device draws nothing.
    HDC device = nullptr;
    RastrelDC same = device;
    RastrelWindow window = HWND(nullptr);
    RastrelBitmap bitmap = HBITMAP(nullptr);
    EXPECT_EQ(same, nullptr);
    EXPECT_EQ(window, nullptr);
    EXPECT_EQ(bitmap, nullptr);
    EXPECT_EQ(Rastrel_CreateFromBitmap(-1, bitmap), 0);
}

}  // namespace
}  // namespace rastrel_test
