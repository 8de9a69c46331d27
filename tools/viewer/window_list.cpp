#include "window_list.h"

#include <dwmapi.h>

#include <array>
#include <vector>

#include "resource.h"

namespace rastrel_view {

namespace {

struct Choice {
    HWND owner = nullptr;
    std::vector<ListedWindow> windows;
    std::optional<ListedWindow> chosen;
};

/// Windows of other desktops and of sleeping applications count as visible, but are not shown.
bool IsCloaked(HWND window) {
    DWORD cloaked = 0;
    return SUCCEEDED(DwmGetWindowAttribute(window, DWMWA_CLOAKED, &cloaked, sizeof(cloaked))) &&
           cloaked != 0;
}

BOOL CALLBACK AddWindow(HWND window, LPARAM lparam) {
    auto& choice = *reinterpret_cast<Choice*>(lparam);
    if (window == choice.owner || !IsWindowVisible(window) || IsIconic(window) || IsCloaked(window))
        return TRUE;
    std::array<char, 256> title = {};
    if (GetWindowTextA(window, title.data(), static_cast<int>(title.size())) > 0)
        choice.windows.push_back({window, title.data()});
    return TRUE;
}

void FillList(HWND dialog, Choice& choice) {
    EnumWindows(&AddWindow, reinterpret_cast<LPARAM>(&choice));
    HWND list = GetDlgItem(dialog, IDC_WINDOWS);
    for (const ListedWindow& listed : choice.windows)
        SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(listed.title.c_str()));
    SendMessageA(list, LB_SETCURSEL, 0, 0);
    EnableWindow(GetDlgItem(dialog, IDOK), choice.windows.empty() ? FALSE : TRUE);
}

void TakeChoice(HWND dialog, Choice& choice) {
    const LRESULT index = SendDlgItemMessageA(dialog, IDC_WINDOWS, LB_GETCURSEL, 0, 0);
    if (index == LB_ERR) return;
    choice.chosen = choice.windows.at(static_cast<std::size_t>(index));
    EndDialog(dialog, IDOK);
}

INT_PTR HandleCommand(HWND dialog, Choice& choice, WPARAM wparam) {
    const int id = LOWORD(wparam);
    if (id == IDCANCEL) {
        EndDialog(dialog, IDCANCEL);
    } else if (id == IDOK || (id == IDC_WINDOWS && HIWORD(wparam) == LBN_DBLCLK)) {
        TakeChoice(dialog, choice);
    } else {
        return FALSE;
    }
    return TRUE;
}

INT_PTR CALLBACK DialogProcedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrA(dialog, DWLP_USER, lparam);
        try {
            FillList(dialog, *reinterpret_cast<Choice*>(lparam));
        } catch (const std::exception&) {
            EndDialog(dialog, IDCANCEL);
        }
        return TRUE;
    }
    auto* choice = reinterpret_cast<Choice*>(GetWindowLongPtrA(dialog, DWLP_USER));
    if (message != WM_COMMAND || choice == nullptr) return FALSE;
    return HandleCommand(dialog, *choice, wparam);
}

}  // namespace

std::optional<ListedWindow> ChooseWindow(HWND owner) {
    Choice choice;
    choice.owner = owner;
    DialogBoxParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDD_CAPTURE), owner,
                    &DialogProcedure, reinterpret_cast<LPARAM>(&choice));
    return choice.chosen;
}

}  // namespace rastrel_view
