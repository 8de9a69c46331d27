#include "control_points.h"

#include <fmt/format.h>

#include "text.h"

namespace rastrel_cli {

namespace {

/// Adds the point of a line; an empty one has none.
bool AddLine(std::string_view line, std::vector<ControlPoint>& points, std::string& why) {
    std::vector<double> numbers;
    for (auto word = TakeWord(line); !word.empty(); word = TakeWord(line)) {
        const auto number = ParseFinite(word);
        if (!number) {
            why = fmt::format("{} is no number", Shown(word));
            return false;
        }
        numbers.push_back(*number);
    }
    if (numbers.empty()) return true;
    if (numbers.size() != 4) {
        why =
            fmt::format("a point is four numbers, column row X Y, and here are {}", numbers.size());
        return false;
    }
    points.push_back({numbers[0], numbers[1], numbers[2], numbers[3]});
    return true;
}

}  // namespace

std::optional<std::vector<ControlPoint>> ParseControlPoints(std::string_view text,
                                                            std::string& why) {
    std::vector<ControlPoint> points;
    for (int line = 1; !text.empty(); ++line) {
        const std::string_view whole = TakeLine(text);
        if (!AddLine(whole.substr(0, whole.find('#')), points, why)) {
            why = fmt::format("line {}: {}", line, why);
            return std::nullopt;
        }
    }
    return points;
}

}  // namespace rastrel_cli
