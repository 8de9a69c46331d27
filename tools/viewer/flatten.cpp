#include "flatten.h"

#include "gdi_objects.h"

namespace rastrel_view {

std::unique_ptr<OwnedImage> Flattened(const OwnedImage& image) {
    const int width = image.Width();
    const int height = image.Height();
    const MemoryCanvas canvas(width, height);
    if (!canvas.IsThere()) return nullptr;
    PaintBackground(canvas.Device(), {0, 0, width, height});
    if (Rastrel_Stretch(image.Handle(), canvas.Device(), 0, 0, width, height, 0, 0, width,
                        height) != 1)
        return nullptr;
    GdiFlush();  // before the pixels are looked at
    auto flat = std::make_unique<OwnedImage>();
    if (Rastrel_CreateFromByte32(flat->Handle(), canvas.Pixels(), width, height) != 1)
        return nullptr;
    return flat;
}

}  // namespace rastrel_view
