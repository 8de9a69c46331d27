// A desktop viewer on Rastrel's public interface.
//
// Usage: rastrel-view [FILE]

#include <windows.h>

#include <commctrl.h>

#include <exception>

#include "desktop.h"
#include "main_window.h"
#include "resource.h"

namespace {

int RunMessages(HWND window) {
    HACCEL keys = LoadAcceleratorsA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDR_VIEWER));
    MSG message = {};
    while (GetMessageA(&message, nullptr, 0, 0) > 0) {
        if (TranslateAcceleratorA(window, keys, &message)) continue;
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return static_cast<int>(message.wParam);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_BAR_CLASSES};
        InitCommonControlsEx(&controls);
        rastrel_view::MainWindow window;
        ShowWindow(window.Window(), SW_SHOWDEFAULT);
        if (argc > 1) window.Open(argv[1]);
        return RunMessages(window.Window());
    } catch (const std::exception& error) {
        rastrel_view::ShowError(nullptr, error.what());
        return 1;
    }
}
