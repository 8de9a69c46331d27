#pragma once

#include <memory>

#include "support/images.h"

namespace rastrel_test {

/// What images are drawn on: a bitmap of 32 bits a pixel in a memory device context on Windows, a
/// surface elsewhere.
class TestDevice {
  public:
    TestDevice(int width, int height, Rgb background);
    TestDevice(const TestDevice&) = delete;
    TestDevice& operator=(const TestDevice&) = delete;
    ~TestDevice();

    [[nodiscard]] RastrelDC Handle() const;
    [[nodiscard]] int Width() const { return width_; }
    [[nodiscard]] int Height() const { return height_; }
    /// A pixel's colour; y from the top.
    [[nodiscard]] Rgb At(int x, int y) const;

    /// A handle that stands for no device that could be drawn on, though it is not null.
    [[nodiscard]] static RastrelDC Broken();

  private:
    struct System;
    std::unique_ptr<System> system_;
    int width_;
    int height_;
};

}  // namespace rastrel_test
