#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "core/geometry.h"
#include "formats/tiff/tiff_file.h"
#include "platform/global_memory.h"

namespace rastrel {

/// Reads a satellite scene of four bands of 16 bits (11 of them used) row by row.
class QuickBirdScene {
  public:
    using Table = const std::uint8_t*;  ///< 256 bytes

    /// Null for a file of any other kind.
    [[nodiscard]] static std::unique_ptr<QuickBirdScene> Open(const std::string& name);
    /// The next row: three bytes a pixel, of the first three bands in their order. With all three
    /// tables given, byte 0 goes through blue, byte 1 through green and byte 2 through red. False
    /// when there is no row left, or it cannot be decoded.
    ///
    /// Rows come bottom-up for a file that begins at the top left, else in the file's order. A
    /// strip is decoded when its first row is delivered, whichever way the rows go: bottom-up, the
    /// rows of strips of several rows come from the strip decoded last.
    [[nodiscard]] bool ReadRow(std::uint8_t* row, Table red, Table green, Table blue);

  private:
    QuickBirdScene() = default;
    [[nodiscard]] bool DecodeStrip();

    static constexpr int kBands = 3;

    std::unique_ptr<TiffInput> file_;
    Size size_;
    std::int64_t row_ = 0;
    int step_ = 1;
    std::int64_t rows_in_strip_ = 0;
    std::uint64_t row_bytes_ = 0;
    bool separate_ = false;
    std::array<GlobalMemory, kBands> strips_;
};

}  // namespace rastrel
