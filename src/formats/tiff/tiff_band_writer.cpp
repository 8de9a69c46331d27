#include "formats/tiff/tiff_band_writer.h"

#include <utility>

namespace rastrel {

TiffBandWriter::TiffBandWriter(std::unique_ptr<TiffOutput> file, TiffForm form, Size total)
    : file_(std::move(file)), form_(form), total_(total), rows_(*file_, form, total) {}

std::unique_ptr<TiffBandWriter> TiffBandWriter::Open(const std::string& name, int compression,
                                                     Size total, const RasterImage& first) {
    const auto form = TiffFormOf(first, true);
    if (!form || first.Width() != total.width || first.Height() > total.height ||
        !CanCompressTiff(compression, *form, total))
        return nullptr;
    auto file = TiffOutput::Create(name, TiffOutput::Place::kItself);
    if (!file || !SetTiffTags(*file, total, compression) || !SetTiffFormTags(*file, *form, first))
        return nullptr;
    std::unique_ptr<TiffBandWriter> writer(new TiffBandWriter(std::move(file), *form, total));
    if (!writer->rows_.Write(first)) return nullptr;
    return writer;
}

bool TiffBandWriter::Append(const RasterImage& next) {
    // No grey test: a band is appended as indices, whatever its palette and the first one's.
    const auto form = TiffFormOf(next, false);
    if (!file_ || !form || BitsOf(*form) != BitsOf(form_)) return false;
    if (rows_.RowsWritten() + next.Height() > total_.height) return false;
    return rows_.Write(next);
}

bool TiffBandWriter::Close() {
    if (!file_) return false;
    const auto file = std::exchange(file_, nullptr);
    bool flushed = TIFFFlushData(file->Tiff()) == 1;
    if (form_ == TiffForm::kGrey) {
        // Files of grey bands have always come without these two tags: they served the encoder
        // alone.
        flushed = TIFFUnsetField(file->Tiff(), TIFFTAG_BITSPERSAMPLE) == 1 &&
                  TIFFUnsetField(file->Tiff(), TIFFTAG_PHOTOMETRIC) == 1 && flushed;
    }
    return file->Commit() && flushed;
}

}  // namespace rastrel
