#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "core/palette.h"

namespace rastrel {

/// The palette that a host gives as a count and three arrays; none for a count that is not from 1
/// to 256, or without one of the arrays.
[[nodiscard]] inline std::optional<Palette> PaletteFrom(int count, const std::uint8_t* red,
                                                        const std::uint8_t* green,
                                                        const std::uint8_t* blue) {
    if (count < 1 || static_cast<std::size_t>(count) > Palette::kMostEntries) return std::nullopt;
    if (red == nullptr || green == nullptr || blue == nullptr) return std::nullopt;
    std::array<Color, Palette::kMostEntries> colors;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
        colors[i] = {red[i], green[i], blue[i]};
    return Palette(std::span(colors).first(static_cast<std::size_t>(count)));
}

}  // namespace rastrel
