#include <windows.h>

#include "support/device.h"

namespace rastrel_test {

struct TestDevice::System {
    HDC device = nullptr;
    HBITMAP bitmap = nullptr;
    HGDIOBJ old_bitmap = nullptr;
    std::uint8_t* pixels = nullptr;
};

TestDevice::TestDevice(int width, int height, Rgb background)
    : system_(std::make_unique<System>()), width_(width), height_(height) {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* pixels = nullptr;
    system_->device = CreateCompatibleDC(nullptr);
    system_->bitmap = CreateDIBSection(system_->device, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
    system_->old_bitmap = SelectObject(system_->device, system_->bitmap);
    system_->pixels = static_cast<std::uint8_t*>(pixels);
    EXPECT_NE(pixels, nullptr);
    for (int i = 0; i < width * height; ++i) {
        for (std::size_t channel = 0; channel < 3; ++channel)
            system_->pixels[4 * i + 2 - static_cast<int>(channel)] =
                static_cast<std::uint8_t>(background[channel]);
    }
}

TestDevice::~TestDevice() {
    SelectObject(system_->device, system_->old_bitmap);
    DeleteObject(system_->bitmap);
    DeleteDC(system_->device);
}

RastrelDC TestDevice::Handle() const {
    return system_->device;
}

Rgb TestDevice::At(int x, int y) const {
    GdiFlush();
    EXPECT_TRUE(x >= 0 && x < width_ && y >= 0 && y < height_);
    const std::uint8_t* pixel = system_->pixels + static_cast<std::ptrdiff_t>(y * width_ + x) * 4;
    return {pixel[2], pixel[1], pixel[0]};
}

RastrelDC TestDevice::Broken() {
    return reinterpret_cast<RastrelDC>(std::uintptr_t{0x12345});
}

}  // namespace rastrel_test
