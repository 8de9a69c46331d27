#pragma once

#include <cstdint>
#include <span>

#include "core/geometry.h"
#include "formats/jp2/jp2_codec.h"

namespace rastrel {

/// Makes rows of bytes from the samples of a decoded component: of any precision, signed or not,
/// and with fewer samples than the picture has pixels, each of which then stands for several.
class Jp2Channel {
  public:
    /// origin: where the wanted part's upper-left pixel lies on the reference grid; step: a pixel's
    /// width and height there.
    Jp2Channel(const opj_image_comp_t& component, std::int64_t origin_x, std::int64_t origin_y,
               Size step);

    /// Whether there are samples to read.
    [[nodiscard]] bool Ok() const;
    /// Row y of the part, scaled to 8 bits.
    void Read(int y, std::span<std::uint8_t> out) const;

  private:
    [[nodiscard]] std::uint8_t Level(std::int32_t sample) const;

    const opj_image_comp_t& component_;
    std::int64_t origin_x_;
    std::int64_t origin_y_;
    Size step_;
    std::int64_t greatest_;
};

/// Turns brightness and the differences of blue and red, 128 standing for none, into red, green and
/// blue, in place.
void ColorsFromDifferences(std::span<std::uint8_t> brightness, std::span<std::uint8_t> blue,
                           std::span<std::uint8_t> red);

}  // namespace rastrel
