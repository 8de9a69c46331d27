#include <windows.h>

#include <array>
#include <atomic>
#include <thread>

#include "support/messages.h"

namespace rastrel_test {

namespace {

/// The text of a message box is a control with this number.
constexpr int kTextControl = 0xffff;

/// The message box that this process shows, if any. Others may show theirs at the same time.
HWND OwnBox() {
    HWND box = nullptr;
    while ((box = FindWindowExA(nullptr, box, "#32770", "Error")) != nullptr) {
        DWORD process = 0;
        GetWindowThreadProcessId(box, &process);
        if (process == GetCurrentProcessId()) break;
    }
    return box;
}

}  // namespace

std::string MessageOf(const std::function<void()>& action) {
    std::atomic<bool> done{false};
    std::string text;
    std::thread user([&] {
        while (!done) {
            Sleep(20);
            HWND box = OwnBox();
            if (box == nullptr) continue;
            std::array<char, 200> shown = {};
            GetDlgItemTextA(box, kTextControl, shown.data(), static_cast<int>(shown.size()));
            if (shown[0] == 0) continue;  // in the making
            text = shown.data();
            PostMessageA(box, WM_COMMAND, IDOK, 0);
            Sleep(200);
        }
    });
    action();
    done = true;
    user.join();
    return text;
}

}  // namespace rastrel_test
