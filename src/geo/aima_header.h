#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "core/byte_source.h"
#include "geo/georeference.h"

namespace rastrel {

// The georeference in the binary headers of AIMA orthophotos: integers, coordinates in units of 0.1
// and the pixel size in units of 0.0001.

enum class AimaHeader {
    kShort,  ///< FOT and MAP files: 24 bytes
    kLong,   ///< GFC and GAF files: 72 bytes
};

/// No success, and no value, when the file is shorter than the header.
[[nodiscard]] FoundGeoreference ReadAimaGeoreference(ByteSource& source, AimaHeader kind);

/// Changes the three fields in a header that is there whole. False, with the header as it was, for
/// a coordinate that its field cannot hold. A pixel size keeps the 16 bits that a long header has.
[[nodiscard]] bool PatchAimaHeader(std::span<std::uint8_t> header, AimaHeader kind,
                                   const Georeference& georeference);

/// The same in an existing file, of which nothing else changes.
[[nodiscard]] bool WriteAimaGeoreference(const std::string& image_name, AimaHeader kind,
                                         const Georeference& georeference);

[[nodiscard]] constexpr std::size_t AimaHeaderBytes(AimaHeader kind) {
    return kind == AimaHeader::kShort ? 24 : 72;
}

}  // namespace rastrel
