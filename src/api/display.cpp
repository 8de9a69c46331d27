// Drawing, and the exchange of images with the desktop.

#include "api/calls.h"
#include "display/desktop.h"
#include "rastrel.h"

using namespace rastrel;

int RASTREL_CALL Rastrel_Draw(int handle, RastrelDC device, int x, int y, int width, int height,
                              int source_x, int source_y) {
    return WithRaster(handle, 0, [=](RasterImage& raster) {
        const auto opened = OpenDevice(device);
        return raster.Draw(opened.get(), {x, y, width, height}, source_x, source_y) ? 1 : 0;
    });
}

int RASTREL_CALL Rastrel_Stretch(int handle, RastrelDC device, int x, int y, int width, int height,
                                 int source_x, int source_y, int source_width, int source_height) {
    return WithRaster(handle, 0, [=](RasterImage& raster) {
        const auto opened = OpenDevice(device);
        const Rect source = {source_x, source_y, source_width, source_height};
        return raster.Stretch(opened.get(), {x, y, width, height}, source) ? 1 : 0;
    });
}

RastrelBitmap RASTREL_CALL Rastrel_Copy2HBitmap(int handle) {
    return WithImage(handle, RastrelBitmap{nullptr}, [](const ImageObject& image) {
        return image.IsValid() ? MakeDeviceBitmap(*image.Raster()) : nullptr;
    });
}

int RASTREL_CALL Rastrel_CopyToClipboard(int handle, RastrelWindow window) {
    return WithImage(handle, 0, [=](const ImageObject& image) {
        return image.IsValid() && PlaceOnClipboard(*image.Raster(), window) ? 1 : 0;
    });
}

int RASTREL_CALL Rastrel_CreateFromBitmap(int handle, RastrelBitmap bitmap) {
    return ReplaceImage(handle, [=](ImageObject& image) { ReadDeviceBitmap(image, bitmap); });
}

int RASTREL_CALL Rastrel_CreateFromWindow(int handle, RastrelWindow window) {
    return ReplaceImage(handle, [=](ImageObject& image) {
        CaptureWindow(image, window, WindowArea::kWhole, {0, 0, -1, -1});
    });
}

int RASTREL_CALL Rastrel_CreateFromWindowEX(int handle, RastrelWindow window, int x, int y,
                                            int width, int height, int client) {
    return ReplaceImage(handle, [=](ImageObject& image) {
        const WindowArea area = client != 0 ? WindowArea::kClient : WindowArea::kWhole;
        CaptureWindow(image, window, area, {x, y, width, height});
    });
}

int RASTREL_CALL Rastrel_DialogSave(int handle, char* buffer, int* type) {
    return WithImage(handle, 0, [=](ImageObject& image) {
        if (buffer == nullptr || type == nullptr || !image.IsValid()) return 0;
        return SaveByDialog(image, buffer, type);
    });
}
