#include "formats/jp2/jp2_samples.h"

#include <algorithm>

namespace rastrel {

Jp2Channel::Jp2Channel(const opj_image_comp_t& component, std::int64_t origin_x,
                       std::int64_t origin_y, Size step)
    : component_(component),
      origin_x_(origin_x),
      origin_y_(origin_y),
      step_(step),
      greatest_((std::int64_t{1} << std::min(component.prec, 32u)) - 1) {}

bool Jp2Channel::Ok() const {
    return component_.data != nullptr && component_.w > 0 && component_.h > 0 &&
           component_.dx > 0 && component_.dy > 0 && component_.prec > 0;
}

std::uint8_t Jp2Channel::Level(std::int32_t sample) const {
    const std::int64_t lift = component_.sgnd != 0 ? (greatest_ + 1) / 2 : 0;
    const std::int64_t level = std::clamp<std::int64_t>(sample + lift, 0, greatest_);
    return static_cast<std::uint8_t>((level * 255 + greatest_ / 2) / greatest_);
}

void Jp2Channel::Read(int y, std::span<std::uint8_t> out) const {
    const auto place = [](std::int64_t on_grid, std::uint32_t step, std::uint32_t first,
                          std::uint32_t count) {
        const std::int64_t index = on_grid / step - std::int64_t{first};
        return static_cast<std::size_t>(std::clamp<std::int64_t>(index, 0, count - 1));
    };
    const std::size_t row = place(origin_y_ + std::int64_t{y} * step_.height, component_.dy,
                                  component_.y0, component_.h);
    const std::int32_t* samples = component_.data + row * component_.w;
    const bool one_each = static_cast<int>(component_.dx) == step_.width;
    if (one_each && component_.prec == 8 && component_.sgnd == 0) {
        const std::size_t first = place(origin_x_, component_.dx, component_.x0, component_.w);
        const std::size_t count = std::min(out.size(), component_.w - first);
        std::transform(samples + first, samples + first + count, out.begin(),
                       [](std::int32_t sample) { return static_cast<std::uint8_t>(sample); });
        return;
    }
    std::int64_t on_grid = origin_x_;
    for (std::uint8_t& level : out) {
        level = Level(samples[place(on_grid, component_.dx, component_.x0, component_.w)]);
        on_grid += step_.width;
    }
}

void ColorsFromDifferences(std::span<std::uint8_t> brightness, std::span<std::uint8_t> blue,
                           std::span<std::uint8_t> red) {
    const auto byte = [](int value) {
        return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
    };
    for (std::size_t x = 0; x < brightness.size(); ++x) {
        const int y = brightness[x];
        const int cb = blue[x] - 128;
        const int cr = red[x] - 128;
        // Each product cut to a whole number before it is added.
        brightness[x] = byte(y + static_cast<int>(1.402 * cr));
        blue[x] = byte(y - static_cast<int>(0.344 * cb + 0.714 * cr));
        red[x] = byte(y + static_cast<int>(1.772 * cb));
    }
}

}  // namespace rastrel
