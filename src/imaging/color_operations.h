#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "core/color.h"
#include "imaging/compositing.h"

namespace rastrel {

// What compositing does with colours: each operation is told for one pair of pixels, a of the image
// that is changed and b of the other, by At (none: the pixel is not written), and done for a run of
// pixels (blue, green, red) by Run. Runs may be worked on in place.

using BgrRun = std::span<const std::uint8_t>;

/// The colour of a pixel's three bytes.
[[nodiscard]] inline Color ColorAt(const std::uint8_t* pixel) {
    return {.red = pixel[2], .green = pixel[1], .blue = pixel[0]};
}

class MaskPainting {
  public:
    MaskPainting(bool invert, Color paint) : invert_(invert), paint_(paint) {}
    [[nodiscard]] std::optional<Color> At(Color a, Color b) const;
    void Run(BgrRun a, BgrRun b, std::uint8_t* out) const;

  private:
    bool invert_;
    Color paint_;
};

class BrightnessShift {
  public:
    BrightnessShift(std::optional<Color> key, int offset) : key_(key), offset_(offset) {}
    [[nodiscard]] std::optional<Color> At(Color a, Color b) const;
    void Run(BgrRun a, BgrRun b, std::uint8_t* out) const;

  private:
    std::optional<Color> key_;
    int offset_;
};

class Blending {
  public:
    Blending(std::optional<Color> key, double weight, BlendMode mode)
        : key_(key), weight_(weight), mode_(mode) {}
    [[nodiscard]] std::optional<Color> At(Color a, Color b) const;
    void Run(BgrRun a, BgrRun b, std::uint8_t* out) const;

  private:
    [[nodiscard]] std::uint8_t Channel(std::uint8_t a, std::uint8_t b) const;
    void BlendBytes(BgrRun a, BgrRun b, std::uint8_t* out) const;

    std::optional<Color> key_;
    double weight_;
    BlendMode mode_;
};

class ColorReplacement {
  public:
    ColorReplacement(Color color, int tolerance, Color new_color);
    [[nodiscard]] std::optional<Color> At(Color a, Color b) const;
    void Run(BgrRun a, BgrRun b, std::uint8_t* out) const;

  private:
    Color color_;
    int tolerance_;
    Color new_color_;
};

}  // namespace rastrel
