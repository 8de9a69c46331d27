#pragma once

#include <cstdint>
#include <vector>

#include "core/byte_source.h"
#include "core/geometry.h"
#include "formats/jpeg/jpeg_errors.h"

namespace rastrel {

/// The kinds of rows that a JPEG file is made from.
enum class JpegRows {
    kGrey,  ///< one byte a pixel: a file of one component; the others make files of three
    kRgb,
    kBgr,
    kBgrx,  ///< with a fourth byte, which is not looked at
};

/// libjpeg's own limit for both sides.
constexpr int kMostJpegSide = JPEG_MAX_DIMENSION;

/// Encodes one baseline JPEG file through libjpeg, row by row.
class JpegWriter {
  public:
    explicit JpegWriter(ByteSink& sink);
    JpegWriter(const JpegWriter&) = delete;
    JpegWriter& operator=(const JpegWriter&) = delete;
    ~JpegWriter();

    /// Begins the file; quality is libjpeg's, 0 to 100.
    [[nodiscard]] bool Start(Size size, JpegRows kind, int quality);
    /// Encodes rows from the top down, the first one at rows, each further one a stride on. What
    /// reaches below the file's height is dropped.
    [[nodiscard]] bool WriteRows(const std::uint8_t* rows, std::ptrdiff_t stride, int count);
    /// Ends the file; false also when rows are missing.
    [[nodiscard]] bool Finish();

  private:
    /// libjpeg's destination of bytes, over ours.
    struct Destination {
        jpeg_destination_mgr manager;  // first: libjpeg hands back its address
        ByteSink* sink;
        std::vector<std::uint8_t> buffer;
    };
    static void InitDestination(j_compress_ptr codec);
    static boolean EmptyBuffer(j_compress_ptr codec);
    static void EndDestination(j_compress_ptr codec);

    JpegErrors errors_ = {};
    Destination destination_;
    jpeg_compress_struct codec_ = {};
};

}  // namespace rastrel
