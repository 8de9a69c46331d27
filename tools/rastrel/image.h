#pragma once

#include <optional>
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

    friend bool operator==(const PaletteEntry&, const PaletteEntry&) = default;
};

/// The most bytes that the rows of an image may have.
constexpr double kMostImageBytes = 2147483647.0;

class Image;

/// Reads an image, or a rectangle of it.
[[nodiscard]] bool ReadPart(const Image& image, const std::string& name, int type,
                            const std::optional<Rectangle>& part);

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
    /// Whether pixels can be computed with: those of run-length coded bitmap files cannot.
    [[nodiscard]] bool HasPlainPixels() const;
    /// Converts to 1, 8, 24 or 32 bits; false when the library has no way to.
    [[nodiscard]] bool ConvertDepth(int bits);
    /// Replaces the image by one of a single colour: of 24 bits or, with a palette, of 8 and the
    /// palette's colour that is nearest. False when memory does not suffice.
    [[nodiscard]] bool MakeBlank(int width, int height, PaletteEntry color,
                                 const std::vector<PaletteEntry>& palette);
    /// Gives an image of up to 8 bits a palette.
    [[nodiscard]] bool SetPalette(const std::vector<PaletteEntry>& palette) const;

  private:
    /// Replaces the image by one made from its own pixels at 8, 24 or 32 bits.
    [[nodiscard]] bool RebuildAt(int bits);
    /// As Rastrel_Create; the handle stays the owner's on failure, too.
    [[nodiscard]] bool Create(int width, int height, int bits);
    [[nodiscard]] bool RebuildWithAlpha(const std::vector<std::uint8_t>& pixels, int width,
                                        int height);

    int handle_;
};

}  // namespace rastrel_cli
