#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "core/image_object.h"

namespace rastrel {

/// The images of the process by their handles: indices that stay put for as long as the module is
/// loaded. An element is an image or free; the table only grows.
///
/// The lock guards the table alone. It is held to look at or to change one element and never while
/// an image is made, worked on or destroyed. Elements share their images with the calls that have
/// fetched them: an image that is deleted ends when the last of those returns.
class HandleTable {
  public:
    using ImagePointer = std::shared_ptr<ImageObject>;

    HandleTable() = default;
    HandleTable(const HandleTable&) = delete;
    HandleTable& operator=(const HandleTable&) = delete;
    /// Ends the images in the order of their handles.
    ~HandleTable();

    /// Gives the image the lowest free handle.
    [[nodiscard]] int Add(ImagePointer image);
    /// Null for a handle out of range or free.
    [[nodiscard]] ImagePointer Fetch(int handle) const;
    /// Puts an image in the place of another, which is returned; null, with nothing changed, for a
    /// handle out of range or free.
    [[nodiscard]] ImagePointer Replace(int handle, ImagePointer image);
    /// Frees the handle and returns its image; null for a handle out of range or free.
    [[nodiscard]] ImagePointer Remove(int handle);
    /// Frees the handle if it still holds this image.
    void RemoveIfHolding(int handle, const ImagePointer& image);

  private:
    /// The element of a handle; null when out of range. The lock must be held.
    [[nodiscard]] const ImagePointer* Element(int handle) const;
    [[nodiscard]] ImagePointer* Element(int handle);

    mutable std::mutex lock_;
    std::vector<ImagePointer> images_;
};

/// The table of the process, from the module's load to its unload.
[[nodiscard]] HandleTable& ImageTable();

}  // namespace rastrel
