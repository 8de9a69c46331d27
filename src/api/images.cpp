// Images and handles: making, copying and ending them.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "api/calls.h"
#include "core/channels.h"
#include "core/pixel_rows.h"
#include "process/stretch.h"
#include "rastrel.h"

using namespace rastrel;

namespace {

/// Makes an 8-bit image with the grey palette and fills it row by row, from the top: store is given
/// the number of the row's first sample and the row.
template <class Store>
void BuildGreyImage(ImageObject& image, int width, int height, Store store) {
    if (!image.Create(width, height, 8, kColorTypePalettised)) return;
    RasterImage& raster = *image.Raster();
    raster.SetPalette(Palette::Grey());
    const auto columns = static_cast<std::size_t>(width);
    for (int y = 0; y < height; ++y)
        store(static_cast<std::size_t>(y) * columns, raster.PictureRow(y).first(columns));
}

template <class Sample>
int CreateFromSamples(int handle, const Sample* samples, int width, int height) {
    return ReplaceImage(handle, [=](ImageObject& image) {
        if (samples == nullptr || width < 1 || height < 1) return;
        const std::span all(samples,
                            static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        StretchBounds bounds;
        BuildGreyImage(image, width, height, [&](std::size_t first, std::span<std::uint8_t> row) {
            if (first == 0) bounds = FiniteExtremes(all);
            Stretch(samples + first, row.size(), bounds, row.data());
        });
    });
}

template <class StoreRow>
int CreateTrueColor(int handle, const std::uint8_t* pixels, std::size_t pixel_bytes, int width,
                    int height, StoreRow store) {
    return ReplaceImage(handle, [=](ImageObject& image) {
        if (pixels == nullptr || !image.Create(width, height, 24)) return;
        const auto columns = static_cast<std::size_t>(width);
        for (int y = 0; y < height; ++y) {
            const std::span from(pixels + static_cast<std::size_t>(y) * columns * pixel_bytes,
                                 columns * pixel_bytes);
            store(from, image.Raster()->PictureRow(y).first(columns * 3));
        }
    });
}

}  // namespace

int RASTREL_CALL Rastrel_New(void) {
    return Guarded(-1, [] { return ImageTable().Add(std::make_shared<ImageObject>()); });
}

int RASTREL_CALL Rastrel_Delete(int handle) {
    return Guarded(0, [=] { return ImageTable().Remove(handle) ? 1 : 0; });
}

int RASTREL_CALL Rastrel_Create(int handle, int width, int height, int bits) {
    return Guarded(0, [=] {
        const auto fresh = std::make_shared<ImageObject>();
        if (!ImageTable().Replace(handle, fresh)) return 0;
        if (fresh->Create(width, height, bits)) return 1;
        ImageTable().RemoveIfHolding(handle, fresh);
        return 0;
    });
}

int RASTREL_CALL Rastrel_CreateFromByte(int handle, const uint8_t* pixels, int width, int height) {
    return ReplaceImage(handle, [=](ImageObject& image) {
        if (pixels == nullptr) return;
        BuildGreyImage(image, width, height, [=](std::size_t first, std::span<std::uint8_t> row) {
            std::copy_n(pixels + first, row.size(), row.begin());
        });
    });
}

int RASTREL_CALL Rastrel_CreateFromByte24(int handle, const uint8_t* pixels, int width,
                                          int height) {
    return CreateTrueColor(handle, pixels, 3, width, height, [](auto from, auto to) {
        std::copy(from.begin(), from.end(), to.begin());
    });
}

int RASTREL_CALL Rastrel_CreateFromByte32(int handle, const uint8_t* pixels, int width,
                                          int height) {
    return CreateTrueColor(handle, pixels, 4, width, height, Bgr24From32);
}

int RASTREL_CALL Rastrel_CreateFromShort(int handle, const int16_t* samples, int width,
                                         int height) {
    return CreateFromSamples(handle, samples, width, height);
}

int RASTREL_CALL Rastrel_CreateFromInt(int handle, const int32_t* samples, int width, int height) {
    return CreateFromSamples(handle, samples, width, height);
}

int RASTREL_CALL Rastrel_CreateFromFloat(int handle, const float* samples, int width, int height) {
    return CreateFromSamples(handle, samples, width, height);
}

int RASTREL_CALL Rastrel_CreateFrom3Bands(int target, int red_handle, int green_handle,
                                          int blue_handle) {
    return WithImages(
        0,
        [=](const ImageObject& red, const ImageObject& green, const ImageObject& blue) {
            return ReplaceImage(target,
                                [&](ImageObject& image) { image.CombineBands(red, green, blue); });
        },
        red_handle, green_handle, blue_handle);
}

int RASTREL_CALL Rastrel_Copy(int target, int source) {
    return WithImage(source, 0, [=](const ImageObject& original) {
        return ReplaceImage(target, [&](ImageObject& image) { image.CopyFrom(original); });
    });
}
