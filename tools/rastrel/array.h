#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

#include "rastrel.h"

namespace rastrel_cli {

/// The library's functions on arrays, by the type of their samples.
template <class Sample>
struct ArrayFunctions;

template <>
struct ArrayFunctions<std::uint8_t> {
    static constexpr auto kCreate = &Rastrel_CreateArrayByte;
    static constexpr auto kDelete = &Rastrel_DeleteArrayByte;
    static constexpr auto kStatistics = &Rastrel_StatisticsExByte;
    static constexpr auto kStretch = &Rastrel_LinearStretchExByte;
    static constexpr auto kHillshading = &Rastrel_HillshadingByte;
    static constexpr auto kSlope = &Rastrel_SlopeByte;
    static constexpr auto kAspect = &Rastrel_AspectByte;
    static constexpr auto kSmooth = &Rastrel_Convolute3x3Byte;
};

template <>
struct ArrayFunctions<std::int16_t> {
    static constexpr auto kCreate = &Rastrel_CreateArrayShort;
    static constexpr auto kDelete = &Rastrel_DeleteArrayShort;
    static constexpr auto kStatistics = &Rastrel_StatisticsExShort;
    static constexpr auto kStretch = &Rastrel_LinearStretchExShort;
    static constexpr auto kHillshading = &Rastrel_HillshadingShort;
    static constexpr auto kSlope = &Rastrel_SlopeShort;
    static constexpr auto kAspect = &Rastrel_AspectShort;
    static constexpr auto kSmooth = &Rastrel_Convolute3x3Short;
};

template <>
struct ArrayFunctions<std::int32_t> {
    static constexpr auto kCreate = &Rastrel_CreateArrayInt;
    static constexpr auto kDelete = &Rastrel_DeleteArrayInt;
    static constexpr auto kStatistics = &Rastrel_StatisticsExInt;
    static constexpr auto kStretch = &Rastrel_LinearStretchExInt;
    static constexpr auto kHillshading = &Rastrel_HillshadingInt;
    static constexpr auto kSlope = &Rastrel_SlopeInt;
    static constexpr auto kAspect = &Rastrel_AspectInt;
    static constexpr auto kSmooth = &Rastrel_Convolute3x3Int;
};

template <>
struct ArrayFunctions<float> {
    static constexpr auto kCreate = &Rastrel_CreateArrayFloat;
    static constexpr auto kDelete = &Rastrel_DeleteArrayFloat;
    static constexpr auto kStatistics = &Rastrel_StatisticsExFloat;
    static constexpr auto kStretch = &Rastrel_LinearStretchExFloat;
    static constexpr auto kHillshading = &Rastrel_HillshadingFloat;
    static constexpr auto kSlope = &Rastrel_SlopeFloat;
    static constexpr auto kAspect = &Rastrel_AspectFloat;
    static constexpr auto kSmooth = &Rastrel_Convolute3x3Float;
};

/// An array from the library's heap, freed with its owner. Its samples are not cleared.
template <class Sample>
class Array {
  public:
    using Functions = ArrayFunctions<Sample>;

    Array() = default;
    /// Throws std::bad_alloc when memory does not suffice.
    Array(int rows, int columns)
        : data_(Functions::kCreate(rows, columns)),
          size_(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns)) {
        if (data_ == nullptr) throw std::bad_alloc();
    }
    Array(Array&& other) noexcept
        : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}
    Array& operator=(Array&& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        return *this;
    }
    Array(const Array&) = delete;
    Array& operator=(const Array&) = delete;
    ~Array() { Functions::kDelete(data_); }

    [[nodiscard]] bool Empty() const { return size_ == 0; }
    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] Sample* data() { return data_; }
    [[nodiscard]] const Sample* data() const { return data_; }
    [[nodiscard]] Sample* begin() { return data_; }
    [[nodiscard]] Sample* end() { return data_ + size_; }
    [[nodiscard]] const Sample* begin() const { return data_; }
    [[nodiscard]] const Sample* end() const { return data_ + size_; }
    [[nodiscard]] Sample& operator[](std::size_t i) { return data_[i]; }
    [[nodiscard]] const Sample& operator[](std::size_t i) const { return data_[i]; }

  private:
    Sample* data_ = nullptr;
    std::size_t size_ = 0;
};

}  // namespace rastrel_cli
