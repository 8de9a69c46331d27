#include "formats/jpeg/jpeg_writer.h"

#include <jerror.h>

#include <algorithm>
#include <array>

#include "formats/quiet_write.h"

namespace rastrel {

namespace {

constexpr std::size_t kBufferBytes = std::size_t{64} << 10;
constexpr int kRowsAtOnce = 64;

J_COLOR_SPACE ColorSpaceOf(JpegRows kind) {
    switch (kind) {
        case JpegRows::kGrey:
            return JCS_GRAYSCALE;
        case JpegRows::kRgb:
            return JCS_RGB;
        case JpegRows::kBgr:
            return JCS_EXT_BGR;
        default:
            return JCS_EXT_BGRX;
    }
}

int BytesOf(JpegRows kind) {
    switch (kind) {
        case JpegRows::kGrey:
            return 1;
        case JpegRows::kBgrx:
            return 4;
        default:
            return 3;
    }
}

}  // namespace

JpegWriter::JpegWriter(ByteSink& sink) : destination_{.manager = {}, .sink = &sink, .buffer = {}} {
    destination_.buffer.resize(kBufferBytes);
    destination_.manager.init_destination = InitDestination;
    destination_.manager.empty_output_buffer = EmptyBuffer;
    destination_.manager.term_destination = EndDestination;
    codec_.err = InstallJpegErrors(errors_);
}

JpegWriter::~JpegWriter() {
    jpeg_destroy_compress(&codec_);
}

void JpegWriter::InitDestination(j_compress_ptr codec) {
    auto& destination = *reinterpret_cast<Destination*>(codec->dest);
    destination.manager.next_output_byte = destination.buffer.data();
    destination.manager.free_in_buffer = destination.buffer.size();
}

boolean JpegWriter::EmptyBuffer(j_compress_ptr codec) {
    auto& destination = *reinterpret_cast<Destination*>(codec->dest);
    if (!WriteQuietly(*destination.sink, destination.buffer)) ERREXIT(codec, JERR_FILE_WRITE);
    InitDestination(codec);
    return TRUE;
}

void JpegWriter::EndDestination(j_compress_ptr codec) {
    auto& destination = *reinterpret_cast<Destination*>(codec->dest);
    const std::size_t used = destination.buffer.size() - destination.manager.free_in_buffer;
    if (!WriteQuietly(*destination.sink, {destination.buffer.data(), used}))
        ERREXIT(codec, JERR_FILE_WRITE);
}

bool JpegWriter::Start(Size size, JpegRows kind, int quality) {
    if (size.width < 1 || size.height < 1) return false;
    return RunRecoverably(errors_.recovery, [=, this] {
        jpeg_create_compress(&codec_);
        codec_.dest = &destination_.manager;
        codec_.image_width = static_cast<JDIMENSION>(size.width);
        codec_.image_height = static_cast<JDIMENSION>(size.height);
        codec_.input_components = BytesOf(kind);
        codec_.in_color_space = ColorSpaceOf(kind);
        jpeg_set_defaults(&codec_);
        jpeg_set_quality(&codec_, quality, TRUE);
        jpeg_start_compress(&codec_, TRUE);
        return true;
    });
}

bool JpegWriter::WriteRows(const std::uint8_t* rows, std::ptrdiff_t stride, int count) {
    return RunRecoverably(errors_.recovery, [=, this] {
        const auto left = static_cast<int>(codec_.image_height - codec_.next_scanline);
        const int wanted = std::min(count, left);
        std::array<JSAMPROW, kRowsAtOnce> pointers;  // NOLINT: filled before each use
        for (int done = 0; done < wanted;) {
            const int now = std::min(wanted - done, kRowsAtOnce);
            // libjpeg's rows are not const, though it only reads them.
            for (int i = 0; i < now; ++i)
                pointers[static_cast<std::size_t>(i)] =
                    const_cast<JSAMPROW>(rows + stride * (done + i));
            done += static_cast<int>(
                jpeg_write_scanlines(&codec_, pointers.data(), static_cast<JDIMENSION>(now)));
        }
        return true;
    });
}

bool JpegWriter::Finish() {
    return RunRecoverably(errors_.recovery, [this] {
        jpeg_finish_compress(&codec_);
        return true;
    });
}

}  // namespace rastrel
