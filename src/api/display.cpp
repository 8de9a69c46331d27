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
