// JPEG 2000 files of 1024 x 1024 colours without loss, from and into the page cache, against
// OpenJPEG alone: to and from its own pictures of whole numbers.

#include <openjpeg.h>

#include <memory>

#include "codec_sample.h"

namespace rastrel_bench {
namespace {

constexpr int kSide = 1024;

const CodecSample& Sample() {
    static const CodecSample sample(kSide, ".jp2", 0);
    return sample;
}

bool ReadByOpenJpeg(std::FILE* /*file*/, std::uint8_t* /*picture*/) {
    opj_stream_t* stream = opj_stream_create_default_file_stream(Sample().Path().c_str(), OPJ_TRUE);
    opj_codec_t* codec = opj_create_decompress(OPJ_CODEC_JP2);
    opj_dparameters_t parameters;
    opj_set_default_decoder_parameters(&parameters);
    opj_image_t* image = nullptr;
    const bool read = opj_setup_decoder(codec, &parameters) == OPJ_TRUE &&
                      opj_read_header(stream, codec, &image) == OPJ_TRUE &&
                      opj_decode(codec, stream, image) == OPJ_TRUE &&
                      opj_end_decompress(codec, stream) == OPJ_TRUE;
    opj_image_destroy(image);
    opj_destroy_codec(codec);
    opj_stream_destroy(stream);
    return read;
}

/// The picture is filled each time: encoding turns it into coefficients.
opj_image_t* MakePicture() {
    opj_image_cmptparm_t component = {};
    component.dx = component.dy = 1;
    component.w = component.h = kSide;
    component.prec = 8;
    opj_image_cmptparm_t components[3] = {component, component, component};
    opj_image_t* image = opj_image_create(3, components, OPJ_CLRSPC_SRGB);
    image->x1 = image->y1 = kSide;
    for (int y = 0; y < kSide; ++y) {
        const std::uint8_t* row = Sample().Row(y);
        for (int i = 0; i < 3; ++i) {
            for (int x = 0; x < kSide; ++x)
                image->comps[i].data[y * kSide + x] = row[3 * x + 2 - i];
        }
    }
    return image;
}

void WriteByOpenJpeg(benchmark::State& state) {
    const std::string path = TemporaryPath("rastrel-bench-openjpeg.jp2");
    for (auto _ : state) {
        opj_image_t* image = MakePicture();
        opj_cparameters_t parameters;
        opj_set_default_encoder_parameters(&parameters);
        parameters.tcp_numlayers = 1;
        parameters.cp_disto_alloc = 1;
        parameters.tcp_mct = 1;
        opj_codec_t* codec = opj_create_compress(OPJ_CODEC_JP2);
        opj_stream_t* stream =
            opj_stream_create_default_file_stream((path + ".part").c_str(), OPJ_FALSE);
        const bool written = opj_setup_encoder(codec, &parameters, image) == OPJ_TRUE &&
                             opj_start_compress(codec, image, stream) == OPJ_TRUE &&
                             opj_encode(codec, stream) == OPJ_TRUE &&
                             opj_end_compress(codec, stream) == OPJ_TRUE;
        opj_stream_destroy(stream);
        opj_destroy_codec(codec);
        opj_image_destroy(image);
        if (!written || std::rename((path + ".part").c_str(), path.c_str()) != 0)
            state.SkipWithError("write failed");
    }
    std::remove(path.c_str());
}

[[maybe_unused]] const bool registered = [] {
    using benchmark::State;
    AddBenchmark("jp2_read/rastrel", [](State& state) { Sample().Read(state); });
    AddBenchmark("jp2_read/OpenJPEG to its own picture",
                 [](State& state) { Sample().ReadBeside(state, false, ReadByOpenJpeg); });
    AddBenchmark("jp2_first_tenth/rastrel", [](State& state) { Sample().ReadFirstTenth(state); });
    AddBenchmark("jp2_first_tenth/the whole", [](State& state) { Sample().Read(state); });
    AddBenchmark("jp2_write/rastrel", [](State& state) { Sample().Write(state); });
    AddBenchmark("jp2_write/OpenJPEG", WriteByOpenJpeg);
    return true;
}();

}  // namespace
}  // namespace rastrel_bench
