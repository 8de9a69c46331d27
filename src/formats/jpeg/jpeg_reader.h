#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "core/byte_source.h"
#include "core/dib_block.h"
#include "core/geometry.h"
#include "formats/jpeg/jpeg_errors.h"

namespace rastrel {

/// Decodes one JPEG file through libjpeg.
class JpegReader {
  public:
    explicit JpegReader(ByteSource& source);
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;
    ~JpegReader();

    /// Reads up to the first scan; the questions below need it.
    [[nodiscard]] bool ReadHeader();
    [[nodiscard]] Size PixelSize() const;
    [[nodiscard]] int Components() const { return codec_.num_components; }

    /// Decodes a part that lies inside the picture: 8 bits a pixel for one component, 24 for three.
    /// No block for files of other colours, for what cannot be decoded, and when the file is far
    /// too short for its picture. Called once.
    [[nodiscard]] DibBlock Decode(const Rect& part);

  private:
    /// libjpeg's source of bytes, over ours.
    struct Source {
        jpeg_source_mgr manager;  // first: libjpeg hands back its address
        ByteSource* bytes;
        std::vector<std::uint8_t> buffer;
        bool anything_read;
    };
    static void InitSource(j_decompress_ptr codec);
    static boolean FillBuffer(j_decompress_ptr codec);
    static void SkipBytes(j_decompress_ptr codec, long count);
    static void CountScans(j_common_ptr codec);

    [[nodiscard]] bool IsPlausible() const;
    [[nodiscard]] bool Start();
    /// Decodes rows of the picture's full width, the first one to rows, each further one a stride
    /// on.
    [[nodiscard]] bool DecodeRows(int first, int count, std::uint8_t* rows, std::ptrdiff_t stride);
    /// The same for a part's columns alone.
    [[nodiscard]] bool DecodeColumns(const Rect& part, std::uint8_t* rows, std::ptrdiff_t stride);

    JpegErrors errors_ = {};
    Source source_;
    jpeg_progress_mgr progress_ = {};
    jpeg_decompress_struct codec_ = {};
};

}  // namespace rastrel
