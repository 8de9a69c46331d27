#pragma once

#include <optional>

#include "core/dib_block.h"
#include "core/palette.h"

namespace rastrel {

/// The palette that a block's colour table holds: one entry for each of the header's colours used,
/// as far as its lowest 16 bits, taken with sign, tell, and at most 256. None when that is 0 or
/// less, and for blocks deeper than 8 bits, where a table is only a hint for poorer displays.
[[nodiscard]] std::optional<Palette> CreateDibPalette(const DibBlock& block);

enum class ColorTableMode {
    kColors = 0,   ///< blue, green, red, 0
    kIndices = 1,  ///< 16-bit indices into the palette that a device has realised
};

/// Refills the block's colour table from a palette, as far as both reach; null: the system's
/// default colours. A bit-field header with three colours is left alone: they are masks. False
/// only without a block.
bool DibColorTableFromPalette(const DibBlock& block, const Palette* palette, ColorTableMode mode);

}  // namespace rastrel
