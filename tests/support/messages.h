#pragma once

#include <functional>
#include <string>

namespace rastrel_test {

/// Runs an action and returns what the library has told the user meanwhile: the lines on standard
/// error or, on Windows, the text of the first message box, which is closed.
[[nodiscard]] std::string MessageOf(const std::function<void()>& action);

}  // namespace rastrel_test
