#pragma once

#include <windows.h>

namespace rastrel_view {

/// A memory device context over a bitmap of 32 bits a pixel in ordinary memory, the top row first.
class MemoryCanvas {
  public:
    MemoryCanvas(int width, int height);
    MemoryCanvas(const MemoryCanvas&) = delete;
    MemoryCanvas& operator=(const MemoryCanvas&) = delete;
    ~MemoryCanvas();

    /// False when there is no memory for it.
    [[nodiscard]] bool IsThere() const { return bitmap_ != nullptr; }
    [[nodiscard]] HDC Device() const { return device_; }
    /// Blue, green, red and an unused byte for each pixel, without gaps.
    [[nodiscard]] const unsigned char* Pixels() const { return pixels_; }

  private:
    HDC device_ = nullptr;
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ previous_ = nullptr;
    unsigned char* pixels_ = nullptr;
};

/// Paints a rectangle in the colour that stands around pictures.
void PaintBackground(HDC device, const RECT& rect);

}  // namespace rastrel_view
