#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rastrel_cli {

/// A place in a picture, in pixels from its upper left with centres at whole numbers, and where it
/// lies on the map.
struct ControlPoint {
    double column = 0;
    double row = 0;
    double x = 0;
    double y = 0;
};

/// The points of a text: "column row X Y" a line; "#" begins a comment. Otherwise nothing, and why
/// not.
[[nodiscard]] std::optional<std::vector<ControlPoint>> ParseControlPoints(std::string_view text,
                                                                          std::string& why);

}  // namespace rastrel_cli
