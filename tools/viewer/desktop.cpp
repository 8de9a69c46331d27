#include "desktop.h"

#include <commdlg.h>

#include <vector>

#include "../rastrel/text.h"

namespace rastrel_view {

namespace {

/// Room for the longest paths there are.
constexpr std::size_t kMostNameBytes = 32768;

constexpr char kFilter[] =
    "Images\0"
    "*.bmp;*.jpg;*.gif;*.png;*.tif;*.qvi;*.bil;*.bip;*.bsq;*.jp2;*.jpeg;*.tiff;*.tga;*.psd;*.ppm;"
    "*.pgm\0"
    "All files\0*.*\0";

}  // namespace

std::optional<std::string> AskForImageFile(HWND owner) {
    std::vector<char> name(kMostNameBytes);
    OPENFILENAMEA dialog = {};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = owner;
    dialog.lpstrFilter = kFilter;
    dialog.lpstrFile = name.data();
    dialog.nMaxFile = static_cast<DWORD>(name.size());
    dialog.Flags = OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_EXPLORER;
    if (!GetOpenFileNameA(&dialog)) return std::nullopt;
    return name.data();
}

std::optional<std::string> DroppedFile(HDROP drop) {
    const UINT length = DragQueryFileA(drop, 0, nullptr, 0);
    if (length == 0) return std::nullopt;
    std::vector<char> name(std::size_t{length} + 1);
    DragQueryFileA(drop, 0, name.data(), static_cast<UINT>(name.size()));
    return name.data();
}

Pasted FromClipboard(HWND owner) {
    Pasted pasted;
    if (!OpenClipboard(owner)) return pasted;
    if (HANDLE files = GetClipboardData(CF_HDROP); files != nullptr) {
        pasted.file = DroppedFile(static_cast<HDROP>(files)).value_or("");
    } else if (HANDLE bitmap = GetClipboardData(CF_BITMAP); bitmap != nullptr) {
        auto image = std::make_unique<OwnedImage>();
        if (Rastrel_CreateFromBitmap(image->Handle(), static_cast<HBITMAP>(bitmap)) == 1)
            pasted.image = std::move(image);
    }
    CloseClipboard();
    return pasted;
}

std::string FullName(const std::string& name) {
    if (rastrel_cli::IsAddress(name)) return name;
    std::vector<char> full(kMostNameBytes);
    const DWORD length =
        GetFullPathNameA(name.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    return length > 0 && length < full.size() ? full.data() : name;
}

void ShowError(HWND owner, const std::string& text) {
    MessageBoxA(owner, text.c_str(), "Rastrel Viewer", MB_OK | MB_ICONWARNING);
}

}  // namespace rastrel_view
