// Tall JPEG files from bands.

#include <cstdint>

#include "api/calls.h"
#include "api/writer_table.h"
#include "formats/jpeg/jpeg_band_writer.h"
#include "rastrel.h"

using namespace rastrel;

namespace {

WriterTable<JpegBandWriter>& Writers() {
    static WriterTable<JpegBandWriter> table;
    return table;
}

}  // namespace

intptr_t RASTREL_CALL Rastrel_JPEGOpen(const char* name, int quality, int width, int height,
                                       int handle) {
    return WithRaster(handle, intptr_t{0}, [=](const RasterImage& raster) {
        if (name == nullptr) return intptr_t{0};
        return Writers().Add(JpegBandWriter::Open(name, quality, {width, height}, raster));
    });
}

int RASTREL_CALL Rastrel_JPEGAppend(intptr_t writer, int handle) {
    return WithRaster(handle, 0, [=](const RasterImage& raster) {
        const auto found = Writers().Fetch(writer);
        return found && found->Append(raster) ? 1 : 0;
    });
}

int RASTREL_CALL Rastrel_JPEGClose(intptr_t writer, int /*reserved*/) {
    return Guarded(0, [=] {
        const auto found = Writers().Remove(writer);
        return found && found->Close() ? 1 : 0;
    });
}
