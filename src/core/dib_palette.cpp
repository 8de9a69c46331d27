#include "core/dib_palette.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace rastrel {

namespace {

constexpr std::size_t kBytesPerColor = 4;

void StoreIndices(std::span<std::uint8_t> table, std::size_t count) {
    const std::size_t fits = std::min(count, table.size() / 2);
    for (std::size_t i = 0; i < fits; ++i) {
        table[2 * i] = static_cast<std::uint8_t>(i);
        table[2 * i + 1] = static_cast<std::uint8_t>(i >> 8);
    }
}

void StoreColors(std::span<std::uint8_t> table, std::span<const Color> colors) {
    const std::size_t count = std::min(colors.size(), table.size() / kBytesPerColor);
    for (std::size_t i = 0; i < count; ++i) {
        const auto entry = table.subspan(i * kBytesPerColor, kBytesPerColor);
        entry[0] = colors[i].blue;
        entry[1] = colors[i].green;
        entry[2] = colors[i].red;
        entry[3] = 0;
    }
}

}  // namespace

std::optional<Palette> CreateDibPalette(const DibBlock& block) {
    const DibHeader header = block.Header();
    const auto stated = static_cast<std::int16_t>(header.colors_used & 0xffff);
    if (header.bit_count > 8 || stated <= 0) return std::nullopt;
    const auto table = block.ColorTable();
    const std::size_t count = std::min(
        {static_cast<std::size_t>(stated), Palette::kMostEntries, table.size() / kBytesPerColor});
    std::array<Color, Palette::kMostEntries> colors;
    for (std::size_t i = 0; i < count; ++i) {
        const auto entry = table.subspan(i * kBytesPerColor, kBytesPerColor);
        colors[i] = {.red = entry[2], .green = entry[1], .blue = entry[0]};
    }
    return Palette(std::span(colors).first(count));
}

bool DibColorTableFromPalette(const DibBlock& block, const Palette* palette, ColorTableMode mode) {
    if (!block) return false;
    const DibHeader header = block.Header();
    const std::uint32_t count = DibColorCount(header);
    if (count == 3 && header.compression == kDibBitFields) return true;
    if (mode == ColorTableMode::kIndices)
        StoreIndices(block.ColorTable(), count);
    else
        StoreColors(block.ColorTable(), (palette ? *palette : Palette::SystemDefault()).Entries());
    return true;
}

}  // namespace rastrel
