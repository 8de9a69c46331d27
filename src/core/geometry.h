#pragma once

#include <algorithm>
#include <cstdint>

namespace rastrel {

struct Size {
    int width = 0;
    int height = 0;

    friend bool operator==(const Size&, const Size&) = default;
};

/// A rectangle in picture coordinates: origin at the upper left, y downward, in pixels.
struct Rect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    [[nodiscard]] bool IsEmpty() const { return width < 1 || height < 1; }
};

/// The part of a rectangle that lies inside an image; empty where there is none. The rectangle may
/// reach beyond the range of int.
[[nodiscard]] inline Rect Clip(const Rect& rect, const Size& size) {
    const auto clip_side = [](int start, int length, int limit, int& from, int& count) {
        const std::int64_t end = std::min<std::int64_t>(std::int64_t{start} + length, limit);
        from = std::max(start, 0);
        count = static_cast<int>(std::max<std::int64_t>(end - from, 0));
    };
    Rect clipped;
    clip_side(rect.x, rect.width, size.width, clipped.x, clipped.width);
    clip_side(rect.y, rect.height, size.height, clipped.y, clipped.height);
    return clipped;
}

}  // namespace rastrel
