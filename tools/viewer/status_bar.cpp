#include "status_bar.h"

#include <commctrl.h>

#include <algorithm>
#include <array>

namespace rastrel_view {

namespace {

constexpr int kUsualDots = 96;
/// Widths of the parts behind the first, at the usual dots an inch.
constexpr int kWorkWidth = 150;
constexpr int kZoomWidth = 64;
constexpr int kSizeWidth = 150;

int DotsPerInchOf(HWND window) {
    HDC device = GetDC(window);
    const int dots = GetDeviceCaps(device, LOGPIXELSY);
    ReleaseDC(window, device);
    return dots > 0 ? dots : kUsualDots;
}

}  // namespace

StatusBar::StatusBar(HWND parent)
    : window_(CreateWindowExA(0, STATUSCLASSNAMEA, "", WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0, 0,
                              0, 0, parent, nullptr, GetModuleHandleA(nullptr), nullptr)),
      dots_(DotsPerInchOf(parent)) {}

StatusBar::~StatusBar() {
    if (font_ != nullptr) DeleteObject(font_);
}

int StatusBar::Place(int parent_width) {
    const auto scaled = [this](int width) { return MulDiv(width, dots_, kUsualDots); };
    const int size_end = parent_width;
    const int zoom_end = std::max(size_end - scaled(kSizeWidth), 0);
    const int work_end = std::max(zoom_end - scaled(kZoomWidth), 0);
    const int pointer_end = std::max(work_end - scaled(kWorkWidth), 0);
    std::array<int, kPartCount> ends = {pointer_end, work_end, zoom_end, size_end};
    SendMessageA(window_, SB_SETPARTS, ends.size(), reinterpret_cast<LPARAM>(ends.data()));
    SendMessageA(window_, WM_SIZE, 0, 0);
    RECT rect = {};
    GetWindowRect(window_, &rect);
    return rect.bottom - rect.top;
}

void StatusBar::Set(Part part, const std::string& text) {
    SendMessageA(window_, SB_SETTEXTA, part, reinterpret_cast<LPARAM>(text.c_str()));
}

void StatusBar::SetDotsPerInch(int dots) {
    NONCLIENTMETRICSA metrics = {};
    metrics.cbSize = sizeof(metrics);
    if (!SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0)) return;
    LOGFONTA font = metrics.lfStatusFont;
    // The metrics are those of the screen that the program was started on.
    font.lfHeight = MulDiv(font.lfHeight, dots, DotsPerInchOf(nullptr));
    HFONT made = CreateFontIndirectA(&font);
    if (made == nullptr) return;
    SendMessageA(window_, WM_SETFONT, reinterpret_cast<WPARAM>(made), TRUE);
    if (font_ != nullptr) DeleteObject(font_);
    font_ = made;
    dots_ = dots;
}

}  // namespace rastrel_view
