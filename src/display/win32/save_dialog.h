#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "display/save_options.h"

namespace rastrel {

/// What a user wants saved where and how.
struct SaveChoice {
    std::string name;
    int format = 0;                            ///< its place in SaveExtensions
    const CoordinateSystem* system = nullptr;  ///< null: nothing is said of it
};

enum class SaveAnswer { kChosen, kCancelled, kNoDialog };

/// Shows the save dialog and waits for the user. The choice is what it offers at first and, when
/// the user chose, what is to be done.
[[nodiscard]] SaveAnswer AskHowToSave(HWND owner, SaveChoice& choice);

}  // namespace rastrel
