#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

namespace rastrel {

/// A block of zero-filled memory of the kind that bitmaps are exchanged in: on Windows a movable
/// global memory object, kept locked; elsewhere memory that is not backed by pages until it is
/// touched, so that filling it from a file does not pay for the zeros first.
class GlobalMemory {
  public:
    GlobalMemory() = default;
    /// Empty when memory does not suffice or bytes is 0.
    explicit GlobalMemory(std::size_t bytes) : data_(Take(bytes)), size_(data_ ? bytes : 0) {}
    GlobalMemory(GlobalMemory&& other) noexcept
        : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}
    GlobalMemory& operator=(GlobalMemory&& other) noexcept {
        if (this != &other) {
            Release(data_, size_);
            data_ = std::exchange(other.data_, nullptr);
            size_ = std::exchange(other.size_, 0);
        }
        return *this;
    }
    GlobalMemory(const GlobalMemory&) = delete;
    GlobalMemory& operator=(const GlobalMemory&) = delete;
    ~GlobalMemory() { Release(data_, size_); }

    [[nodiscard]] std::uint8_t* data() const { return data_; }
    [[nodiscard]] std::size_t size() const { return size_; }
    explicit operator bool() const { return data_ != nullptr; }

  private:
    static std::uint8_t* Take(std::size_t bytes);
    static void Release(std::uint8_t* data, std::size_t bytes);

    std::uint8_t* data_ = nullptr;
    std::size_t size_ = 0;
};

}  // namespace rastrel
