// Tall TIFF files from bands.

#include <cstdint>
#include <string>

#include "api/calls.h"
#include "api/writer_table.h"
#include "formats/tiff/tiff_band_writer.h"
#include "rastrel.h"

using namespace rastrel;

namespace {

WriterTable<TiffBandWriter>& Writers() {
    static WriterTable<TiffBandWriter> table;
    return table;
}

}  // namespace

intptr_t RASTREL_CALL Rastrel_TIFFOpen(const char* name, int compression, int width, int height,
                                       int handle) {
    return WithRaster(handle, intptr_t{0}, [=](const RasterImage& raster) {
        if (name == nullptr) return intptr_t{0};
        return Writers().Add(TiffBandWriter::Open(name, compression, {width, height}, raster));
    });
}

int RASTREL_CALL Rastrel_TIFFAppend(intptr_t writer, int handle) {
    return WithRaster(handle, 0, [=](const RasterImage& raster) {
        const auto found = Writers().Fetch(writer);
        return found && found->Append(raster) ? 1 : 0;
    });
}

int RASTREL_CALL Rastrel_TIFFClose(intptr_t writer) {
    return Guarded(0, [=] {
        const auto found = Writers().Remove(writer);
        return found && found->Close() ? 1 : 0;
    });
}
