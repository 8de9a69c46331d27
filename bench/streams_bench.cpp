// Images as streams of bytes, in memory from end to end, against libjpeg and libpng alone: the same
// rows, in the bitmap's own order of channels. JPEG 4096 x 4096 colours at quality 75, PNG 2048 x
// 2048.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdio>

#include <jpeglib.h>
#include <png.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "codec_sample.h"

namespace rastrel_bench {
namespace {

constexpr int kQuality = 75;

/// An image of colours, and its stream.
class StreamSample {
  public:
    StreamSample(int side, int type) : side_(side), type_(type), image_(side, side, 24) {
        FillWithGround(image_.Handle());
        Rastrel_SetQuality(image_.Handle(), kQuality);
        int size = 0;
        Rastrel_Image2Stream(image_.Handle(), nullptr, 0, type, &size);
        stream_.resize(static_cast<std::size_t>(size));
        if (Rastrel_Image2Stream(image_.Handle(), stream_.data(), size, type, &size) != 1)
            std::abort();
    }

    [[nodiscard]] unsigned Side() const { return static_cast<unsigned>(side_); }
    [[nodiscard]] std::size_t RowBytes() const { return static_cast<std::size_t>(side_) * 3; }
    [[nodiscard]] std::size_t Bytes() const { return RowBytes() * Side(); }
    [[nodiscard]] const std::vector<std::uint8_t>& Stream() const { return stream_; }
    /// The picture's rows from the top, blue first.
    [[nodiscard]] std::uint8_t* Row(unsigned y) const {
        return Rastrel_GetRawImage(image_.Handle()) + RowBytes() * (Side() - 1 - y);
    }

    void Read(benchmark::State& state) const {
        for (auto _ : state) {
            const BenchImage image;
            if (Rastrel_Stream2Image(image.Handle(), stream_.data(),
                                     static_cast<int>(stream_.size()), type_) != 1)
                state.SkipWithError("read failed");
        }
    }
    void Write(benchmark::State& state) const {
        std::vector<std::uint8_t> buffer(stream_.size());
        for (auto _ : state) {
            int size = 0;
            if (Rastrel_Image2Stream(image_.Handle(), buffer.data(),
                                     static_cast<int>(buffer.size()), type_, &size) != 1)
                state.SkipWithError("write failed");
        }
    }
    /// Has another program's function read the stream to a picture's place in memory: the same
    /// again and again, or fresh.
    template <class Function>
    void ReadBeside(benchmark::State& state, bool fresh, const Function& read) const {
        const auto reused = FreshBuffer(fresh ? 0 : Bytes());
        std::fill_n(reused.get(), fresh ? 0 : Bytes(), std::uint8_t{1});
        for (auto _ : state) {
            const auto picture = FreshBuffer(fresh ? Bytes() : 0);
            read(fresh ? picture.get() : reused.get());
        }
    }
    /// Has another program's function write the stream into a buffer that suffices.
    template <class Function>
    void WriteBeside(benchmark::State& state, const Function& write) const {
        std::vector<std::uint8_t> buffer(2 * stream_.size());
        for (auto _ : state) {
            if (write(buffer) == 0) state.SkipWithError("write failed");
        }
    }

  private:
    int side_;
    int type_;
    BenchImage image_;
    std::vector<std::uint8_t> stream_;
};

const StreamSample& Jpeg() {
    static const StreamSample sample(4096, RASTREL_TYPE_JPEG);
    return sample;
}

const StreamSample& Png() {
    static const StreamSample sample(2048, RASTREL_TYPE_PNG);
    return sample;
}

void ReadByLibjpeg(std::uint8_t* picture) {
    const StreamSample& sample = Jpeg();
    jpeg_error_mgr errors;
    jpeg_decompress_struct codec = {};
    codec.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&codec);
    jpeg_mem_src(&codec, sample.Stream().data(),
                 static_cast<unsigned long>(sample.Stream().size()));
    jpeg_read_header(&codec, TRUE);
    codec.out_color_space = JCS_EXT_BGR;
    jpeg_start_decompress(&codec);
    while (codec.output_scanline < codec.output_height) {
        JSAMPROW row = picture + sample.RowBytes() * (sample.Side() - 1 - codec.output_scanline);
        jpeg_read_scanlines(&codec, &row, 1);
    }
    jpeg_finish_decompress(&codec);
    jpeg_destroy_decompress(&codec);
}

std::size_t WriteByLibjpeg(std::vector<std::uint8_t>& buffer) {
    const StreamSample& sample = Jpeg();
    jpeg_error_mgr errors;
    jpeg_compress_struct codec = {};
    codec.err = jpeg_std_error(&errors);
    jpeg_create_compress(&codec);
    unsigned char* place = buffer.data();
    auto size = static_cast<unsigned long>(buffer.size());
    jpeg_mem_dest(&codec, &place, &size);
    codec.image_width = codec.image_height = sample.Side();
    codec.input_components = 3;
    codec.in_color_space = JCS_EXT_BGR;
    jpeg_set_defaults(&codec);
    jpeg_set_quality(&codec, kQuality, TRUE);
    jpeg_start_compress(&codec, TRUE);
    while (codec.next_scanline < codec.image_height) {
        JSAMPROW row = sample.Row(codec.next_scanline);
        jpeg_write_scanlines(&codec, &row, 1);
    }
    jpeg_finish_compress(&codec);
    jpeg_destroy_compress(&codec);
    return place == buffer.data() ? size : 0;
}

/// A run of bytes that libpng reads or writes the next of.
struct Place {
    std::uint8_t* at;
    const std::uint8_t* end;
};

void TakeBytes(png_structp png, png_bytep to, std::size_t count) {
    auto& place = *static_cast<Place*>(png_get_io_ptr(png));
    if (static_cast<std::size_t>(place.end - place.at) < count) png_error(png, "too short");
    std::copy_n(place.at, count, to);
    place.at += count;
}

void PutBytes(png_structp png, png_bytep from, std::size_t count) {
    auto& place = *static_cast<Place*>(png_get_io_ptr(png));
    if (static_cast<std::size_t>(place.end - place.at) < count) png_error(png, "too long");
    place.at = std::copy_n(from, count, place.at);
}

void ReadByLibpng(std::uint8_t* picture) {
    const StreamSample& sample = Png();
    std::vector<std::uint8_t> stream = sample.Stream();
    Place place = {stream.data(), stream.data() + stream.size()};
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_read_fn(png, &place, TakeBytes);
    png_read_info(png, info);
    png_set_bgr(png);
    png_read_update_info(png, info);
    for (unsigned y = 0; y < sample.Side(); ++y)
        png_read_row(png, picture + sample.RowBytes() * (sample.Side() - 1 - y), nullptr);
    png_read_end(png, nullptr);
    png_destroy_read_struct(&png, &info, nullptr);
}

std::size_t WriteByLibpng(std::vector<std::uint8_t>& buffer) {
    const StreamSample& sample = Png();
    Place place = {buffer.data(), buffer.data() + buffer.size()};
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &place, PutBytes, nullptr);
    png_set_IHDR(png, info, sample.Side(), sample.Side(), 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    png_set_bgr(png);
    for (unsigned y = 0; y < sample.Side(); ++y)
        png_write_row(png, sample.Row(y));
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return static_cast<std::size_t>(place.at - buffer.data());
}

[[maybe_unused]] const bool registered = [] {
    using benchmark::State;
    AddBenchmark("stream_read_jpeg/rastrel", [](State& state) { Jpeg().Read(state); });
    AddBenchmark("stream_read_jpeg/libjpeg into one buffer",
                 [](State& state) { Jpeg().ReadBeside(state, false, ReadByLibjpeg); });
    AddBenchmark("stream_read_jpeg/libjpeg into fresh memory",
                 [](State& state) { Jpeg().ReadBeside(state, true, ReadByLibjpeg); });
    AddBenchmark("stream_write_jpeg/rastrel", [](State& state) { Jpeg().Write(state); });
    AddBenchmark("stream_write_jpeg/libjpeg",
                 [](State& state) { Jpeg().WriteBeside(state, WriteByLibjpeg); });
    AddBenchmark("stream_read_png/rastrel", [](State& state) { Png().Read(state); });
    AddBenchmark("stream_read_png/libpng into one buffer",
                 [](State& state) { Png().ReadBeside(state, false, ReadByLibpng); });
    AddBenchmark("stream_read_png/libpng into fresh memory",
                 [](State& state) { Png().ReadBeside(state, true, ReadByLibpng); });
    AddBenchmark("stream_write_png/rastrel", [](State& state) { Png().Write(state); });
    AddBenchmark("stream_write_png/libpng",
                 [](State& state) { Png().WriteBeside(state, WriteByLibpng); });
    return true;
}();

}  // namespace
}  // namespace rastrel_bench
