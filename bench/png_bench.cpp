// PNG files of 2048 x 2048 colours, from and into the page cache, against libpng alone: the same
// rows, in the bitmap's own order of channels.

#include <png.h>

#include "codec_sample.h"

namespace rastrel_bench {
namespace {

constexpr int kSide = 2048;

const CodecSample& Sample() {
    static const CodecSample sample(kSide, ".png", 0);
    return sample;
}

bool ReadByLibpng(std::FILE* file, std::uint8_t* picture) {
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_read_info(png, info);
    png_set_bgr(png);
    png_read_update_info(png, info);
    for (int y = 0; y < kSide; ++y)
        png_read_row(png, picture + Sample().RowBytes() * static_cast<std::size_t>(kSide - 1 - y),
                     nullptr);
    png_read_end(png, nullptr);
    png_destroy_read_struct(&png, &info, nullptr);
    return true;
}

bool WriteByLibpng(std::FILE* file) {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_set_IHDR(png, info, kSide, kSide, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    png_set_bgr(png);
    for (int y = 0; y < kSide; ++y)
        png_write_row(png, Sample().Row(y));
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return true;
}

[[maybe_unused]] const bool registered = [] {
    using benchmark::State;
    AddBenchmark("png_read/rastrel", [](State& state) { Sample().Read(state); });
    AddBenchmark("png_read/libpng into one buffer",
                 [](State& state) { Sample().ReadBeside(state, false, ReadByLibpng); });
    AddBenchmark("png_read/libpng into fresh memory",
                 [](State& state) { Sample().ReadBeside(state, true, ReadByLibpng); });
    AddBenchmark("png_first_tenth/rastrel", [](State& state) { Sample().ReadFirstTenth(state); });
    AddBenchmark("png_first_tenth/the whole", [](State& state) { Sample().Read(state); });
    AddBenchmark("png_write/rastrel", [](State& state) { Sample().Write(state); });
    AddBenchmark("png_write/libpng",
                 [](State& state) { Sample().WriteBeside(state, WriteByLibpng); });
    return true;
}();

}  // namespace
}  // namespace rastrel_bench
