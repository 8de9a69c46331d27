#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace rastrel_view {

struct ListedWindow {
    HWND window = nullptr;
    std::string title;
};

/// Lets the user choose one of the windows that show on the screen, other than owner itself. None
/// when there is no choice.
[[nodiscard]] std::optional<ListedWindow> ChooseWindow(HWND owner);

}  // namespace rastrel_view
