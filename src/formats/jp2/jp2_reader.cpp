#include "formats/jp2/jp2_reader.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

#include "core/pixel_rows.h"
#include "core/raster_image.h"
#include "formats/jp2/jp2_codec.h"
#include "formats/jp2/jp2_samples.h"

namespace rastrel {

namespace {

/// The least multiple of two steps; one that lies beyond any picture stands for all such.
std::int64_t CommonStep(std::int64_t step, std::uint32_t other) {
    constexpr std::int64_t kBeyond = std::int64_t{1} << 32;
    return std::min(std::lcm(step, std::int64_t{other}), kBeyond);
}

/// The decoder's view of the file: its picture on the reference grid.
class Decoder {
  public:
    [[nodiscard]] bool Open(ByteSource& source, const Jp2Layout& layout) {
        source.Seek(0);
        stream_ = OpenJp2Input(source);
        codec_.reset(opj_create_decompress(layout.in_boxes ? OPJ_CODEC_JP2 : OPJ_CODEC_J2K));
        opj_dparameters_t parameters;
        opj_set_default_decoder_parameters(&parameters);
        if (!stream_ || !codec_ || opj_setup_decoder(codec_.get(), &parameters) != OPJ_TRUE)
            return false;
        opj_image_t* picture = nullptr;
        const OPJ_BOOL read = opj_read_header(stream_.get(), codec_.get(), &picture);
        picture_.reset(picture);
        return read == OPJ_TRUE && picture_ && picture_->numcomps > 0;
    }

    /// The pixels' steps on the reference grid are the first component's.
    [[nodiscard]] Size Step() const {
        return {static_cast<int>(picture_->comps[0].dx), static_cast<int>(picture_->comps[0].dy)};
    }
    /// Where the part's first pixel lies on the reference grid.
    void SetOrigin(const Rect& part) {
        const opj_image_comp_t& first = picture_->comps[0];
        origin_x_ = (std::int64_t{first.x0} + part.x) * first.dx;
        origin_y_ = (std::int64_t{first.y0} + part.y) * first.dy;
    }

    [[nodiscard]] bool Decode(const Rect& part, const Size& whole) {
        SetOrigin(part);
        const bool all = Size{part.width, part.height} == whole;
        if (!all && !SetArea(part)) return false;
        return opj_decode(codec_.get(), stream_.get(), picture_.get()) == OPJ_TRUE &&
               (!all || opj_end_decompress(codec_.get(), stream_.get()) == OPJ_TRUE);
    }
    [[nodiscard]] const opj_image_t& Picture() const { return *picture_; }
    [[nodiscard]] Jp2Channel Channel(std::size_t i) const {
        return {picture_->comps[i], origin_x_, origin_y_, Step()};
    }

  private:
    /// From where a sample of every component begins, so that each pixel finds its own.
    [[nodiscard]] bool SetArea(const Rect& part) {
        std::int64_t common_x = 1;
        std::int64_t common_y = 1;
        for (OPJ_UINT32 i = 0; i < picture_->numcomps; ++i) {
            common_x = CommonStep(common_x, picture_->comps[i].dx);
            common_y = CommonStep(common_y, picture_->comps[i].dy);
        }
        const auto down = [](std::int64_t value, std::int64_t step, std::int64_t least) {
            return static_cast<OPJ_INT32>(std::max(value / step * step, least));
        };
        const auto end = [](std::int64_t value, std::int64_t most) {
            return static_cast<OPJ_INT32>(std::min(value, most));
        };
        const Size step = Step();
        return opj_set_decode_area(
                   codec_.get(), picture_.get(), down(origin_x_, common_x, picture_->x0),
                   down(origin_y_, common_y, picture_->y0),
                   end(origin_x_ + std::int64_t{part.width} * step.width, picture_->x1),
                   end(origin_y_ + std::int64_t{part.height} * step.height, picture_->y1)) ==
               OPJ_TRUE;
    }

    Jp2Stream stream_;
    Jp2Codec codec_;
    Jp2Picture picture_;
    std::int64_t origin_x_ = 0;
    std::int64_t origin_y_ = 0;
};

/// Files that do not say so have differences where these are coarser than the brightness.
bool HasDifferences(const opj_image_t& picture) {
    return picture.color_space != OPJ_CLRSPC_SRGB && picture.numcomps == 3 &&
           picture.comps[0].dx == picture.comps[0].dy && picture.comps[1].dx != 1;
}

}  // namespace

DibBlock DecodeJp2(ByteSource& source, const Jp2Layout& layout, const Rect& part) {
    Decoder decoder;
    if (!decoder.Open(source, layout) || !decoder.Decode(part, layout.size)) return {};
    const bool grey = Jp2Bits(layout) == 8;
    const std::size_t needed = grey ? 1 : 3;
    if (decoder.Picture().numcomps < needed) return {};
    for (std::size_t i = 0; i < needed; ++i)
        if (!decoder.Channel(i).Ok()) return {};
    const bool differences = !grey && (layout.differences || HasDifferences(decoder.Picture()));
    DibBlock block = DibBlock::Create(part.width, part.height, Jp2Bits(layout));
    if (!block) return {};
    RasterImage rows;
    rows.ReplaceBlock(std::move(block));
    const auto width = static_cast<std::size_t>(part.width);
    if (grey) {
        for (int y = 0; y < part.height; ++y)
            decoder.Channel(0).Read(y, rows.PictureRow(y).first(width));
        return rows.DetachBlock();
    }
    std::array<std::vector<std::uint8_t>, 3> channels;
    for (auto& channel : channels)
        channel.resize(width);
    for (int y = 0; y < part.height; ++y) {
        for (std::size_t i = 0; i < channels.size(); ++i)
            decoder.Channel(i).Read(y, channels[i]);
        if (differences) ColorsFromDifferences(channels[0], channels[1], channels[2]);
        Bgr24FromPlanes(channels[0].data(), channels[1], channels[2].data(),
                        rows.PictureRow(y).first(width * 3));
    }
    return rows.DetachBlock();
}

}  // namespace rastrel
