#include "image.h"

#include <array>
#include <cstddef>
#include <cstring>

namespace rastrel_cli {

bool ReadPart(const Image& image, const std::string& name, int type,
              const std::optional<Rectangle>& part) {
    if (!part) return Rastrel_Read(image.Handle(), name.c_str(), type) == 1;
    return Rastrel_ReadPartial(image.Handle(), name.c_str(), type, part->x, part->y, part->width,
                               part->height) == 1;
}

std::string Image::Description() const {
    std::array<char, 512> text = {};
    Rastrel_GetDescription(handle_, text.data(), static_cast<int>(text.size()));
    return text.data();
}

std::vector<PaletteEntry> Image::Palette() const {
    constexpr int kMost = 256;
    std::array<std::uint8_t, kMost> red = {};
    std::array<std::uint8_t, kMost> green = {};
    std::array<std::uint8_t, kMost> blue = {};
    const int count = Rastrel_GetPalette(handle_, kMost, red.data(), green.data(), blue.data());
    std::vector<PaletteEntry> entries;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
        entries.push_back({red[i], green[i], blue[i]});
    return entries;
}

bool Image::HasPlainPixels() const {
    return Rastrel_ExtractPortion(handle_, 0, 0, Rastrel_GetWidth(handle_),
                                  Rastrel_GetHeight(handle_)) == 1;
}

bool Image::ConvertDepth(int bits) {
    const int have = Rastrel_GetDepth(handle_);
    if (have == bits) return true;
    switch (bits) {
        case 1:
            // Deeper images by their grey values, which then fall on either side of the middle.
            if (have > 8 && !RebuildAt(8)) return false;
            return Rastrel_Conv1To8(handle_) == 1 && Rastrel_Conv8To1(handle_) == 1;
        case 8:
            return have < 8 ? Rastrel_Conv1To8(handle_) == 1
                            : Rastrel_Conv24To8(handle_) == 1 && Rastrel_GetDepth(handle_) == 8;
        case 24:
            if (have <= 8 && Rastrel_Conv8To24(handle_) != 1) return false;
            return Rastrel_GetDepth(handle_) == 24 || RebuildAt(24);
        default:
            // By way of 24 bits, which refuses coded pixels; as bytes they would pass for colours.
            if (have <= 8 && Rastrel_Conv8To24(handle_) != 1) return false;
            return RebuildAt(32);
    }
}

bool Image::MakeBlank(int width, int height, PaletteEntry color,
                      const std::vector<PaletteEntry>& palette) {
    if (palette.empty()) {
        if (!Create(width, height, 24)) return false;
    } else {
        const std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width) *
                                               static_cast<std::size_t>(height));
        // An image from samples takes colours by its palette, which one from Rastrel_Create does
        // not.
        if (Rastrel_CreateFromByte(handle_, pixels.data(), width, height) != 1 ||
            !SetPalette(palette))
            return false;
    }
    return Rastrel_Fill(handle_, color.red, color.green, color.blue) == 1;
}

bool Image::SetPalette(const std::vector<PaletteEntry>& palette) const {
    std::vector<std::uint8_t> red;
    std::vector<std::uint8_t> green;
    std::vector<std::uint8_t> blue;
    for (const PaletteEntry& entry : palette) {
        red.push_back(entry.red);
        green.push_back(entry.green);
        blue.push_back(entry.blue);
    }
    return Rastrel_SetPalette(handle_, static_cast<int>(red.size()), red.data(), green.data(),
                              blue.data()) == 1;
}

bool Image::Create(int width, int height, int bits) {
    if (Rastrel_Create(handle_, width, height, bits) == 1) return true;
    handle_ = Rastrel_New();  // a failed creation took the handle with it
    return false;
}

bool Image::RebuildAt(int bits) {
    const int width = Rastrel_GetWidth(handle_);
    const int height = Rastrel_GetHeight(handle_);
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width) *
                                     static_cast<std::size_t>(height) *
                                     static_cast<std::size_t>(bits / 8));
    if (Rastrel_GetImageByte(handle_, pixels.data(), bits, 0, 0, width, height) != 1) return false;
    switch (bits) {
        case 8:
            return Rastrel_CreateFromByte(handle_, pixels.data(), width, height) == 1;
        case 24:
            return Rastrel_CreateFromByte24(handle_, pixels.data(), width, height) == 1;
        default:
            return RebuildWithAlpha(pixels, width, height);
    }
}

bool Image::RebuildWithAlpha(const std::vector<std::uint8_t>& pixels, int width, int height) {
    if (!Create(width, height, 32)) return false;
    const std::size_t row_bytes = static_cast<std::size_t>(width) * 4;
    std::uint8_t* rows = Rastrel_GetRawImage(handle_);
    for (std::size_t y = 0; y < static_cast<std::size_t>(height); ++y) {
        const std::size_t stored = static_cast<std::size_t>(height) - 1 - y;
        std::memcpy(rows + stored * row_bytes, pixels.data() + y * row_bytes, row_bytes);
    }
    return true;
}

}  // namespace rastrel_cli
