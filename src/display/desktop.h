#pragma once

#include <memory>

#include "core/geometry.h"
#include "core/image_object.h"
#include "display/draw_device.h"
#include "rastrel.h"

namespace rastrel {

// What systems with a desktop do by its means (win32/) and others in memory (surface/), under the
// types of the interface. What an image is read from it becomes one of type BMP; when that fails,
// it is left without a raster.

/// The device that a handle of the interface stands for; null for a null handle. The handle stays
/// the caller's and must outlive the device.
[[nodiscard]] std::unique_ptr<DrawDevice> OpenDevice(RastrelDC handle);

/// A new device bitmap with the raster's pixels, the caller's to free. Null, the user having been
/// told why, when the system makes none.
[[nodiscard]] RastrelBitmap MakeDeviceBitmap(const RasterImage& raster);

/// Reads a device bitmap: up to 8 bits in its depth with its colours, 16 bits as 24, and 32 with
/// alpha 255 throughout, since devices do not use that byte.
void ReadDeviceBitmap(ImageObject& image, RastrelBitmap bitmap);

/// Gives the clipboard the raster's pixels as a bitmap, in a window's name; false where that fails
/// or there is no clipboard.
[[nodiscard]] bool PlaceOnClipboard(const RasterImage& raster, RastrelWindow window);

/// What a rectangle of a window is relative to.
enum class WindowArea { kWhole, kClient };

/// Reads what the screen shows within a rectangle of a window; a width or height of -1 reaches to
/// the area's edge. What lies off the screen is left out.
void CaptureWindow(ImageObject& image, RastrelWindow window, WindowArea area, Rect part);

/// Bytes that the host's buffer for a chosen name has.
constexpr std::size_t kDialogNameBytes = 260;

constexpr int kDialogSaveFailed = 0;
constexpr int kDialogSaved = 1;
constexpr int kDialogCancelled = 2;

/// Asks the user for a name, a format and a coordinate system, stores name and type, and saves the
/// image, which must have a raster; beside it, where a coordinate system was chosen, its .prj file.
/// Returns one of the above; always the first where there are no dialogs.
[[nodiscard]] int SaveByDialog(ImageObject& image, char* name, int* type);

}  // namespace rastrel
