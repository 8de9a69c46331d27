#pragma once

#include <openjpeg.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "core/byte_source.h"

namespace rastrel {

// OpenJPEG reports failures by its results and keeps silent unless asked.

struct Jp2CodecDeleter {
    void operator()(opj_codec_t* codec) const { opj_destroy_codec(codec); }
};
using Jp2Codec = std::unique_ptr<opj_codec_t, Jp2CodecDeleter>;

struct Jp2StreamDeleter {
    void operator()(opj_stream_t* stream) const { opj_stream_destroy(stream); }
};
using Jp2Stream = std::unique_ptr<opj_stream_t, Jp2StreamDeleter>;

struct Jp2PictureDeleter {
    void operator()(opj_image_t* picture) const { opj_image_destroy(picture); }
};
using Jp2Picture = std::unique_ptr<opj_image_t, Jp2PictureDeleter>;

/// A stream that reads from a source, which must outlive it.
[[nodiscard]] Jp2Stream OpenJp2Input(ByteSource& source);
/// A stream that writes to memory, which must outlive it. The encoder goes back to fill in lengths.
struct Jp2Bytes {
    std::vector<std::uint8_t> bytes;
    std::size_t position = 0;
};
[[nodiscard]] Jp2Stream OpenJp2Output(Jp2Bytes& bytes);

}  // namespace rastrel
