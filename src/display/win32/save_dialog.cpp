#include "display/win32/save_dialog.h"

#include <commdlg.h>

#include <algorithm>
#include <array>

#include "display/win32/save_dialog_ids.h"
#include "platform/file.h"

namespace rastrel {

namespace {

constexpr const char* kTitle = "Save image";
constexpr const char* kNoSystem = "(none)";

using NameBuffer = std::array<char, MAX_PATH>;

/// The module that the dialog is a resource of.
HINSTANCE OwnModule() {
    HMODULE module = nullptr;
    GetModuleHandleExA(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        kTitle, &module);
    return module;
}

std::string_view ExtensionAt(int format) {
    return SaveExtensions()[static_cast<std::size_t>(format)];
}

/// The filters of the file chooser: for each format a text and a pattern, both ended by a zero, and
/// one zero more.
std::string ChooserFilters() {
    std::string filters;
    for (const std::string_view extension : SaveExtensions()) {
        std::string pattern = "*";
        pattern += extension;
        filters += pattern;
        filters += '\0';
        filters += pattern;
        filters += '\0';
    }
    return filters;
}

class SaveDialog {
  public:
    explicit SaveDialog(SaveChoice& choice) : choice_(choice) {}

    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
        if (message == WM_INITDIALOG) {
            SetWindowLongPtrA(window, DWLP_USER, lparam);
            FromNumber(lparam)->Start(window);
            return TRUE;
        }
        SaveDialog* dialog = FromNumber(GetWindowLongPtrA(window, DWLP_USER));
        if (dialog == nullptr || message != WM_COMMAND) return FALSE;
        return dialog->Command(LOWORD(wparam), HIWORD(wparam));
    }

  private:
    /// The dialog's window hands its owner over as a number.
    static SaveDialog* FromNumber(LONG_PTR number) {
        return reinterpret_cast<SaveDialog*>(number);  // NOLINT(performance-no-int-to-ptr)
    }

    void Start(HWND window) {
        window_ = window;
        for (const std::string_view extension : SaveExtensions())
            AddChoice(RASTREL_SAVE_FORMAT, std::string(extension));
        AddChoice(RASTREL_SAVE_SYSTEM, kNoSystem);
        for (const CoordinateSystem& system : SaveCoordinateSystems())
            AddChoice(RASTREL_SAVE_SYSTEM, std::string(system.name));
        Choose(RASTREL_SAVE_FORMAT, choice_.format);
        Choose(RASTREL_SAVE_SYSTEM, 0);
        SendDlgItemMessageA(window_, RASTREL_SAVE_NAME, EM_LIMITTEXT, NameBuffer().size() - 1, 0);
        SetName(choice_.name);
    }

    /// Whether a command was one of the dialog's.
    INT_PTR Command(int control, int notice) {
        if (control == IDOK) {
            if (Accept()) EndDialog(window_, IDOK);
        } else if (control == IDCANCEL) {
            EndDialog(window_, IDCANCEL);
        } else if (control == RASTREL_SAVE_BROWSE) {
            Browse();
        } else if (control == RASTREL_SAVE_FORMAT && notice == CBN_SELCHANGE) {
            const std::string name = Name();
            if (!name.empty()) SetName(WithThisExtension(name, ExtensionAt(Format())));
        } else if (control == RASTREL_SAVE_NAME && notice == EN_CHANGE) {
            const int format = SaveExtensionOf(Name());
            if (format >= 0 && format != Format()) Choose(RASTREL_SAVE_FORMAT, format);
        } else {
            return FALSE;
        }
        return TRUE;
    }

    /// Takes over what was chosen; false when the user has to say more.
    bool Accept() {
        const std::string stated = Name();
        if (stated.empty()) return Refuse("Enter a file name.");
        const std::string name = WithAnExtension(stated, ExtensionAt(Format()));
        if (name.size() >= NameBuffer().size()) return Refuse("The file name is too long.");
        if (FileExists(name) && !MayReplace(name)) return false;
        choice_.name = name;
        choice_.format = Format();
        const int system = Chosen(RASTREL_SAVE_SYSTEM) - 1;
        choice_.system =
            system >= 0 ? &SaveCoordinateSystems()[static_cast<std::size_t>(system)] : nullptr;
        return true;
    }

    bool Refuse(const char* reason) const {
        MessageBoxA(window_, reason, kTitle, MB_OK | MB_ICONWARNING);
        return false;
    }

    [[nodiscard]] bool MayReplace(const std::string& name) const {
        const std::string question = name + "\nalready exists. Replace it?";
        return MessageBoxA(window_, question.c_str(), kTitle,
                           MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) == IDYES;
    }

    void Browse() {
        NameBuffer name = {};
        Name().copy(name.data(), name.size() - 1);
        const std::string filters = ChooserFilters();
        OPENFILENAMEA chooser = {};
        chooser.lStructSize = sizeof chooser;
        chooser.hwndOwner = window_;
        chooser.lpstrFilter = filters.c_str();
        chooser.nFilterIndex = static_cast<DWORD>(Format()) + 1;
        chooser.lpstrFile = name.data();
        chooser.nMaxFile = static_cast<DWORD>(name.size());
        chooser.lpstrTitle = kTitle;
        // Whether to replace a file is asked when the dialog itself is accepted.
        chooser.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST;
        if (GetSaveFileNameA(&chooser) == 0) return;
        const auto last = static_cast<DWORD>(SaveExtensions().size());
        const DWORD format = std::clamp<DWORD>(chooser.nFilterIndex, 1, last) - 1;
        SetName(WithAnExtension(name.data(), ExtensionAt(static_cast<int>(format))));
    }

    void AddChoice(int control, const std::string& text) const {
        SendDlgItemMessageA(window_, control, CB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(text.c_str()));
    }
    void Choose(int control, int place) const {
        SendDlgItemMessageA(window_, control, CB_SETCURSEL, static_cast<WPARAM>(place), 0);
    }
    [[nodiscard]] int Chosen(int control) const {
        return static_cast<int>(SendDlgItemMessageA(window_, control, CB_GETCURSEL, 0, 0));
    }
    /// The chosen format; the one offered at first when there is none.
    [[nodiscard]] int Format() const {
        const int chosen = Chosen(RASTREL_SAVE_FORMAT);
        return chosen >= 0 ? chosen : choice_.format;
    }
    [[nodiscard]] std::string Name() const {
        NameBuffer name = {};
        GetDlgItemTextA(window_, RASTREL_SAVE_NAME, name.data(), static_cast<int>(name.size()));
        return name.data();
    }
    void SetName(const std::string& name) const {
        SetDlgItemTextA(window_, RASTREL_SAVE_NAME, name.c_str());
    }

    SaveChoice& choice_;
    HWND window_ = nullptr;
};

}  // namespace

SaveAnswer AskHowToSave(HWND owner, SaveChoice& choice) {
    SaveDialog dialog(choice);
    const INT_PTR answer =
        DialogBoxParamA(OwnModule(), MAKEINTRESOURCEA(RASTREL_SAVE_DIALOG), owner,
                        &SaveDialog::Procedure, reinterpret_cast<LPARAM>(&dialog));
    if (answer == IDOK) return SaveAnswer::kChosen;
    return answer == IDCANCEL ? SaveAnswer::kCancelled : SaveAnswer::kNoDialog;
}

}  // namespace rastrel
