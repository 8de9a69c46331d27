#pragma once

#include <windows.h>

#include <array>
#include <memory>
#include <type_traits>

#include "core/palette.h"
#include "core/raster_image.h"
#include "display/draw_device.h"

namespace rastrel {

struct GdiObjectDeleter {
    void operator()(void* object) const { DeleteObject(static_cast<HGDIOBJ>(object)); }
};
/// GDI objects that are deleted with their owner; they must not be selected anywhere then.
using OwnedPalette = std::unique_ptr<std::remove_pointer_t<HPALETTE>, GdiObjectDeleter>;
using OwnedBitmap = std::unique_ptr<std::remove_pointer_t<HBITMAP>, GdiObjectDeleter>;

/// A palette with these entries; null when the system has no room for one.
[[nodiscard]] OwnedPalette MakeGdiPalette(const Palette& palette);

/// Holds a palette selected and realised in a device context, as a foreground palette.
class SelectedPalette {
  public:
    SelectedPalette(HDC device, OwnedPalette palette)
        : device_(device), palette_(std::move(palette)) {
        if (palette_) old_ = SelectPalette(device_, palette_.get(), FALSE);
        if (old_ != nullptr) RealizePalette(device_);
    }
    SelectedPalette(const SelectedPalette&) = delete;
    SelectedPalette& operator=(const SelectedPalette&) = delete;
    ~SelectedPalette() {
        if (old_ != nullptr) SelectPalette(device_, old_, FALSE);
    }

  private:
    HDC device_;
    OwnedPalette palette_;
    HPALETTE old_ = nullptr;
};

/// A header with a colour table, as functions on device-independent bitmaps take it.
struct GdiBitmapInfo {
    BITMAPINFOHEADER header = {};
    std::array<RGBQUAD, 256> colors = {};

    [[nodiscard]] const BITMAPINFO* Get() const {
        return reinterpret_cast<const BITMAPINFO*>(this);
    }
    [[nodiscard]] BITMAPINFO* Get() { return reinterpret_cast<BITMAPINFO*>(this); }
};

/// Describes a raster's pixels, to be taken from its pixel pointer on, in the colours given.
[[nodiscard]] GdiBitmapInfo DescribeBitmap(const RasterImage& raster, const DeviceColors& colors);

}  // namespace rastrel
