#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "owned_image.h"

namespace rastrel_view {

/// Told the fraction done, from 0 to 1, now and then; false gives the work up.
using Progress = std::function<bool(double fraction)>;

/// Images of 24 bits that show the same picture with one half, one quarter and so on of its columns
/// and rows (rounded up), each pixel the mean of the 2 x 2 pixels it stands for, down to one that
/// fits in 1024 x 1024 pixels. Nothing for images that do so themselves. Fewer when memory runs
/// out, none when given up.
[[nodiscard]] std::vector<std::unique_ptr<OwnedImage>> MakeOverviews(const OwnedImage& image,
                                                                     const Progress& progress);

}  // namespace rastrel_view
