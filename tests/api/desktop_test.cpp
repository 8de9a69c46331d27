// Bitmaps, the clipboard and windows of Windows, and that no handle of the system is left behind.

#include <windows.h>

#include <functional>

#include "support/images.h"
#include "support/messages.h"

namespace rastrel_test {
namespace {

using Colors = std::vector<Rgb>;

/// A bitmap, deleted with its owner.
class TestBitmap {
  public:
    explicit TestBitmap(HBITMAP bitmap) : bitmap_(bitmap) {}
    TestBitmap(const TestBitmap&) = delete;
    TestBitmap& operator=(const TestBitmap&) = delete;
    ~TestBitmap() { DeleteObject(bitmap_); }
    [[nodiscard]] HBITMAP Get() const { return bitmap_; }

  private:
    HBITMAP bitmap_;
};

/// A bitmap's colours as the system tells them, the bottom row first.
Colors ColorsOf(HBITMAP bitmap, int width, int height) {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    Bytes pixels(static_cast<std::size_t>(width * height) * 4);
    HDC screen = GetDC(nullptr);
    EXPECT_EQ(GetDIBits(screen, bitmap, 0, static_cast<UINT>(height), pixels.data(), &info,
                        DIB_RGB_COLORS),
              height);
    ReleaseDC(nullptr, screen);
    Colors colors;
    for (std::size_t i = 0; i < pixels.size(); i += 4)
        colors.push_back({pixels[i + 2], pixels[i + 1], pixels[i]});
    return colors;
}

Colors ColorsOf(const TestImage& image) {
    Colors colors;
    for (int y = 0; y < image.Height(); ++y) {
        for (int x = 0; x < image.Width(); ++x)
            colors.push_back(image.ColorAt(x, y).value());
    }
    return colors;
}

/// An image with a pattern and, up to 8 bits, a palette.
void Paint(const TestImage& image) {
    FillWithPattern(image);
    if (image.Depth() > 8) return;
    Colors colors;
    for (int i = 0; i < 1 << image.Depth(); ++i)
        colors.push_back({i, 255 - i / 2, (i * 7 + 3) % 250});
    ASSERT_EQ(SetPalette(image, colors), 1);
}

TEST(Bitmap, HasTheImagesPixelsAndGivesThemBack) {
    for (const int bits : {1, 4, 8, 24, 32}) {
        const TestImage image(13, 7, bits);
        Paint(image);
        const TestBitmap bitmap(Rastrel_Copy2HBitmap(image));
        ASSERT_NE(bitmap.Get(), nullptr);
        EXPECT_EQ(ColorsOf(bitmap.Get(), 13, 7), ColorsOf(image)) << bits << " bits";
        const TestImage again;
        ASSERT_EQ(Rastrel_CreateFromBitmap(again, bitmap.Get()), 1);
        EXPECT_EQ(again.Depth(), 32) << "the screen's";
        EXPECT_EQ(Rastrel_GetImageType(again), RASTREL_TYPE_BMP);
        EXPECT_EQ(ColorsOf(again), ColorsOf(image)) << bits << " bits";
        EXPECT_EQ(again.StoredBytes().at(3), 255) << "opaque";
    }
}

TEST(Bitmap, KeepsIndicesAndColoursOfShallowOnes) {
    for (const int bits : {1, 4, 8}) {
        const std::size_t count = std::size_t{1} << bits;
        struct {
            BITMAPINFOHEADER header;
            std::array<RGBQUAD, 256> colors;
        } info = {};
        info.header.biSize = sizeof info.header;
        info.header.biWidth = 5;
        info.header.biHeight = 2;
        info.header.biPlanes = 1;
        info.header.biBitCount = static_cast<WORD>(bits);
        Colors palette;
        for (std::size_t i = 0; i < count; ++i) {
            info.colors[i] = {static_cast<BYTE>(i), static_cast<BYTE>(100 + i % 100), 7, 0};
            palette.push_back({7, 100 + static_cast<int>(i % 100), static_cast<int>(i)});
        }
        void* rows = nullptr;
        const TestBitmap bitmap(CreateDIBSection(nullptr, reinterpret_cast<BITMAPINFO*>(&info),
                                                 DIB_RGB_COLORS, &rows, nullptr, 0));
        ASSERT_NE(bitmap.Get(), nullptr);
        Bytes stored(16, 0);
        for (const std::size_t i : {0, 1, 8, 9})
            stored[i] = static_cast<std::uint8_t>(0xa5 + 17 * i);
        std::copy(stored.begin(), stored.begin() + (bits == 8 ? 16 : 8),
                  static_cast<std::uint8_t*>(rows));
        const TestImage image;
        ASSERT_EQ(Rastrel_CreateFromBitmap(image, bitmap.Get()), 1);
        EXPECT_EQ(image.Depth(), bits);
        EXPECT_EQ(image.Palette(), palette);
        EXPECT_EQ(Rastrel_GetIndex(image, 0, 0), 0xa5 >> (8 - bits));
        EXPECT_EQ(ColorsOf(image), ColorsOf(bitmap.Get(), 5, 2)) << bits << " bits";
    }
}

TEST(Bitmap, IsNoneFromWhatIsNone) {
    const TestImage image(3, 3, 24);
    EXPECT_EQ(Rastrel_CreateFromBitmap(image, nullptr), 0);
    EXPECT_EQ(Rastrel_GetImageType(image), -1) << "an empty image stays";
    auto* brush = static_cast<HBITMAP>(GetStockObject(WHITE_BRUSH));
    EXPECT_EQ(Rastrel_CreateFromBitmap(image, brush), 0);
    EXPECT_EQ(Rastrel_Copy2HBitmap(image), nullptr);
    EXPECT_EQ(Rastrel_CopyToClipboard(image, nullptr), 0);
}

TEST(Bitmap, ThatTheSystemRefusesIsTold) {
    // A single row, a gibibit as an image and four gibibytes as a bitmap of the screen's depth.
    const TestImage image(1 << 30, 1, 1);
    HBITMAP bitmap = nullptr;
    const std::string message = MessageOf([&] { bitmap = Rastrel_Copy2HBitmap(image); });
    EXPECT_EQ(bitmap, nullptr);
    EXPECT_NE(message, "");
}

/// A window of the test's with four coloured quarters, above all others.
class TestWindow {
  public:
    static constexpr int kWidth = 120;
    static constexpr int kHeight = 80;
    static constexpr std::array<COLORREF, 4> kColors = {RGB(200, 10, 20), RGB(30, 180, 40),
                                                        RGB(50, 60, 220), RGB(240, 230, 70)};

    TestWindow(DWORD style, int x, int y) {
        WNDCLASSA kind = {};
        kind.lpfnWndProc = &Procedure;
        kind.hInstance = GetModuleHandleA(nullptr);
        kind.lpszClassName = "RastrelTestWindow";
        RegisterClassA(&kind);
        RECT rect = {0, 0, kWidth, kHeight};
        AdjustWindowRectEx(&rect, style, FALSE, WS_EX_TOPMOST);
        window_ = CreateWindowExA(WS_EX_TOPMOST, kind.lpszClassName, "test", style | WS_VISIBLE, x,
                                  y, rect.right - rect.left, rect.bottom - rect.top, nullptr,
                                  nullptr, kind.hInstance, nullptr);
        EXPECT_NE(window_, nullptr);
    }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;
    ~TestWindow() { DestroyWindow(window_); }

    [[nodiscard]] HWND Get() const { return window_; }

    /// The colour at a place of the client area.
    [[nodiscard]] static Rgb At(int x, int y) {
        const COLORREF color =
            kColors[static_cast<std::size_t>((x < kWidth / 2 ? 0 : 1) + (y < kHeight / 2 ? 0 : 2))];
        return {GetRValue(color), GetGValue(color), GetBValue(color)};
    }

    /// Tries until a check holds, for some seconds: other tests show windows meanwhile.
    [[nodiscard]] bool Comes(const std::function<bool()>& check) const {
        for (int i = 0; i < 50; ++i) {
            SetWindowPos(window_, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
            InvalidateRect(window_, nullptr, FALSE);
            Pump(100);
            if (check()) return true;
        }
        return false;
    }

  private:
    static void Pump(DWORD milliseconds) {
        const DWORD end = GetTickCount() + milliseconds;
        do {
            MSG message;
            while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != 0)
                DispatchMessageA(&message);
            Sleep(10);
        } while (static_cast<int>(end - GetTickCount()) > 0);
    }

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
        if (message != WM_PAINT) return DefWindowProcA(window, message, wparam, lparam);
        PAINTSTRUCT paint;
        HDC device = BeginPaint(window, &paint);
        for (int quarter = 0; quarter < 4; ++quarter) {
            const int left = quarter % 2 * kWidth / 2;
            const int top = quarter / 2 * kHeight / 2;
            const RECT rect = {left, top, left + kWidth / 2, top + kHeight / 2};
            HBRUSH brush = CreateSolidBrush(kColors[static_cast<std::size_t>(quarter)]);
            FillRect(device, &rect, brush);
            DeleteObject(brush);
        }
        EndPaint(window, &paint);
        return 0;
    }

    HWND window_;
};

/// Tests of both kinds of programs may run at the same time on one screen.
constexpr int kLeft = sizeof(void*) == 8 ? 100 : 500;

/// Whether an image shows the window's client area from a place of it on.
bool Shows(const TestImage& image, int width, int height, int x, int y) {
    if (image.Width() != width || image.Height() != height) return false;
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            if (image.ColorAt(column, height - 1 - row) != TestWindow::At(x + column, y + row))
                return false;
        }
    }
    return true;
}

TEST(Capture, ShowsTheWholeWindow) {
    const TestWindow window(WS_POPUP, kLeft, 50);
    const TestImage image;
    EXPECT_TRUE(window.Comes([&] {
        return Rastrel_CreateFromWindow(image, window.Get()) == 1 &&
               Shows(image, TestWindow::kWidth, TestWindow::kHeight, 0, 0);
    }));
    EXPECT_EQ(Rastrel_GetImageType(image), RASTREL_TYPE_BMP);
}

TEST(Capture, ShowsRectanglesOfWindowAndClientArea) {
    const TestWindow window(WS_OVERLAPPED | WS_CAPTION, kLeft, 200);
    RECT whole = {};
    GetWindowRect(window.Get(), &whole);
    POINT origin = {0, 0};
    ClientToScreen(window.Get(), &origin);
    const int frame_x = static_cast<int>(origin.x - whole.left);
    const int frame_y = static_cast<int>(origin.y - whole.top);
    ASSERT_GT(frame_y, 0) << "the caption";
    struct Case {
        const char* what;
        int x, y, width, height, client;
        int shown_x, shown_y, shown_width, shown_height;
    };
    const Case cases[] = {
        {"the client area", 0, 0, -1, -1, 1, 0, 0, TestWindow::kWidth, TestWindow::kHeight},
        {"a part of it", 50, 30, 20, 25, 1, 50, 30, 20, 25},
        {"to its edges", 100, 70, -1, -1, 7, 100, 70, 20, 10},
        {"relative to the window", frame_x + 5, frame_y + 6, 70, 50, 0, 5, 6, 70, 50},
    };
    for (const Case& c : cases) {
        const TestImage image;
        EXPECT_TRUE(window.Comes([&] {
            return Rastrel_CreateFromWindowEX(image, window.Get(), c.x, c.y, c.width, c.height,
                                              c.client) == 1 &&
                   Shows(image, c.shown_width, c.shown_height, c.shown_x, c.shown_y);
        })) << c.what;
    }
    const TestImage image;
    EXPECT_EQ(Rastrel_CreateFromWindowEX(image, window.Get(), 0, 0, -1, -1, 0), 1);
    EXPECT_EQ(image.Width(), whole.right - whole.left);
    EXPECT_EQ(image.Height(), whole.bottom - whole.top);
}

TEST(Capture, LeavesOutWhatIsOffTheScreen) {
    const int y = sizeof(void*) == 8 ? 400 : 500;
    const TestWindow window(WS_POPUP, -50, y);
    const TestImage image;
    EXPECT_TRUE(window.Comes([&] {
        return Rastrel_CreateFromWindow(image, window.Get()) == 1 &&
               Shows(image, TestWindow::kWidth - 50, TestWindow::kHeight, 50, 0);
    }));
    const TestWindow outside(WS_POPUP, -500, 0);
    EXPECT_EQ(Rastrel_CreateFromWindow(image, outside.Get()), 0);
}

TEST(Capture, FailsWithoutAWindowOrARectangle) {
    const TestImage image(3, 3, 24);
    EXPECT_EQ(Rastrel_CreateFromWindow(image, nullptr), 0);
    EXPECT_EQ(Rastrel_GetImageType(image), -1);
    EXPECT_EQ(Rastrel_CreateFromWindow(-1, GetDesktopWindow()), 0);
    const TestWindow window(WS_POPUP, kLeft, 50);
    for (const int size : {0, -2, std::numeric_limits<int>::min()})
        EXPECT_EQ(Rastrel_CreateFromWindowEX(image, window.Get(), 0, 0, size, 10, 0), 0) << size;
    EXPECT_EQ(Rastrel_CreateFromWindowEX(image, window.Get(), 121, 0, -1, 10, 0), 0);
}

TEST(Clipboard, HoldsTheImage) {
    const TestWindow window(WS_POPUP, kLeft, 50);
    for (const int bits : {1, 4, 8, 24, 32}) {
        const TestImage image(13, 7, bits);
        Paint(image);
        const TestImage pasted;
        EXPECT_TRUE(window.Comes([&] {
            if (Rastrel_CopyToClipboard(image, window.Get()) != 1) return false;
            if (OpenClipboard(window.Get()) == 0) return false;
            auto* bitmap = static_cast<HBITMAP>(GetClipboardData(CF_BITMAP));
            const bool made = Rastrel_CreateFromBitmap(pasted, bitmap) == 1;
            CloseClipboard();
            return made && ColorsOf(pasted) == ColorsOf(image);
        })) << bits
            << " bits";
    }
    EXPECT_EQ(Rastrel_CopyToClipboard(-1, window.Get()), 0);
}

/// How many graphics objects there are: told by the system or, where it does not tell, read off the
/// table's end when so many more are made that no place in it stays free.
int ObjectCount() {
    const DWORD told = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    if (told != 0) return static_cast<int>(told);
    std::array<HPEN, 1000> pens = {};
    std::uintptr_t end = 0;
    for (HPEN& pen : pens) {
        pen = CreatePen(PS_SOLID, 1, RGB(1, 2, 3));
        end = std::max(end, reinterpret_cast<std::uintptr_t>(pen) & 0xffff);
    }
    for (HPEN pen : pens)
        DeleteObject(pen);
    return static_cast<int>(end - pens.size());
}

TEST(Desktop, LeavesNoObjectBehind) {
    const TestWindow window(WS_POPUP, kLeft, 50);
    const TestImage image(20, 10, 8);
    Paint(image);
    const TestImage made;
    HDC screen = GetDC(nullptr);
    HDC device = CreateCompatibleDC(screen);
    const auto round = [&] {
        Rastrel_Draw(image, device, 0, 0, -1, -1, 0, 0);
        Rastrel_Stretch(image, device, 0, 0, -1, -1, 0, 0, -1, -1);
        const TestBitmap bitmap(Rastrel_Copy2HBitmap(image));
        Rastrel_CreateFromBitmap(made, bitmap.Get());
        Rastrel_CreateFromWindow(made, window.Get());
        Rastrel_CreateFromWindowEX(made, window.Get(), 1, 1, 5, 5, 1);
        Rastrel_CreateFromWindow(made, nullptr);
        Rastrel_CreateFromBitmap(made, nullptr);
    };
    for (int i = 0; i < 10; ++i)
        round();
    const int before = ObjectCount();
    for (int i = 0; i < 1000; ++i)
        round();
    EXPECT_LT(ObjectCount(), before + 20);
    for (int i = 0; i < 1000; ++i)
        Rastrel_CopyToClipboard(image, window.Get());
    EXPECT_LT(ObjectCount(), before + 20);
    DeleteDC(device);
    ReleaseDC(nullptr, screen);
}

}  // namespace
}  // namespace rastrel_test
