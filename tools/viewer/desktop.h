#pragma once

#include <windows.h>

#include <shellapi.h>

#include <memory>
#include <optional>
#include <string>

#include "owned_image.h"

namespace rastrel_view {

// What comes from the user's desktop.

/// The file that the user chooses; none when the choice is cancelled.
[[nodiscard]] std::optional<std::string> AskForImageFile(HWND owner);
/// The first of the files dropped on a window.
[[nodiscard]] std::optional<std::string> DroppedFile(HDROP drop);

/// What can be pasted: the name of a file that was copied, else a picture; neither: nothing.
struct Pasted {
    std::string file;
    std::unique_ptr<OwnedImage> image;
};
[[nodiscard]] Pasted FromClipboard(HWND owner);

/// A name from the command line or a dialog, independent of the current folder. Addresses stay.
[[nodiscard]] std::string FullName(const std::string& name);

void ShowError(HWND owner, const std::string& text);

}  // namespace rastrel_view
