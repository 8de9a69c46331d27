#pragma once

#include <string>
#include <vector>

#include "rastrel.h"

namespace rastrel_cli {

struct Rectangle {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

struct PaletteEntry {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
};

/// An image of the library's, ended with its owner.
class Image {
  public:
    Image() : handle_(Rastrel_New()) {}
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;
    ~Image() { Rastrel_Delete(handle_); }

    [[nodiscard]] int Handle() const { return handle_; }
    [[nodiscard]] std::string Description() const;
    [[nodiscard]] std::vector<PaletteEntry> Palette() const;
    /// Converts to 1, 8, 24 or 32 bits; false when the library has no way to.
    [[nodiscard]] bool ConvertDepth(int bits);

  private:
    /// Replaces the image by one made from its own pixels at 8, 24 or 32 bits.
    [[nodiscard]] bool RebuildAt(int bits);
    [[nodiscard]] bool RebuildWithAlpha(const std::vector<std::uint8_t>& pixels, int width,
                                        int height);

    int handle_;
};

}  // namespace rastrel_cli
