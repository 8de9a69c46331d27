#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/byte_source.h"

namespace rastrel {

/// How the bands of raw pixels stand in their file.
enum class RawLayout {
    kBil = 0,  ///< row by row, and of each row one band after the other
    kBip = 1,  ///< pixel by pixel, its bands side by side
    kBsq = 2,  ///< one whole band after the other
};

/// "BIL", "BIP" or "BSQ".
[[nodiscard]] std::string_view LayoutName(RawLayout layout);

/// What the header beside raw pixels must tell. The layout is not taken from it: the name of the
/// pixel file says that.
struct RawHeader {
    int width = 0;
    int height = 0;
    int bits = 0;  ///< of a pixel, all bands together
};

/// Reads the four keywords that count, NCOLS, NROWS, NBANDS and NBITS, each alone as the first word
/// of its line and written just so; a later line goes before an earlier one. None when one is
/// missing or has no number, or they make no image.
[[nodiscard]] std::optional<RawHeader> ReadRawHeader(ByteSource& source);

/// A header for samples of 8 bits.
[[nodiscard]] std::string RawHeaderText(RawLayout layout, int width, int height, int bands);

}  // namespace rastrel
