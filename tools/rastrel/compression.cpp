#include "compression.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace rastrel_cli {

namespace {

struct Compression {
    std::string_view name;
    int tag;
};
constexpr int kGroup3 = 3;
constexpr int kGroup4 = 4;
constexpr int kJpeg = 7;
constexpr std::array<Compression, 7> kCompressions = {{{"none", 1},
                                                       {"packbits", 32773},
                                                       {"lzw", 5},
                                                       {"deflate", 8},
                                                       {"g3", kGroup3},
                                                       {"g4", kGroup4},
                                                       {"jpeg", kJpeg}}};

}  // namespace

std::optional<int> CompressionFromText(const std::string& text) {
    const auto* found = std::find_if(kCompressions.begin(), kCompressions.end(),
                                     [&text](const Compression& c) { return c.name == text; });
    return found != kCompressions.end() ? std::optional(found->tag) : std::nullopt;
}

std::string WhyNotCompressed(const Image& image, int compression) {
    const int bits = Rastrel_GetDepth(image.Handle());
    if ((compression == kGroup3 || compression == kGroup4) && bits != 1)
        return fmt::format("g3 and g4 are for 1 bit a pixel, and these are {}; see --depth", bits);
    if (compression == kJpeg && bits != 24 && !IsGrey(image))
        return "jpeg is for 24 bits a pixel and for grey images of 8; see --depth";
    return "";
}

bool IsGrey(const Image& image) {
    const auto palette = image.Palette();
    if (Rastrel_GetDepth(image.Handle()) != 8 || palette.size() != 256) return false;
    for (std::size_t i = 0; i < palette.size(); ++i) {
        if (palette[i].red != i || palette[i].green != i || palette[i].blue != i) return false;
    }
    return true;
}

}  // namespace rastrel_cli
