#include "api/handle_table.h"

#include <algorithm>
#include <utility>

namespace rastrel {

HandleTable::~HandleTable() {
    for (ImagePointer& image : images_)
        image.reset();
}

int HandleTable::Add(ImagePointer image) {
    const std::lock_guard<std::mutex> guard(lock_);
    const auto free = std::find(images_.begin(), images_.end(), nullptr);
    const auto handle = static_cast<int>(free - images_.begin());
    if (free != images_.end())
        *free = std::move(image);
    else
        images_.push_back(std::move(image));
    return handle;
}

HandleTable::ImagePointer HandleTable::Fetch(int handle) const {
    const std::lock_guard<std::mutex> guard(lock_);
    const ImagePointer* element = Element(handle);
    return element != nullptr ? *element : nullptr;
}

HandleTable::ImagePointer HandleTable::Replace(int handle, ImagePointer image) {
    const std::lock_guard<std::mutex> guard(lock_);
    ImagePointer* element = Element(handle);
    if (element == nullptr || *element == nullptr) return nullptr;
    return std::exchange(*element, std::move(image));
}

HandleTable::ImagePointer HandleTable::Remove(int handle) {
    const std::lock_guard<std::mutex> guard(lock_);
    ImagePointer* element = Element(handle);
    return element != nullptr ? std::exchange(*element, nullptr) : nullptr;
}

void HandleTable::RemoveIfHolding(int handle, const ImagePointer& image) {
    const std::lock_guard<std::mutex> guard(lock_);
    ImagePointer* element = Element(handle);
    // The caller's own pointer keeps the image alive: nothing is destroyed under the lock.
    if (element != nullptr && *element == image) element->reset();
}

const HandleTable::ImagePointer* HandleTable::Element(int handle) const {
    if (handle < 0 || static_cast<std::size_t>(handle) >= images_.size()) return nullptr;
    return &images_[static_cast<std::size_t>(handle)];
}

HandleTable::ImagePointer* HandleTable::Element(int handle) {
    return const_cast<ImagePointer*>(std::as_const(*this).Element(handle));
}

HandleTable& ImageTable() {
    static HandleTable table;
    return table;
}

}  // namespace rastrel
