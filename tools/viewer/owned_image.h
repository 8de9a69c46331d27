#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "rastrel.h"

namespace rastrel_view {

/// An image of the library's, ended with its owner.
class OwnedImage {
  public:
    OwnedImage() : OwnedImage(Rastrel_New()) {}
    OwnedImage(const OwnedImage&) = delete;
    OwnedImage& operator=(const OwnedImage&) = delete;
    ~OwnedImage() { Rastrel_Delete(handle_); }

    /// An image of 24 bits, black; null when memory does not suffice.
    [[nodiscard]] static std::unique_ptr<OwnedImage> Blank(int width, int height) {
        const int handle = Rastrel_New();
        // A failed creation takes the handle with it.
        if (handle < 0 || Rastrel_Create(handle, width, height, 24) != 1) return nullptr;
        return std::unique_ptr<OwnedImage>(new OwnedImage(handle));
    }

    [[nodiscard]] int Handle() const { return handle_; }
    [[nodiscard]] int Width() const { return Rastrel_GetWidth(handle_); }
    [[nodiscard]] int Height() const { return Rastrel_GetHeight(handle_); }
    [[nodiscard]] int Bits() const { return Rastrel_GetDepth(handle_); }
    /// The first byte of a row, counted from the top of the picture.
    [[nodiscard]] std::uint8_t* PictureRow(int row) const {
        return Rastrel_GetRawImage(handle_) +
               static_cast<std::size_t>(Height() - 1 - row) *
                   static_cast<std::size_t>(Rastrel_GetEffWidth(handle_));
    }

  private:
    explicit OwnedImage(int handle) : handle_(handle) {}

    int handle_;
};

}  // namespace rastrel_view
