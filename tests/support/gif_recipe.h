#pragma once

#include <cstdint>
#include <optional>

#include "support/images.h"

namespace rastrel_test {

/// The parts of a GIF file, to be put together or spoilt.
struct GifRecipe {
    const char* signature = "GIF89a";
    int screen_flags = 0x80;  ///< of the packed byte, without the size of the table
    std::vector<Rgb> global_table;
    Bytes extensions;
    int width = 0;
    int height = 0;
    int image_flags = 0;
    std::vector<Rgb> local_table;
    int code_size = 8;
    Bytes data;               ///< the codes
    std::size_t block = 255;  ///< what they are cut into
    bool has_end = true;      ///< the empty block and the trailer

    [[nodiscard]] Bytes File() const;
};

constexpr int kLocalTable = 0x80;
constexpr int kInterlaced = 0x40;

/// A graphic control extension.
[[nodiscard]] Bytes GraphicControl(int flags, int transparent_index);

}  // namespace rastrel_test
