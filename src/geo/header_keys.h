#pragma once

#include <string>

#include "core/byte_source.h"
#include "geo/georeference.h"

namespace rastrel {

// The georeference in the text header beside raw pixels: lines of a keyword, in any case, and a
// number. ULXMAP and ULYMAP are taken for the corner of the upper-left pixel; XDIM is the pixel
// size; YDIM is written and never read.

/// No success, and no value, unless the last lines with the three keywords all have a number.
[[nodiscard]] FoundGeoreference ReadHeaderGeoreference(ByteSource& source);

/// Replaces the georeference in a header: all other lines stay, byte for byte and in their order,
/// and the four keywords follow them. A header that is not there yet is made with these alone; one
/// that cannot be read or replaced gets them at its end, where they count. False, with the header
/// as it was, when that fails too.
[[nodiscard]] bool WriteHeaderGeoreference(const std::string& header_name,
                                           const Georeference& georeference);

/// Copies the lines of a header that are no georeference, the last with a line's end whether or not
/// it had one. False when the sink fails.
[[nodiscard]] bool CopyOtherLines(ByteSource& source, ByteSink& sink);

}  // namespace rastrel
