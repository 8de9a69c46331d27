#include "formats/jpeg/jpeg_band_writer.h"

#include <algorithm>
#include <utility>

#include "core/pixel_reader.h"
#include "core/pixel_rows.h"

namespace rastrel {

JpegBandWriter::JpegBandWriter(std::unique_ptr<FileSink> file, Size total)
    : file_(std::move(file)),
      writer_(*file_),
      width_(total.width),
      row_(static_cast<std::size_t>(total.width) * 3),
      colors_(row_.size()) {}

std::unique_ptr<JpegBandWriter> JpegBandWriter::Open(const std::string& name, int quality,
                                                     Size total, const RasterImage& first) {
    if (!first.HasPlainRows() || first.Width() != total.width || total.width > kMostJpegSide ||
        total.height < 1 || total.height > kMostJpegSide)
        return nullptr;
    auto file = FileSink::CreateInPlace(name);
    if (!file) return nullptr;
    std::unique_ptr<JpegBandWriter> writer(new JpegBandWriter(std::move(file), total));
    writer->grey_ = first.Bits() == 8;
    const JpegRows kind = writer->grey_ ? JpegRows::kGrey : JpegRows::kRgb;
    if (!writer->writer_.Start(total, kind, std::clamp(quality, 1, 99)) || !writer->Append(first))
        return nullptr;
    return writer;
}

bool JpegBandWriter::Append(const RasterImage& next) {
    if (!file_ || failed_ || !next.HasPlainRows() || next.Width() != width_) return false;
    PixelReader colors(next, PixelForm::kBgr);
    for (int y = 0; y < next.Height() && !failed_; ++y) {
        // A shallow image leaves the row of a file in colour as the last one has left it.
        if (next.Bits() >= 24 || grey_) {
            colors.Read(0, y, colors_);
            if (next.Bits() >= 24)
                SwapRedBlue24(colors_, row_);
            else
                TakeChannel(colors_, 2, std::span(row_).first(colors_.size() / 3));
        }
        failed_ = !writer_.WriteRows(row_.data(), 0, 1);
    }
    return !failed_;
}

bool JpegBandWriter::Close() {
    if (!file_) return false;
    const bool finished = !failed_ && writer_.Finish();
    const auto file = std::exchange(file_, nullptr);
    return file->Commit() && finished;
}

}  // namespace rastrel
