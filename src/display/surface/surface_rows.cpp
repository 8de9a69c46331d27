#include "display/surface/surface_rows.h"

#include <algorithm>
#include <cstring>

#include "display/surface/surface_rows_simd.h"

namespace rastrel {

namespace {

void StorePixel(std::uint32_t pixel, std::uint8_t* out) {
    std::memcpy(out, &pixel, sizeof pixel);
}

void StorePixels(std::uint32_t left, std::uint32_t right, std::uint8_t* out) {
    const std::uint64_t pixels = left | std::uint64_t{right} << 32;
    std::memcpy(out, &pixels, sizeof pixels);
}

std::uint32_t LoadPixel(const std::uint8_t* in) {
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, in, sizeof pixel);
    return pixel;
}

}  // namespace

SurfaceColors::SurfaceColors(const DeviceColors& colors)
    : pixels(colors),
      uses_all_bytes(
          std::ranges::any_of(colors, [](std::uint32_t color) { return color > 0x00ffffff; })) {
    for (std::size_t channel = 0; channel < channels.size(); ++channel) {
        std::ranges::transform(colors, channels[channel].begin(), [channel](std::uint32_t color) {
            return static_cast<std::uint8_t>(color >> (8 * channel));
        });
    }
}

void BgrxFromIndices(const std::uint8_t* indices, const SurfaceColors& colors,
                     std::span<std::uint8_t> out) {
    const std::size_t count = out.size() / 4;
    const std::size_t done = simd::BgrxFromIndices(indices, colors, count, out.data());
    std::uint8_t* to = out.data() + 4 * done;
    for (std::size_t i = done; i < count; ++i, to += 4)
        StorePixel(colors.pixels[indices[i]], to);
}

void BgrxFrom24(const std::uint8_t* pixels, std::span<std::uint8_t> out) {
    const std::size_t count = out.size() / 4;
    const std::size_t done = simd::BgrxFrom24(pixels, count, out.data());
    const std::uint8_t* in = pixels + 3 * done;
    std::uint8_t* to = out.data() + 4 * done;
    for (std::size_t i = done; i < count; ++i, in += 3, to += 4)
        StorePixel(in[0] | std::uint32_t{in[1]} << 8 | std::uint32_t{in[2]} << 16, to);
}

void ChooseFromIndices(const std::uint8_t* row, std::span<const std::uint32_t> offsets,
                       const ChosenBytes& groups, const SurfaceColors& colors,
                       std::span<std::uint8_t> out) {
    const std::size_t count = offsets.size();
    std::size_t done = simd::ChooseFromIndices(row, groups, colors, count, out.data());
    // Stored two at a time: stores are what these loops wait for.
    for (; count - done >= 2; done += 2) {
        StorePixels(colors.pixels[row[offsets[done]]], colors.pixels[row[offsets[done + 1]]],
                    &out[4 * done]);
    }
    if (done < count) StorePixel(colors.pixels[row[offsets[done]]], &out[4 * done]);
}

void ChooseFrom24(const std::uint8_t* row, std::span<const std::uint32_t> offsets,
                  const ChosenBytes& groups, std::span<std::uint8_t> out) {
    const std::size_t count = offsets.size();
    std::size_t done = simd::ChooseFrom24(row, groups, count, out.data());
    const auto pixel = [&](std::size_t i) { return LoadPixel(row + offsets[i]) & 0x00ffffff; };
    for (; count - done >= 2; done += 2)
        StorePixels(pixel(done), pixel(done + 1), &out[4 * done]);
    if (done < count) StorePixel(pixel(done), &out[4 * done]);
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
    const std::size_t done = simd::AndBytes(pixels.data(), out.size(), out.data());
    for (std::size_t i = done; i < out.size(); ++i)
        out[i] &= pixels[i];
}

void OrBytes(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out) {
    const std::size_t done = simd::OrBytes(pixels.data(), out.size(), out.data());
    for (std::size_t i = done; i < out.size(); ++i)
        out[i] |= pixels[i];
}

}  // namespace rastrel
