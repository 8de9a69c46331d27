#include <algorithm>
#include <cstdint>
#include <optional>

#include "display/desktop.h"
#include "display/win32/device_contexts.h"
#include "display/win32/gdi_objects.h"

namespace rastrel {

namespace {

constexpr int kToTheEdge = -1;

/// A rectangle on the screen, wide enough for whatever a host asks for.
struct ScreenRect {
    std::int64_t left;
    std::int64_t top;
    std::int64_t right;
    std::int64_t bottom;
};

std::optional<RECT> AreaOnScreen(HWND window, WindowArea area) {
    RECT rect = {};
    if (area == WindowArea::kWhole) {
        if (GetWindowRect(window, &rect) == 0) return std::nullopt;
        return rect;
    }
    POINT origin = {0, 0};
    if (GetClientRect(window, &rect) == 0 || ClientToScreen(window, &origin) == 0)
        return std::nullopt;
    OffsetRect(&rect, origin.x, origin.y);
    return rect;
}

ScreenRect PartOf(const RECT& area, const Rect& part) {
    const std::int64_t left = std::int64_t{area.left} + part.x;
    const std::int64_t top = std::int64_t{area.top} + part.y;
    return {left, top, part.width == kToTheEdge ? area.right : left + part.width,
            part.height == kToTheEdge ? area.bottom : top + part.height};
}

/// What a screen shows of a rectangle: with any of it outside, the system may copy nothing but
/// black.
Rect OnScreen(const ScreenRect& rect) {
    const std::int64_t screen_left = GetSystemMetrics(SM_XVIRTUALSCREEN);
    const std::int64_t screen_top = GetSystemMetrics(SM_YVIRTUALSCREEN);
    const std::int64_t left = std::max(rect.left, screen_left);
    const std::int64_t top = std::max(rect.top, screen_top);
    const std::int64_t right =
        std::min(rect.right, screen_left + GetSystemMetrics(SM_CXVIRTUALSCREEN));
    const std::int64_t bottom =
        std::min(rect.bottom, screen_top + GetSystemMetrics(SM_CYVIRTUALSCREEN));
    if (left >= right || top >= bottom) return {};
    return {static_cast<int>(left), static_cast<int>(top), static_cast<int>(right - left),
            static_cast<int>(bottom - top)};
}

/// A bitmap with what the screen shows within a rectangle of it.
OwnedBitmap CopyScreen(const Rect& rect) {
    const ScreenDevice screen;
    OwnedBitmap bitmap(CreateCompatibleBitmap(screen.Get(), rect.width, rect.height));
    if (!bitmap) return nullptr;
    const MemoryDevice memory(screen, bitmap.get());
    const bool copied = BitBlt(memory.Get(), 0, 0, rect.width, rect.height, screen.Get(), rect.x,
                               rect.y, SRCCOPY) != 0;
    return copied ? std::move(bitmap) : nullptr;
}

}  // namespace

void CaptureWindow(ImageObject& image, RastrelWindow window, WindowArea area, Rect part) {
    const auto on_screen = AreaOnScreen(window, area);
    if (!on_screen) return;
    const Rect rect = OnScreen(PartOf(*on_screen, part));
    if (rect.IsEmpty()) return;
    const OwnedBitmap bitmap = CopyScreen(rect);
    if (bitmap) ReadDeviceBitmap(image, bitmap.get());
}

}  // namespace rastrel
