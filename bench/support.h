#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "rastrel.h"

namespace rastrel_bench {

// Every benchmark is named subject/form; forms of one subject are compared with each other. The
// library's own is called "rastrel".

/// 100 megapixels, in a size that is a multiple of nothing.
constexpr int kWidth = 11587;
constexpr int kHeight = 8633;
constexpr std::size_t kPixels = std::size_t{kWidth} * kHeight;

/// An image of the library's, ended with its owner.
class BenchImage {
  public:
    BenchImage() : handle_(Rastrel_New()) {}
    BenchImage(int width, int height, int bits) : BenchImage() {
        Rastrel_Create(handle_, width, height, bits);
    }
    BenchImage(const BenchImage&) = delete;
    BenchImage& operator=(const BenchImage&) = delete;
    ~BenchImage() { Rastrel_Delete(handle_); }
    [[nodiscard]] int Handle() const { return handle_; }

  private:
    int handle_;
};

/// Fills an image with smooth and with rough places in turn: half of it compresses well.
void FillWithGround(int handle);

/// A square of hills of all sizes, side x side cells of 0 to 1, side a power of two; a tenth of the
/// ground is a level sea. Random midpoint displacement.
[[nodiscard]] std::vector<float> FractalHeights(int side);

/// Memory fresh from the system, not touched yet.
[[nodiscard]] std::unique_ptr<std::uint8_t[]> FreshBuffer(std::size_t bytes);

/// A name in the folder for temporary files.
[[nodiscard]] std::string TemporaryPath(const std::string& name);

}  // namespace rastrel_bench
