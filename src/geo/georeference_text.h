#pragma once

#include <string>

#include "core/text_fields.h"

namespace rastrel {

/// A coordinate or pixel size as it is written in world files and headers.
[[nodiscard]] inline std::string CoordinateText(double value) {
    return FixedDecimals(value, 14, 31);
}

}  // namespace rastrel
