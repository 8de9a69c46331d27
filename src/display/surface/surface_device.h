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

    /// Every colour can be shown: palettes do not matter.
    void SelectPalette(const Palette& /*palette*/) override {}
    void DeselectPalette() override {}
    void ChoosePixelsWhenScaling() override {}
    bool SetPixels(const DevicePicture& picture, Rect destination, int source_x,
                   int source_y) override;
    bool StretchPixels(const DevicePicture& picture, Rect destination, Rect source,
                       RasterOperation operation) override;

  private:
    RastrelSurface surface_;
};

}  // namespace rastrel
