#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "grid.h"
#include "image.h"

namespace rastrel_cli {

/// Where a command's result goes.
struct OutputOptions {
    std::string name;
    int type = -1;  ///< by the name's extension
};

/// A result of 8 or 24 bits a pixel as the library takes it: top row first, no padding.
struct Picture {
    int rows = 0;
    int columns = 0;
    int bits = 8;
    const std::uint8_t* pixels = nullptr;
    std::vector<PaletteEntry> palette;  ///< 8 bits: empty for the grey one
};

/// Whether writing an output would replace the input it is made from, or that input's header; says
/// so.
[[nodiscard]] bool ReplacesInput(const std::string& input, const std::string& output);

/// Saves a picture and, where the place on the ground is known, its georeference beside it. Says
/// what fails.
[[nodiscard]] bool SavePicture(const Picture& picture, const OutputOptions& output,
                               const GridPlace& place);

/// Where a picture lies, by its world file or header; nowhere without one.
[[nodiscard]] GridPlace PlaceOfPicture(const std::string& name);

/// Writes a picture's place into its world file or header, as far as these can state it.
[[nodiscard]] bool SavePlace(const std::string& name, const GridPlace& place);

}  // namespace rastrel_cli
