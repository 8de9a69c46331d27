// Reading and saving files, and what they say of themselves.

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>

#include "api/calls.h"
#include "rastrel.h"

using namespace rastrel;

namespace {

bool IsEmptyName(const char* name) {
    return name == nullptr || *name == '\0';
}

int ReadPartial(int handle, const char* name, int type, Rect part, int reduction) {
    return WithImage(handle, 0, [=](ImageObject& image) {
        return name != nullptr && image.ReadPart(name, type, part, reduction) ? 1 : 0;
    });
}

/// Reads three files, or one for all three channels, and combines them into the image.
void ReadBands(ImageObject& image, const char* red_name, const char* green_name,
               const char* blue_name, int type) {
    ImageObject red;
    if (red_name == nullptr || !red.Read(red_name, type)) return;
    if (IsEmptyName(green_name) && IsEmptyName(blue_name)) {
        image.CombineBands(red, red, red);
        return;
    }
    ImageObject green;
    ImageObject blue;
    if (IsEmptyName(green_name) || !green.Read(green_name, type)) return;
    if (IsEmptyName(blue_name) || !blue.Read(blue_name, type)) return;
    image.CombineBands(red, green, blue);
}

}  // namespace

int RASTREL_CALL Rastrel_ReadInfo(const char* name, int* width, int* height, int* bits) {
    return Guarded(0, [=] {
        ImageObject image;
        ImageInfo info;
        if (name == nullptr || !image.ReadInfo(name, info)) return 0;
        if (width != nullptr) *width = info.width;
        if (height != nullptr) *height = info.height;
        if (bits != nullptr) *bits = info.bits;
        return 1;
    });
}

int RASTREL_CALL Rastrel_Read(int handle, const char* name, int type) {
    return WithImage(handle, 0, [=](ImageObject& image) {
        return name != nullptr && image.Read(name, type) ? 1 : 0;
    });
}

int RASTREL_CALL Rastrel_ReadPartial(int handle, const char* name, int type, int x, int y,
                                     int width, int height) {
    return ReadPartial(handle, name, type, {x, y, width, height}, 1);
}

int RASTREL_CALL Rastrel_ReadPartialEx(int handle, const char* name, int type, int x, int y,
                                       int width, int height, int reduction) {
    return ReadPartial(handle, name, type, {x, y, width, height}, reduction);
}

int RASTREL_CALL Rastrel_Read3(int handle, const char* red_name, const char* green_name,
                               const char* blue_name, int type) {
    return ReplaceImage(handle, [=](ImageObject& image) {
        ReadBands(image, red_name, green_name, blue_name, type);
    });
}

int RASTREL_CALL Rastrel_Save(int handle, const char* name, int type) {
    return WithImage(handle, 0, [=](ImageObject& image) {
        return name != nullptr && image.Save(name, type) ? 1 : 0;
    });
}

int RASTREL_CALL Rastrel_GetImageType(int handle) {
    return WithImage(handle, 0, [](const ImageObject& image) { return image.Type(); });
}

int RASTREL_CALL Rastrel_GetDescription(int handle, char* buffer, int size) {
    return WithRaster(handle, 0, [=](const RasterImage& raster) {
        FormatTexts texts;
        if (buffer == nullptr || size < 1 || !raster.Describe(texts)) return 0;
        std::string text = texts.description;
        if (!texts.compression.empty()) text += "\n" + texts.compression;
        const std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
        std::memcpy(buffer, text.data(), length);
        buffer[length] = '\0';
        return 1;
    });
}

int RASTREL_CALL Rastrel_SetQuality(int handle, int quality) {
    return WithRaster(handle, 0, [=](RasterImage& raster) {
        raster.SetQuality(quality);
        return 1;
    });
}

int RASTREL_CALL Rastrel_GetQuality(int handle) {
    return WithRaster(handle, 0, [](const RasterImage& raster) { return raster.Quality(); });
}
