#pragma once

#include <array>
#include <cstdint>

#include "core/geometry.h"
#include "core/raster_image.h"

namespace rastrel {

/// How drawn pixels meet what the device shows already: the codes of the ternary raster operations.
enum class RasterOperation : std::uint32_t {
    kCopy = 0x00cc0020,  ///< the source's pixel
    kAnd = 0x008800c6,   ///< the bits that both have
    kOr = 0x00ee0086,    ///< the bits that either has
};

/// What each pixel value of up to 8 bits looks like: blue in the lowest byte, then green and red;
/// the highest is the device's unused byte.
using DeviceColors = std::array<std::uint32_t, 256>;

/// The colours in the table of a raster of up to 8 bits; black beyond its end.
[[nodiscard]] DeviceColors TableColors(const RasterImage& raster);

/// What a device draws: the pixels of a raster, in colours of their own where they are indices.
struct DevicePicture {
    const RasterImage& raster;
    const DeviceColors& colors;
};

/// The seam between what is drawn and what it is drawn on: a device context, or a picture in
/// memory.
///
/// Destinations are in device coordinates, origin at the upper left, y downward. Source rectangles
/// are in pixels of the raster, their y counting from the bottom stored row upward. Parts of a
/// source outside the raster, and of a destination outside the device, are left out.
class DrawDevice {
  public:
    DrawDevice() = default;
    DrawDevice(const DrawDevice&) = delete;
    DrawDevice& operator=(const DrawDevice&) = delete;
    virtual ~DrawDevice() = default;

    /// Makes a palette the device's own until the palette is deselected: matters where the device
    /// shows no more colours at a time than a palette holds.
    virtual void SelectPalette(const Palette& palette) = 0;
    virtual void DeselectPalette() = 0;
    /// Makes scaling choose pixels rather than blend them, from now on.
    virtual void ChoosePixelsWhenScaling() = 0;
    /// Draws pixels one to one: the rectangle of the destination's size whose lower left pixel is
    /// (source_x, source_y). False when the device refuses.
    virtual bool SetPixels(const DevicePicture& picture, Rect destination, int source_x,
                           int source_y) = 0;
    /// Draws the source rectangle scaled to the destination. A negative width or height mirrors:
    /// the rectangle then extends from its origin the other way. False when the device refuses.
    virtual bool StretchPixels(const DevicePicture& picture, Rect destination, Rect source,
                               RasterOperation operation) = 0;
};

}  // namespace rastrel
