#pragma once

#include "core/byte_source.h"
#include "core/dib_block.h"
#include "core/geometry.h"
#include "formats/jp2/jp2_layout.h"

namespace rastrel {

/// Decodes a part of a JPEG 2000 file, inside its picture, through OpenJPEG: 8 bits a pixel for one
/// channel and for two, the second of which is alpha; 24 for more, of which the first three count.
/// No block for a file that is damaged or cut.
[[nodiscard]] DibBlock DecodeJp2(ByteSource& source, const Jp2Layout& layout, const Rect& part);

/// The depth that a file is decoded to.
[[nodiscard]] inline int Jp2Bits(const Jp2Layout& layout) {
    return layout.channels >= 3 ? 24 : 8;
}

}  // namespace rastrel
