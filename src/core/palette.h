#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "core/color.h"

namespace rastrel {

/// Up to 256 colours that pixel values stand for: a value, copied like one.
class Palette {
  public:
    static constexpr std::size_t kMostEntries = 256;

    /// Takes at most the first 256 colours.
    explicit Palette(std::span<const Color> colors);

    /// Entry i is (i, i, i), for all 256.
    [[nodiscard]] static Palette Grey();
    /// The twenty colours that a Windows device has without any palette of an image.
    [[nodiscard]] static const Palette& SystemDefault();

    [[nodiscard]] std::span<const Color> Entries() const { return {entries_.data(), count_}; }
    /// None for an index outside the palette.
    [[nodiscard]] std::optional<Color> Entry(int index) const;
    /// The entry with the least sum of squared component differences, the first of equals.
    [[nodiscard]] std::uint8_t NearestIndex(Color color) const;

  private:
    std::array<Color, kMostEntries> entries_ = {};
    std::size_t count_ = 0;
};

}  // namespace rastrel
