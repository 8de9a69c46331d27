#pragma once

#include <memory>

#include "display/draw_device.h"
#include "rastrel.h"

namespace rastrel {

// What systems with a desktop do by its means (win32/) and others in memory (surface/), under the
// types of the interface.

/// The device that a handle of the interface stands for; null for a null handle. The handle stays
/// the caller's and must outlive the device.
[[nodiscard]] std::unique_ptr<DrawDevice> OpenDevice(RastrelDC handle);

}  // namespace rastrel
