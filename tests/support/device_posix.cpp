#include "support/device.h"

namespace rastrel_test {

struct TestDevice::System {
    Bytes pixels;
    RastrelSurface surface;
};

TestDevice::TestDevice(int width, int height, Rgb background)
    : system_(std::make_unique<System>()), width_(width), height_(height) {
    for (int i = 0; i < width * height; ++i) {
        for (const int value : {background[2], background[1], background[0], 0})
            system_->pixels.push_back(static_cast<std::uint8_t>(value));
    }
    system_->surface = {width, height, width * 4, system_->pixels.data()};
}

TestDevice::~TestDevice() = default;

RastrelDC TestDevice::Handle() const {
    return &system_->surface;
}

Rgb TestDevice::At(int x, int y) const {
    const std::uint8_t* pixel = &system_->pixels.at(static_cast<std::size_t>(y * width_ + x) * 4);
    return {pixel[2], pixel[1], pixel[0]};
}

RastrelDC TestDevice::Broken() {
    static RastrelSurface surface = {10, 10, 39, nullptr};
    return &surface;
}

}  // namespace rastrel_test
