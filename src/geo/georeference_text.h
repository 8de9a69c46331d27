#pragma once

#include <cstddef>
#include <string>

#include "core/text_fields.h"

namespace rastrel {

// What world files and headers have in common.

/// No line counts beyond this, its end included.
constexpr std::size_t kMostLineCharacters = 199;

/// A coordinate or pixel size as it is written.
[[nodiscard]] inline std::string CoordinateText(double value) {
    return FixedDecimals(value, 14, 31);
}

}  // namespace rastrel
