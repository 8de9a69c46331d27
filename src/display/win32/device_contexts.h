#pragma once

#include <windows.h>

namespace rastrel {

/// The device context of the whole screen.
class ScreenDevice {
  public:
    ScreenDevice() : device_(GetDC(nullptr)) {}
    ScreenDevice(const ScreenDevice&) = delete;
    ScreenDevice& operator=(const ScreenDevice&) = delete;
    ~ScreenDevice() {
        if (device_ != nullptr) ReleaseDC(nullptr, device_);
    }
    [[nodiscard]] HDC Get() const { return device_; }
    /// Whether it shows no more colours at a time than a palette holds.
    [[nodiscard]] bool HasPalette() const {
        return (GetDeviceCaps(device_, RASTERCAPS) & RC_PALETTE) != 0;
    }

  private:
    HDC device_;
};

/// A device context in memory that draws into a bitmap.
class MemoryDevice {
  public:
    MemoryDevice(const ScreenDevice& screen, HBITMAP bitmap)
        : device_(CreateCompatibleDC(screen.Get())), old_bitmap_(SelectObject(device_, bitmap)) {}
    MemoryDevice(const MemoryDevice&) = delete;
    MemoryDevice& operator=(const MemoryDevice&) = delete;
    ~MemoryDevice() {
        if (old_bitmap_ != nullptr) SelectObject(device_, old_bitmap_);
        if (device_ != nullptr) DeleteDC(device_);
    }
    [[nodiscard]] HDC Get() const { return device_; }

  private:
    HDC device_;
    HGDIOBJ old_bitmap_;
};

}  // namespace rastrel
