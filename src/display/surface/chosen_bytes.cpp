#include "display/surface/chosen_bytes.h"

#include <algorithm>
#include <array>
#include <optional>

namespace rastrel {

namespace {

constexpr std::size_t kGroup = ChosenBytes::kGroup;
constexpr std::size_t kWindow = ChosenBytes::kWindow;

using Places = std::array<std::uint32_t, kGroup>;

/// A group of bytes at these places of a row. None when they lie further apart than a window.
std::optional<ChosenBytes::Group> MakeGroup(const Places& places, std::size_t row_bytes) {
    const auto [least, most] = std::ranges::minmax(places);
    // Never behind the row's end.
    const auto last = static_cast<std::uint32_t>(row_bytes - kWindow);
    ChosenBytes::Group group = {};
    group.window = std::min(least, last);
    if (most - group.window >= kWindow) return std::nullopt;
    for (std::size_t i = 0; i < kGroup; ++i) {
        group.places[i] = static_cast<std::uint8_t>(places[i] - group.window);
        group.upper |= std::uint64_t{group.places[i]} >> 7 << i;
    }
    return group;
}

/// Groups of so many pixels each; the last ones may be made twice, so that all groups are full.
/// places_of fills in where the bytes of the pixels from one on are.
template <class PlacesOf>
ChosenBytes MakeGroups(std::size_t count, std::size_t group_pixels, std::size_t row_bytes,
                       PlacesOf places_of) {
    ChosenBytes chosen;
    if (count < group_pixels || row_bytes < kWindow) return chosen;
    chosen.groups.reserve(count / group_pixels + 1);
    for (std::size_t done = 0; done < count; done += group_pixels) {
        const std::size_t pixel = std::min(done, count - group_pixels);
        Places places;
        places_of(pixel, places);
        const auto group = MakeGroup(places, row_bytes);
        if (!group) return {};
        chosen.groups.push_back(*group);
        chosen.groups.back().pixel = static_cast<std::uint32_t>(pixel);
    }
    return chosen;
}

}  // namespace

ChosenBytes GroupIndices(std::span<const std::uint32_t> offsets, std::size_t row_bytes) {
    return MakeGroups(offsets.size(), kGroup, row_bytes,
                      [offsets](std::size_t pixel, Places& places) {
                          // Interleaving works on each quarter of a register by itself: its four
                          // pixels of every sixteen stand together.
                          for (std::size_t i = 0; i < kGroup; ++i) {
                              const std::size_t quarter = i / 16;
                              const std::size_t sixteen = i % 16 / 4;
                              places[i] = offsets[pixel + 16 * sixteen + 4 * quarter + i % 4];
                          }
                      });
}

ChosenBytes Group24(std::span<const std::uint32_t> offsets, std::size_t row_bytes) {
    return MakeGroups(offsets.size(), kGroup / 4, row_bytes,
                      [offsets](std::size_t pixel, Places& places) {
                          // The fourth byte, which becomes 0, is any of the others.
                          for (std::size_t i = 0; i < kGroup; ++i) {
                              const auto channel = static_cast<std::uint32_t>(i % 4 % 3);
                              places[i] = offsets[pixel + i / 4] + channel;
                          }
                      });
}

}  // namespace rastrel
