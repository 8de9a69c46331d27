#include "formats/jp2/jp2_writer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <vector>

#include "core/pixel_reader.h"
#include "formats/jp2/jp2_codec.h"

namespace rastrel {

namespace {

/// Larger images are cut into tiles, which bound what encoding takes beside the image.
constexpr int kTileSide = 4096;
constexpr int kMostResolutions = 6;

bool IsGrey(const RasterImage& raster) {
    if (raster.Bits() > 8) return false;
    const Palette* palette = raster.GetPalette();
    return palette == nullptr || std::ranges::all_of(palette->Entries(), [](const Color& color) {
               return color.red == color.green && color.green == color.blue;
           });
}

opj_cparameters_t ParametersFor(const RasterImage& raster, bool grey) {
    opj_cparameters_t parameters;
    opj_set_default_encoder_parameters(&parameters);
    parameters.tcp_numlayers = 1;
    parameters.tcp_mct = grey ? 0 : 1;
    // No resolution may be empty.
    const auto shorter = static_cast<unsigned>(std::min(raster.Width(), raster.Height()));
    parameters.numresolution =
        std::min(static_cast<int>(std::bit_width(shorter)), kMostResolutions);
    if (std::max(raster.Width(), raster.Height()) > kTileSide) {
        parameters.tile_size_on = OPJ_TRUE;
        parameters.cp_tdx = parameters.cp_tdy = kTileSide;
    }
    const int quality = raster.Quality();
    if (quality < 1 || quality > 99) {
        parameters.cp_disto_alloc = 1;
        parameters.tcp_rates[0] = 0;
        return parameters;
    }
    // Decibels that look like JPEG files of the same quality.
    parameters.irreversible = 1;
    parameters.cp_fixed_quality = 1;
    parameters.tcp_distoratio[0] = 25 + 0.2f * static_cast<float>(quality);
    return parameters;
}

Jp2Picture MakePicture(const RasterImage& raster, bool grey) {
    opj_image_cmptparm_t component = {};
    component.dx = component.dy = 1;
    component.w = static_cast<OPJ_UINT32>(raster.Width());
    component.h = static_cast<OPJ_UINT32>(raster.Height());
    component.prec = 8;
    std::array<opj_image_cmptparm_t, 3> components;
    components.fill(component);
    Jp2Picture picture(opj_image_create(grey ? 1 : 3, components.data(),
                                        grey ? OPJ_CLRSPC_GRAY : OPJ_CLRSPC_SRGB));
    if (!picture) return nullptr;
    picture->x1 = component.w;
    picture->y1 = component.h;
    return picture;
}

void FillPicture(const opj_image_t& picture, const RasterImage& raster) {
    PixelReader reader(raster, PixelForm::kBgr);
    const auto width = static_cast<std::size_t>(raster.Width());
    std::vector<std::uint8_t> row(width * 3);
    for (int y = 0; y < raster.Height(); ++y) {
        reader.Read(0, y, row);
        const std::size_t start = static_cast<std::size_t>(y) * width;
        for (OPJ_UINT32 i = 0; i < picture.numcomps; ++i) {
            OPJ_INT32* samples = picture.comps[i].data + start;
            for (std::size_t x = 0; x < width; ++x)
                samples[x] = row[3 * x + 2 - i];
        }
    }
}

}  // namespace

bool WriteJp2(ByteSink& sink, const RasterImage& raster) {
    if (!raster.HasPlainRows()) return false;
    const bool grey = IsGrey(raster);
    const Jp2Picture picture = MakePicture(raster, grey);
    if (!picture) return false;
    FillPicture(*picture, raster);
    opj_cparameters_t parameters = ParametersFor(raster, grey);
    Jp2Bytes file;
    {
        const Jp2Codec codec(opj_create_compress(OPJ_CODEC_JP2));
        const Jp2Stream stream = OpenJp2Output(file);
        if (!codec || !stream ||
            opj_setup_encoder(codec.get(), &parameters, picture.get()) != OPJ_TRUE ||
            opj_start_compress(codec.get(), picture.get(), stream.get()) != OPJ_TRUE ||
            opj_encode(codec.get(), stream.get()) != OPJ_TRUE ||
            opj_end_compress(codec.get(), stream.get()) != OPJ_TRUE)
            return false;
    }
    return sink.Write(file.bytes);
}

}  // namespace rastrel
