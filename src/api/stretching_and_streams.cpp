// Stretching of images, and images as streams of bytes.

#include <algorithm>
#include <limits>

#include "api/calls.h"
#include "imaging/streams.h"
#include "imaging/stretching.h"
#include "rastrel.h"

using namespace rastrel;

int RASTREL_CALL Rastrel_CalculateStretching(int handle, int method, double k, uint8_t* red_table,
                                             uint8_t* green_table, uint8_t* blue_table) {
    return WithRaster(handle, 0, [=](const RasterImage& raster) {
        if (red_table == nullptr || green_table == nullptr || blue_table == nullptr) return 0;
        if (method < 0 || method > static_cast<int>(StretchMethod::kEqualised)) return 0;
        const auto tables = CalculateStretching(raster, static_cast<StretchMethod>(method), k);
        if (!tables) return 0;
        std::copy(tables->red.begin(), tables->red.end(), red_table);
        std::copy(tables->green.begin(), tables->green.end(), green_table);
        std::copy(tables->blue.begin(), tables->blue.end(), blue_table);
        return 1;
    });
}

int RASTREL_CALL Rastrel_ApplyStretching(int handle, const uint8_t* red_table,
                                         const uint8_t* green_table, const uint8_t* blue_table) {
    return WithRaster(handle, 0, [=](RasterImage& raster) {
        if (red_table == nullptr || green_table == nullptr || blue_table == nullptr) return 0;
        StretchTables tables;
        std::copy_n(red_table, tables.red.size(), tables.red.begin());
        std::copy_n(green_table, tables.green.size(), tables.green.begin());
        std::copy_n(blue_table, tables.blue.size(), tables.blue.begin());
        return ApplyStretching(raster, tables) ? 1 : 0;
    });
}

int RASTREL_CALL Rastrel_StreamMaxSize(int handle) {
    return WithImage(handle, 0, [](const ImageObject& image) {
        const std::uint64_t bytes = MostQviStreamBytes(image);
        return bytes <= std::numeric_limits<int>::max() ? static_cast<int>(bytes) : 0;
    });
}

int RASTREL_CALL Rastrel_Image2Stream(int handle, uint8_t* buffer, int capacity, int type,
                                      int* size) {
    return WithImage(handle, 0, [=](ImageObject& image) {
        if (capacity < 0 || (buffer == nullptr && capacity > 0)) return 0;
        const StreamResult result =
            WriteStream(image, type, {buffer, static_cast<std::size_t>(capacity)});
        // A stream that is longer than this can say fits no buffer either.
        if (result.needed == 0 || result.needed > std::numeric_limits<int>::max()) return 0;
        if (size != nullptr) *size = static_cast<int>(result.needed);
        return result.written ? 1 : 0;
    });
}

int RASTREL_CALL Rastrel_Stream2Image(int handle, const uint8_t* buffer, int size, int type) {
    return WithImage(handle, 0, [=](ImageObject& image) {
        if (buffer == nullptr || size < 1) return 0;
        return ReadStream(image, type, {buffer, static_cast<std::size_t>(size)}) ? 1 : 0;
    });
}
