#include "display/desktop.h"
#include "display/win32/device_bitmaps.h"

namespace rastrel {

namespace {

/// The clipboard, open in a window's name.
class Clipboard {
  public:
    explicit Clipboard(HWND window) : is_open_(OpenClipboard(window) != 0) {}
    Clipboard(const Clipboard&) = delete;
    Clipboard& operator=(const Clipboard&) = delete;
    ~Clipboard() {
        if (is_open_) CloseClipboard();
    }

    /// Puts a bitmap in the place of all that was there. The clipboard owns it then; when that
    /// fails, it ends.
    [[nodiscard]] bool Take(OwnedBitmap bitmap) const {
        if (!is_open_ || EmptyClipboard() == 0) return false;
        if (SetClipboardData(CF_BITMAP, bitmap.get()) == nullptr) return false;
        static_cast<void>(bitmap.release());
        return true;
    }

  private:
    bool is_open_;
};

}  // namespace

bool PlaceOnClipboard(const RasterImage& raster, RastrelWindow window) {
    OwnedBitmap bitmap = MakeScreenBitmap(raster);
    return bitmap && Clipboard(window).Take(std::move(bitmap));
}

}  // namespace rastrel
