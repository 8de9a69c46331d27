#pragma once

#include "display/draw_device.h"
#include "rastrel.h"

namespace rastrel {

/// Draws into a picture in the host's memory. Scaling takes the pixel under each pixel's centre.
/// The unused byte becomes 0, or what 32-bit pixels have there.
class SurfaceDevice final : public DrawDevice {
  public:
    /// A surface whose sizes or stride make no sense is drawn nothing into.
    explicit SurfaceDevice(const RastrelSurface& surface) : surface_(surface) {}

    /// Whether a surface has pixels, and rows that do not overlap.
    [[nodiscard]] static bool IsSound(const RastrelSurface& surface);

    /// Every colour can be shown: palettes do not matter.
    void SelectPalette(const Palette& /*palette*/) override {}
    void DeselectPalette() override {}
    void ChoosePixelsWhenScaling() override {}
    bool SetPixels(const DevicePicture& picture, Rect destination, int source_x,
                   int source_y) override;
    bool StretchPixels(const DevicePicture& picture, Rect destination, Rect source,
                       RasterOperation operation) override;

  private:
    /// The raster, or its pixels without their run-length coding; null when memory does not
    /// suffice.
    const RasterImage* WithPlainRows(const RasterImage& raster);

    RastrelSurface surface_;
    const RasterImage* coded_ = nullptr;  ///< what decoded_ was made from
    RasterImage decoded_;
};

}  // namespace rastrel
