#include "display/desktop.h"

#include <cstdlib>
#include <cstring>
#include <limits>

#include "core/checked_size.h"
#include "display/surface/surface_device.h"
#include "platform/message.h"

namespace rastrel {

namespace {

constexpr std::size_t kPixelBytes = 4;

/// A surface and its pixels in one block; null when it would be too large.
RastrelSurface* AllocateSurface(Size size) {
    constexpr std::size_t kRowAlignment = 64;
    constexpr std::size_t kPixelsAt = kRowAlignment;
    static_assert(sizeof(RastrelSurface) <= kPixelsAt);
    CheckedSize checked(std::numeric_limits<std::ptrdiff_t>::max());
    const auto row_bytes = checked.Mul(static_cast<std::uint64_t>(size.width), kPixelBytes);
    const auto bytes = checked.Mul(row_bytes, static_cast<std::uint64_t>(size.height));
    const auto total = checked.Add(bytes, kPixelsAt);
    if (!checked.Ok() || row_bytes > std::numeric_limits<std::int32_t>::max()) return nullptr;
    auto* block = static_cast<std::uint8_t*>(std::calloc(static_cast<std::size_t>(total), 1));
    if (block == nullptr) return nullptr;
    auto* surface = reinterpret_cast<RastrelSurface*>(block);
    *surface = {size.width, size.height, static_cast<std::int32_t>(row_bytes), block + kPixelsAt};
    return surface;
}

/// Copies a surface's row, opaque.
void CopyOpaque(const std::uint8_t* from, std::span<std::uint8_t> to) {
    std::memcpy(to.data(), from, to.size());
    for (std::size_t i = 3; i < to.size(); i += kPixelBytes)
        to[i] = 255;
}

}  // namespace

std::unique_ptr<DrawDevice> OpenDevice(RastrelDC handle) {
    return handle != nullptr ? std::make_unique<SurfaceDevice>(*handle) : nullptr;
}

RastrelBitmap MakeDeviceBitmap(const RasterImage& raster) {
    std::unique_ptr<RastrelSurface, decltype(&std::free)> surface(
        AllocateSurface(raster.PixelSize()), &std::free);
    if (!surface) {
        ShowMessage("Not enough memory for the bitmap.");
        return nullptr;
    }
    SurfaceDevice device(*surface);
    const DeviceColors colors = TableColors(raster);
    const Rect whole = {0, 0, raster.Width(), raster.Height()};
    if (!device.SetPixels({raster, colors}, whole, 0, 0)) return nullptr;
    return surface.release();
}

void ReadDeviceBitmap(ImageObject& image, RastrelBitmap bitmap) {
    if (bitmap == nullptr || !SurfaceDevice::IsSound(*bitmap)) return;
    if (!image.Create(bitmap->width, bitmap->height, 32)) return;
    const auto row_bytes = static_cast<std::size_t>(bitmap->width) * kPixelBytes;
    for (int y = 0; y < bitmap->height; ++y) {
        CopyOpaque(bitmap->pixels + std::ptrdiff_t{y} * bitmap->stride,
                   image.Raster()->PictureRow(y).first(row_bytes));
    }
}

bool PlaceOnClipboard(const RasterImage& /*raster*/, RastrelWindow /*window*/) {
    return false;
}

void CaptureWindow(ImageObject& /*image*/, RastrelWindow /*window*/, WindowArea /*area*/,
                   Rect /*part*/) {}

int SaveByDialog(ImageObject& /*image*/, char* /*name*/, int* /*type*/) {
    return kDialogSaveFailed;
}

}  // namespace rastrel
