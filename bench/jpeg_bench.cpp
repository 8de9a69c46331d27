// JPEG files of 4096 x 4096 colours at quality 75, from and into the page cache, against libjpeg
// alone: the same rows, in the bitmap's own order of channels.

#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

#include <filesystem>

#include "codec_sample.h"

namespace rastrel_bench {
namespace {

constexpr int kSide = 4096;
constexpr int kQuality = 75;

const CodecSample& Sample() {
    static const CodecSample sample(kSide, ".jpg", kQuality);
    return sample;
}

/// From memory, where libjpeg has its faster decoder of codes all the time: its own source of files
/// hands over 4096 bytes at once.
bool ReadByLibjpeg(std::FILE* file, std::uint8_t* picture) {
    static const auto bytes = FreshBuffer(std::filesystem::file_size(Sample().Path()));
    const std::size_t size =
        std::fread(bytes.get(), 1, std::filesystem::file_size(Sample().Path()), file);
    jpeg_error_mgr errors;
    jpeg_decompress_struct codec = {};
    codec.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&codec);
    jpeg_mem_src(&codec, bytes.get(), static_cast<unsigned long>(size));
    jpeg_read_header(&codec, TRUE);
    codec.out_color_space = JCS_EXT_BGR;
    jpeg_start_decompress(&codec);
    while (codec.output_scanline < codec.output_height) {
        JSAMPROW row =
            picture + Sample().RowBytes() * (codec.output_height - 1 - codec.output_scanline);
        jpeg_read_scanlines(&codec, &row, 1);
    }
    jpeg_finish_decompress(&codec);
    jpeg_destroy_decompress(&codec);
    return true;
}

bool WriteByLibjpeg(std::FILE* file) {
    jpeg_error_mgr errors;
    jpeg_compress_struct codec = {};
    codec.err = jpeg_std_error(&errors);
    jpeg_create_compress(&codec);
    jpeg_stdio_dest(&codec, file);
    codec.image_width = codec.image_height = kSide;
    codec.input_components = 3;
    codec.in_color_space = JCS_EXT_BGR;
    jpeg_set_defaults(&codec);
    jpeg_set_quality(&codec, kQuality, TRUE);
    jpeg_start_compress(&codec, TRUE);
    while (codec.next_scanline < codec.image_height) {
        JSAMPROW row = Sample().Row(static_cast<int>(codec.next_scanline));
        jpeg_write_scanlines(&codec, &row, 1);
    }
    jpeg_finish_compress(&codec);
    jpeg_destroy_compress(&codec);
    return true;
}

[[maybe_unused]] const bool registered = [] {
    using benchmark::State;
    AddBenchmark("jpeg_read/rastrel", [](State& state) { Sample().Read(state); });
    AddBenchmark("jpeg_read/libjpeg into one buffer",
                 [](State& state) { Sample().ReadBeside(state, false, ReadByLibjpeg); });
    AddBenchmark("jpeg_read/libjpeg into fresh memory",
                 [](State& state) { Sample().ReadBeside(state, true, ReadByLibjpeg); });
    AddBenchmark("jpeg_first_tenth/rastrel", [](State& state) { Sample().ReadFirstTenth(state); });
    AddBenchmark("jpeg_first_tenth/the whole", [](State& state) { Sample().Read(state); });
    AddBenchmark("jpeg_write/rastrel", [](State& state) { Sample().Write(state); });
    AddBenchmark("jpeg_write/libjpeg",
                 [](State& state) { Sample().WriteBeside(state, WriteByLibjpeg); });
    return true;
}();

}  // namespace
}  // namespace rastrel_bench
