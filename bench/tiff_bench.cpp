// TIFF files of 4096 x 4096 colours from and into the page cache, against libtiff alone: its strips
// and tiles decoded into one buffer that stays in the caches, its one-strip files written from rows
// that stand ready.

#include <benchmark/benchmark.h>
#include <tiffio.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <memory>

#include "support.h"

namespace rastrel_bench {
namespace {

constexpr int kSide = 4096;
constexpr std::size_t kRowBytes = std::size_t{kSide} * 3;
constexpr std::uint32_t kStripRows = 16;
constexpr std::uint32_t kTileSide = 256;

struct TiffCloser {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using Tiff = std::unique_ptr<TIFF, TiffCloser>;

/// The sample: an image, and its rows in a file's order of channels.
class Sample {
  public:
    static Sample& Get() {
        static Sample sample;
        return sample;
    }
    Sample(const Sample&) = delete;
    Sample& operator=(const Sample&) = delete;
    ~Sample() {
        for (const auto& [key, path] : files_)
            std::remove(path.c_str());
    }
    [[nodiscard]] int Handle() const { return image_.Handle(); }
    [[nodiscard]] std::uint8_t* Rows() { return rows_.get(); }
    /// A file in strips of a few rows, or in tiles.
    const std::string& File(int compression, bool tiled) {
        std::string& path = files_[{compression, tiled}];
        if (path.empty()) {
            path = TemporaryPath("rastrel-bench-" + std::to_string(compression) +
                                 (tiled ? "-tiles.tif" : "-strips.tif"));
            Make(path, compression, tiled);
        }
        return path;
    }

  private:
    Sample() : rows_(FreshBuffer(kRowBytes * kSide)) {
        FillWithGround(image_.Handle());
        Rastrel_GetImageByte(image_.Handle(), rows_.get(), 24, 0, 0, kSide, kSide);
        for (std::size_t at = 0; at < kRowBytes * kSide; at += 3)
            std::swap(rows_[at], rows_[at + 2]);
    }
    void Make(const std::string& path, int compression, bool tiled);

    BenchImage image_{kSide, kSide, 24};
    std::unique_ptr<std::uint8_t[]> rows_;
    std::map<std::pair<int, bool>, std::string> files_;
};

void SetTags(TIFF* tiff, int compression, std::uint32_t rows_per_strip) {
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, kSide);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, kSide);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC,
                 compression == COMPRESSION_JPEG ? PHOTOMETRIC_YCBCR : PHOTOMETRIC_RGB);
    if (compression == COMPRESSION_JPEG)
        TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    if (rows_per_strip != 0) TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, rows_per_strip);
}

void Sample::Make(const std::string& path, int compression, bool tiled) {
    const Tiff tiff(TIFFOpen(path.c_str(), "w"));
    SetTags(tiff.get(), compression, tiled ? 0 : kStripRows);
    if (!tiled) {
        for (std::uint32_t row = 0; row < kSide; ++row)
            TIFFWriteScanline(tiff.get(), rows_.get() + row * kRowBytes, row, 0);
        return;
    }
    TIFFSetField(tiff.get(), TIFFTAG_TILEWIDTH, kTileSide);
    TIFFSetField(tiff.get(), TIFFTAG_TILELENGTH, kTileSide);
    const auto tile = FreshBuffer(std::size_t{kTileSide} * kTileSide * 3);
    for (std::uint32_t y = 0; y < kSide; y += kTileSide) {
        for (std::uint32_t x = 0; x < kSide; x += kTileSide) {
            for (std::uint32_t row = 0; row < kTileSide; ++row)
                std::copy_n(rows_.get() + (y + row) * kRowBytes + x * 3, kTileSide * 3,
                            tile.get() + std::size_t{row} * kTileSide * 3);
            TIFFWriteTile(tiff.get(), tile.get(), x, y, 0, 0);
        }
    }
}

void SetBytes(benchmark::State& state) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kRowBytes * kSide));
}

void ReadByLibrary(benchmark::State& state, int compression, bool tiled) {
    const std::string& path = Sample::Get().File(compression, tiled);
    for (auto _ : state) {
        const BenchImage image;
        if (Rastrel_Read(image.Handle(), path.c_str(), -1) != 1) state.SkipWithError("read failed");
    }
    SetBytes(state);
}

/// Into the same few bytes again and again, or as a picture in fresh memory: the strips one behind
/// the other, the tiles each on its own.
void ReadByLibtiff(benchmark::State& state, int compression, bool tiled, bool whole) {
    const std::string& path = Sample::Get().File(compression, tiled);
    const std::size_t strip = kStripRows * kRowBytes;
    const std::size_t chunk = tiled ? std::size_t{kTileSide} * kTileSide * 3 : strip;
    const auto reused = FreshBuffer(chunk);
    for (auto _ : state) {
        const auto picture = FreshBuffer(whole ? kRowBytes * kSide : 0);
        std::uint8_t* to = whole ? picture.get() : reused.get();
        const Tiff tiff(TIFFOpen(path.c_str(), "r"));
        if (compression == COMPRESSION_JPEG)
            TIFFSetField(tiff.get(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        bool read = true;
        for (std::size_t at = 0; at < kRowBytes * kSide; at += chunk) {
            const auto number = static_cast<std::uint32_t>(at / chunk);
            const auto size = static_cast<tmsize_t>(chunk);
            read = (tiled ? TIFFReadEncodedTile(tiff.get(), number, to, size)
                          : TIFFReadEncodedStrip(tiff.get(), number, to, size)) == size &&
                   read;
            if (whole) to += chunk;
        }
        if (!read) state.SkipWithError("read failed");
    }
    SetBytes(state);
}

/// A tenth of each side, across tiles.
void ReadPart(benchmark::State& state, int compression) {
    const std::string& path = Sample::Get().File(compression, true);
    for (auto _ : state) {
        const BenchImage image;
        if (Rastrel_ReadPartial(image.Handle(), path.c_str(), -1, 1500, 1500, kSide / 10,
                                kSide / 10) != 1)
            state.SkipWithError("read failed");
    }
}

void WriteByLibrary(benchmark::State& state, int compression) {
    const std::string path = TemporaryPath("rastrel-bench-written.tif");
    Rastrel_SetQuality(Sample::Get().Handle(), compression);
    for (auto _ : state) {
        if (Rastrel_Save(Sample::Get().Handle(), path.c_str(), -1) != 1)
            state.SkipWithError("save failed");
    }
    std::remove(path.c_str());
    SetBytes(state);
}

/// The one strip at once, or row by row through a bounded buffer; a new file takes the name of the
/// old one, as every save does.
void WriteByLibtiff(benchmark::State& state, int compression, bool by_rows) {
    const std::string path = TemporaryPath("rastrel-bench-libtiff.tif");
    const std::string temporary = path + ".part";
    for (auto _ : state) {
        Tiff tiff(TIFFOpen(temporary.c_str(), "w"));
        SetTags(tiff.get(), compression, kSide);
        bool written = true;
        if (by_rows) {
            TIFFWriteBufferSetup(tiff.get(), nullptr, 256 << 10);
            for (std::uint32_t row = 0; row < kSide; ++row)
                written = TIFFWriteScanline(tiff.get(), Sample::Get().Rows() + row * kRowBytes, row,
                                            0) == 1 &&
                          written;
        } else {
            written = TIFFWriteEncodedStrip(tiff.get(), 0, Sample::Get().Rows(),
                                            static_cast<tmsize_t>(kRowBytes * kSide)) > 0;
        }
        tiff.reset();
        if (!written || std::rename(temporary.c_str(), path.c_str()) != 0)
            state.SkipWithError("write failed");
    }
    std::remove(path.c_str());
    SetBytes(state);
}

[[maybe_unused]] const bool registered = [] {
    struct Coding {
        const char* name;
        int compression;
    };
    const auto add = [](const std::string& name, auto function, auto... arguments) {
        benchmark::RegisterBenchmark(name.c_str(), function, arguments...)->UseRealTime();
    };
    constexpr std::array kCodings = {
        Coding{"none", COMPRESSION_NONE}, Coding{"packbits", COMPRESSION_PACKBITS},
        Coding{"lzw", COMPRESSION_LZW}, Coding{"deflate", COMPRESSION_ADOBE_DEFLATE}};
    for (const Coding& coding : kCodings) {
        const std::string name = coding.name;
        add("tiff_read_" + name + "/rastrel", ReadByLibrary, coding.compression, false);
        add("tiff_read_" + name + "/TIFFReadEncodedStrip into one buffer", ReadByLibtiff,
            coding.compression, false, false);
        add("tiff_read_" + name + "/TIFFReadEncodedStrip into fresh memory", ReadByLibtiff,
            coding.compression, false, true);
        add("tiff_write_" + name + "/rastrel", WriteByLibrary, coding.compression);
        add("tiff_write_" + name + "/TIFFWriteEncodedStrip", WriteByLibtiff, coding.compression,
            false);
        add("tiff_write_" + name + "/TIFFWriteScanline", WriteByLibtiff, coding.compression, true);
    }
    add("tiff_read_jpeg_tiles/rastrel", ReadByLibrary, COMPRESSION_JPEG, true);
    add("tiff_read_jpeg_tiles/TIFFReadEncodedTile into one buffer", ReadByLibtiff, COMPRESSION_JPEG,
        true, false);
    add("tiff_read_jpeg_tiles/TIFFReadEncodedTile into fresh memory", ReadByLibtiff,
        COMPRESSION_JPEG, true, true);
    for (const Coding& coding : {Coding{"none", COMPRESSION_NONE}, {"jpeg", COMPRESSION_JPEG}}) {
        const std::string name = std::string("tiff_part_of_") + coding.name + "_tiles";
        add(name + "/rastrel", ReadPart, coding.compression);
        add(name + "/the whole", ReadByLibrary, coding.compression, true);
    }
    return true;
}();

}  // namespace
}  // namespace rastrel_bench
