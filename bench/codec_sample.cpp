#include "codec_sample.h"

namespace rastrel_bench {

CodecSample::CodecSample(int side, const std::string& extension, int quality)
    : side_(side), image_(side, side, 24), path_(TemporaryPath("rastrel-bench" + extension)) {
    FillWithGround(image_.Handle());
    Rastrel_SetQuality(image_.Handle(), quality);
    Rastrel_Save(image_.Handle(), path_.c_str(), -1);
}

CodecSample::~CodecSample() {
    std::remove(path_.c_str());
}

std::uint8_t* CodecSample::Row(int y) const {
    return Rastrel_GetRawImage(Handle()) + RowBytes() * static_cast<std::size_t>(side_ - 1 - y);
}

void CodecSample::Read(benchmark::State& state) const {
    for (auto _ : state) {
        const BenchImage image;
        if (Rastrel_Read(image.Handle(), path_.c_str(), -1) != 1)
            state.SkipWithError("read failed");
    }
}

void CodecSample::Write(benchmark::State& state) const {
    const int type = Rastrel_GetImageType(Handle());
    const std::string path = TemporaryPath("rastrel-bench-saved");
    for (auto _ : state) {
        if (Rastrel_Save(Handle(), path.c_str(), type) != 1) state.SkipWithError("save failed");
    }
    std::remove(path.c_str());
}

void CodecSample::ReadFirstTenth(benchmark::State& state) const {
    for (auto _ : state) {
        const BenchImage image;
        if (Rastrel_ReadPartial(image.Handle(), path_.c_str(), -1, 0, 0, side_, side_ / 10) != 1)
            state.SkipWithError("read failed");
    }
}

}  // namespace rastrel_bench
