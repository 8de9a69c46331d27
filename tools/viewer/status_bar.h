#pragma once

#include <windows.h>

#include <string>

namespace rastrel_view {

/// The line of texts at the lower edge of the window.
class StatusBar {
  public:
    enum Part { kPointer, kWork, kZoom, kSize, kPartCount };

    explicit StatusBar(HWND parent);
    StatusBar(const StatusBar&) = delete;
    StatusBar& operator=(const StatusBar&) = delete;
    ~StatusBar();

    /// Follows the parent's size. Returns its own height.
    int Place(int parent_width);
    void Set(Part part, const std::string& text);
    /// Takes a text size for a screen of so many dots an inch.
    void SetDotsPerInch(int dots);

  private:
    HWND window_;
    HFONT font_ = nullptr;
    int dots_;
};

}  // namespace rastrel_view
