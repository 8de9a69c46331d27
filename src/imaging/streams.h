#pragma once

#include <cstdint>
#include <span>

#include "core/image_object.h"

namespace rastrel {

/// Bytes that are always enough for an image as a QVI file; 0 for one that holds no pixels.
[[nodiscard]] std::uint64_t MostQviStreamBytes(const ImageObject& image);

/// Bytes written into a buffer of somebody else's, as far as they fit, and counted all the same.
struct StreamResult {
    bool written = false;      ///< all, and they fitted
    std::uint64_t needed = 0;  ///< bytes in all; 0 when the image cannot be written
};

/// Writes an image as the bytes of a file of a type: BMP, JPEG, PNG or QVI; kNoImageType: QVI. The
/// image stays what it is.
[[nodiscard]] StreamResult WriteStream(ImageObject& image, int type,
                                       std::span<std::uint8_t> buffer);

/// Makes an image from such bytes; kNoImageType: what they show. The image takes the type on.
/// False, with the image as it was, for other types and bytes that are no such file.
[[nodiscard]] bool ReadStream(ImageObject& image, int type, std::span<const std::uint8_t> bytes);

}  // namespace rastrel
