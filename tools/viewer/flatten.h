#pragma once

#include <memory>

#include "owned_image.h"

namespace rastrel_view {

/// What stands around the picture and shows through its transparent pixels: a grey, all three
/// channels having this value.
constexpr int kBackgroundGrey = 96;

/// The image of 24 bits that shows what the given one looks like on the background; null when
/// memory does not suffice.
[[nodiscard]] std::unique_ptr<OwnedImage> Flattened(const OwnedImage& image);

}  // namespace rastrel_view
