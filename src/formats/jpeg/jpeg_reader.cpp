#include "formats/jpeg/jpeg_reader.h"

#include <jerror.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "formats/plausibility.h"

namespace rastrel {

namespace {

/// Enough for libjpeg's fast decoder of Huffman codes, which wants much at once.
constexpr std::size_t kBufferBytes = std::size_t{64} << 10;

/// Each scan of a progressive file, be it a few bytes long, is a walk over the whole picture. No
/// writer makes a tenth as many.
constexpr int kMostScans = 500;

constexpr int kRowsAtOnce = 64;

/// Where columns are decoded alone, smooth upsampling lacks a neighbour at either end: as many more
/// pixels make up for it at any subsampling.
constexpr int kColumnMargin = 8;

constexpr std::array<JOCTET, 2> kEndOfImage = {0xff, JPEG_EOI};

}  // namespace

JpegReader::JpegReader(ByteSource& source)
    : source_{.manager = {}, .bytes = &source, .buffer = {}, .anything_read = false} {
    source_.buffer.resize(kBufferBytes);
    source_.manager.init_source = InitSource;
    source_.manager.fill_input_buffer = FillBuffer;
    source_.manager.skip_input_data = SkipBytes;
    source_.manager.resync_to_restart = jpeg_resync_to_restart;
    source_.manager.term_source = InitSource;
    progress_.progress_monitor = CountScans;
    codec_.err = InstallJpegErrors(errors_);
}

JpegReader::~JpegReader() {
    jpeg_destroy_decompress(&codec_);
}

void JpegReader::InitSource(j_decompress_ptr /*codec*/) {}

boolean JpegReader::FillBuffer(j_decompress_ptr codec) {
    auto& source = *reinterpret_cast<Source*>(codec->src);
    const std::size_t count = source.bytes->Read(source.buffer);
    source.manager.next_input_byte = source.buffer.data();
    source.manager.bytes_in_buffer = count;
    if (count == 0) {
        if (!source.anything_read) ERREXIT(codec, JERR_INPUT_EMPTY);
        // What a cut file lacks shows grey, as everywhere.
        WARNMS(codec, JWRN_JPEG_EOF);
        source.manager.next_input_byte = kEndOfImage.data();
        source.manager.bytes_in_buffer = kEndOfImage.size();
    }
    source.anything_read = true;
    return TRUE;
}

void JpegReader::SkipBytes(j_decompress_ptr codec, long count) {
    auto& source = *reinterpret_cast<Source*>(codec->src);
    if (count <= 0) return;
    auto skipped = static_cast<std::size_t>(count);
    if (skipped > source.manager.bytes_in_buffer) {
        skipped -= source.manager.bytes_in_buffer;
        source.bytes->Seek(source.bytes->Position() + skipped);
        skipped = source.manager.bytes_in_buffer;
    }
    source.manager.next_input_byte += skipped;
    source.manager.bytes_in_buffer -= skipped;
}

void JpegReader::CountScans(j_common_ptr codec) {
    const auto* decompress = reinterpret_cast<j_decompress_ptr>(codec);
    if (decompress->input_scan_number > kMostScans) codec->err->error_exit(codec);
}

bool JpegReader::ReadHeader() {
    return RunRecoverably(errors_.recovery, [this] {
        jpeg_create_decompress(&codec_);
        codec_.src = &source_.manager;
        return jpeg_read_header(&codec_, TRUE) == JPEG_HEADER_OK;
    });
}

Size JpegReader::PixelSize() const {
    return {static_cast<int>(codec_.image_width), static_cast<int>(codec_.image_height)};
}

bool JpegReader::IsPlausible() const {
    const std::uint64_t pixel_bytes =
        std::uint64_t{codec_.image_width} * codec_.image_height * 3;  // no more than this
    if (pixel_bytes <= kMostMissingBytes) return true;
    // Every block of 8 x 8 samples takes a bit at least, but for arithmetic coding, which has no
    // such least; it is granted what plain areas really take.
    std::uint64_t blocks = 0;
    for (int i = 0; i < codec_.num_components; ++i) {
        const jpeg_component_info& component = codec_.comp_info[i];
        blocks += std::uint64_t{component.width_in_blocks} * component.height_in_blocks;
    }
    constexpr std::uint64_t kBlocksInByte = 8;
    constexpr std::uint64_t kArithmeticBlocksInByte = 1024;
    const std::uint64_t held = source_.bytes->Size();
    return blocks / (codec_.arith_code != 0 ? kArithmeticBlocksInByte : kBlocksInByte) <= held;
}

bool JpegReader::Start() {
    // The order of a bitmap's channels, where there are several. Files of four (CMYK in its kinds)
    // and of two have no way to it.
    switch (codec_.jpeg_color_space) {
        case JCS_GRAYSCALE:
            codec_.out_color_space = JCS_GRAYSCALE;
            break;
        case JCS_RGB:
        case JCS_YCbCr:
            codec_.out_color_space = JCS_EXT_BGR;
            break;
        default:
            return false;
    }
    return RunRecoverably(errors_.recovery, [this] {
        codec_.progress = &progress_;
        // Progressive files need all their coefficients at once, twice the bytes of their pixels.
        codec_.mem->max_memory_to_use = static_cast<long>(
            std::min<std::uint64_t>(2 * kMostBlockBytes, std::numeric_limits<long>::max()));
        return jpeg_start_decompress(&codec_) == TRUE;
    });
}

DibBlock JpegReader::Decode(const Rect& part) {
    if (!IsPlausible() || !Start()) return {};
    DibBlock block = DibBlock::Create(part.width, part.height, 8 * codec_.output_components);
    if (!block) return {};
    const DibHeader header = block.Header();
    const auto row_bytes = static_cast<std::ptrdiff_t>(
        DibRowBytes(header.bit_count, static_cast<std::uint32_t>(header.width)));
    std::uint8_t* top_row = block.Rows() + row_bytes * (part.height - 1);
    const bool decoded = part.width == PixelSize().width
                             ? DecodeRows(part.y, part.height, top_row, -row_bytes)
                             : DecodeColumns(part, top_row, -row_bytes);
    if (!decoded) return {};
    return block;
}

bool JpegReader::DecodeRows(int first, int count, std::uint8_t* rows, std::ptrdiff_t stride) {
    return RunRecoverably(errors_.recovery, [=, this] {
        if (first > 0) jpeg_skip_scanlines(&codec_, static_cast<JDIMENSION>(first));
        std::array<JSAMPROW, kRowsAtOnce> pointers;  // NOLINT: filled before each use
        for (int done = 0; done < count;) {
            const int wanted = std::min(count - done, kRowsAtOnce);
            for (int i = 0; i < wanted; ++i)
                pointers[static_cast<std::size_t>(i)] = rows + stride * (done + i);
            done += static_cast<int>(
                jpeg_read_scanlines(&codec_, pointers.data(), static_cast<JDIMENSION>(wanted)));
        }
        return codec_.output_scanline < codec_.output_height ||
               jpeg_finish_decompress(&codec_) == TRUE;
    });
}

bool JpegReader::DecodeColumns(const Rect& part, std::uint8_t* rows, std::ptrdiff_t stride) {
    const auto pixel_bytes = static_cast<std::size_t>(codec_.output_components);
    std::vector<std::uint8_t> scratch(codec_.output_width * pixel_bytes);
    const int left = std::max(part.x - kColumnMargin, 0);
    const int right = std::min(part.x + part.width + kColumnMargin, PixelSize().width);
    return RunRecoverably(errors_.recovery, [=, this, row = scratch.data()] {
        // libjpeg moves the left edge further, to where a group of blocks begins.
        auto from = static_cast<JDIMENSION>(left);
        auto width = static_cast<JDIMENSION>(right - left);
        jpeg_crop_scanline(&codec_, &from, &width);
        if (part.y > 0) jpeg_skip_scanlines(&codec_, static_cast<JDIMENSION>(part.y));
        const std::uint8_t* wanted = row + (static_cast<JDIMENSION>(part.x) - from) * pixel_bytes;
        for (int y = 0; y < part.height; ++y) {
            JSAMPROW pointer = row;
            jpeg_read_scanlines(&codec_, &pointer, 1);
            std::memcpy(rows + stride * y, wanted,
                        static_cast<std::size_t>(part.width) * pixel_bytes);
        }
        return true;
    });
}

}  // namespace rastrel
