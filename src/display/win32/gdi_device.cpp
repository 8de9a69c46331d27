#include "display/desktop.h"
#include "display/win32/gdi_objects.h"

#include <optional>

namespace rastrel {

namespace {

/// A device context of the host's.
class GdiDevice final : public DrawDevice {
  public:
    explicit GdiDevice(HDC device) : device_(device) {}

    void SelectPalette(const Palette& palette) override {
        selected_.emplace(device_, MakeGdiPalette(palette));
    }
    void DeselectPalette() override { selected_.reset(); }
    void ChoosePixelsWhenScaling() override { SetStretchBltMode(device_, COLORONCOLOR); }

    bool SetPixels(const DevicePicture& picture, Rect destination, int source_x,
                   int source_y) override {
        const RasterImage& raster = picture.raster;
        const GdiBitmapInfo info = DescribeBitmap(raster, picture.colors);
        return SetDIBitsToDevice(device_, destination.x, destination.y,
                                 static_cast<DWORD>(destination.width),
                                 static_cast<DWORD>(destination.height), source_x, source_y, 0,
                                 static_cast<UINT>(raster.Height()), raster.Pixels(), info.Get(),
                                 DIB_RGB_COLORS) != 0;
    }

    bool StretchPixels(const DevicePicture& picture, Rect destination, Rect source,
                       RasterOperation operation) override {
        const GdiBitmapInfo info = DescribeBitmap(picture.raster, picture.colors);
        // The number of lines that comes back says nothing of the part that was drawn.
        return StretchDIBits(device_, destination.x, destination.y, destination.width,
                             destination.height, source.x, source.y, source.width, source.height,
                             picture.raster.Pixels(), info.Get(), DIB_RGB_COLORS,
                             static_cast<DWORD>(operation)) != 0;
    }

  private:
    HDC device_;
    std::optional<SelectedPalette> selected_;
};

}  // namespace

std::unique_ptr<DrawDevice> OpenDevice(RastrelDC handle) {
    return handle != nullptr ? std::make_unique<GdiDevice>(handle) : nullptr;
}

}  // namespace rastrel
