#include "display/surface/chosen_bytes.h"

#include <algorithm>
#include <array>
#include <optional>

namespace rastrel {

namespace {

constexpr std::size_t kGroup = ChosenBytes::kGroup;
constexpr std::size_t kWindow = ChosenBytes::kWindow;

/// A group of bytes at these places of a row. None when they lie further apart than a window.
std::optional<ChosenBytes::Group> MakeGroup(std::span<const std::int64_t, kGroup> places,
                                            std::size_t row_bytes) {
    const auto is_used = [](std::int64_t place) { return place >= 0; };
    const std::int64_t least = *std::ranges::min_element(places, {}, [&](std::int64_t place) {
        return is_used(place) ? place : std::int64_t{1} << 40;
    });
    const std::int64_t most = *std::ranges::max_element(places);
    // Never behind the row's end.
    const std::int64_t window =
        std::min(least, static_cast<std::int64_t>(row_bytes) - static_cast<std::int64_t>(kWindow));
    if (most - window >= static_cast<std::int64_t>(kWindow)) return std::nullopt;
    ChosenBytes::Group group = {};
    group.window = static_cast<std::uint32_t>(window);
    for (std::size_t i = 0; i < kGroup; ++i) {
        if (!is_used(places[i])) continue;
        const auto place = static_cast<std::uint8_t>(places[i] - window);
        group.places[i] = place;
        group.used |= std::uint64_t{1} << i;
        if (place >= 128) group.upper |= std::uint64_t{1} << i;
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
    for (std::size_t done = 0; done < count; done += group_pixels) {
        const std::size_t pixel = std::min(done, count - group_pixels);
        std::array<std::int64_t, kGroup> places = {};
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
                      [offsets](std::size_t pixel, std::array<std::int64_t, kGroup>& places) {
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
                      [offsets](std::size_t pixel, std::array<std::int64_t, kGroup>& places) {
                          for (std::size_t i = 0; i < kGroup; ++i) {
                              const std::size_t channel = i % 4;
                              const std::int64_t at = offsets[pixel + i / 4];
                              places[i] =
                                  channel < 3 ? at + static_cast<std::int64_t>(channel) : -1;
                          }
                      });
}

}  // namespace rastrel
