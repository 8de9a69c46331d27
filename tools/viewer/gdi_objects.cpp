#include "gdi_objects.h"

#include "flatten.h"

namespace rastrel_view {

MemoryCanvas::MemoryCanvas(int width, int height) : device_(CreateCompatibleDC(nullptr)) {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    bitmap_ = CreateDIBSection(device_, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    pixels_ = static_cast<unsigned char*>(bits);
    if (bitmap_ != nullptr) previous_ = SelectObject(device_, bitmap_);
}

MemoryCanvas::~MemoryCanvas() {
    if (bitmap_ != nullptr) {
        SelectObject(device_, previous_);
        DeleteObject(bitmap_);
    }
    DeleteDC(device_);
}

void PaintBackground(HDC device, const RECT& rect) {
    SetDCBrushColor(device, RGB(kBackgroundGrey, kBackgroundGrey, kBackgroundGrey));
    FillRect(device, &rect, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

}  // namespace rastrel_view
