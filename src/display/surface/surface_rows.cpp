#include "display/surface/surface_rows.h"

#include <cstring>

namespace rastrel {

namespace {

void StorePixel(std::uint32_t pixel, std::uint8_t* out) {
    std::memcpy(out, &pixel, sizeof pixel);
}

std::uint32_t LoadPixel(const std::uint8_t* in) {
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, in, sizeof pixel);
    return pixel;
}

}  // namespace

void BgrxFromIndices(const std::uint8_t* indices, const DeviceColors& colors,
                     std::span<std::uint8_t> out) {
    std::uint8_t* to = out.data();
    for (std::size_t i = 0; i < out.size() / 4; ++i, to += 4)
        StorePixel(colors[indices[i]], to);
}

void BgrxFrom24(const std::uint8_t* pixels, std::span<std::uint8_t> out) {
    std::uint8_t* to = out.data();
    for (std::size_t i = 0; i < out.size() / 4; ++i, pixels += 3, to += 4)
        StorePixel(pixels[0] | std::uint32_t{pixels[1]} << 8 | std::uint32_t{pixels[2]} << 16, to);
}

void ChooseFromIndices(const std::uint8_t* row, std::span<const std::uint32_t> offsets,
                       const DeviceColors& colors, std::span<std::uint8_t> out) {
    std::uint8_t* to = out.data();
    for (const std::uint32_t offset : offsets) {
        StorePixel(colors[row[offset]], to);
        to += 4;
    }
}

void ChooseFrom24(const std::uint8_t* row, std::span<const std::uint32_t> offsets,
                  std::span<std::uint8_t> out) {
    std::uint8_t* to = out.data();
    for (const std::uint32_t offset : offsets) {
        StorePixel(LoadPixel(row + offset) & 0x00ffffff, to);
        to += 4;
    }
}

void ChooseFrom32(const std::uint8_t* row, std::span<const std::uint32_t> offsets,
                  std::span<std::uint8_t> out) {
    std::uint8_t* to = out.data();
    for (const std::uint32_t offset : offsets) {
        StorePixel(LoadPixel(row + offset), to);
        to += 4;
    }
}

void AndBytes(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out) {
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] &= pixels[i];
}

void OrBytes(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out) {
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] |= pixels[i];
}

}  // namespace rastrel
