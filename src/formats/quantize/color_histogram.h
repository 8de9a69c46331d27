#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "formats/quantize/color_parts.h"

namespace rastrel {

/// A colour of an image and how many pixels have it.
struct CountedColor {
    ColorParts parts;
    std::uint32_t count;
};

/// The colours of an image of 24-bit pixels, given in any number of pieces. There are at most
/// 32,767: as soon as one is too many, components are rescaled from 0..255 to 0..127, then to
/// 0..63, and so on, which makes one colour of several.
///
/// A colour has a place: how many others appeared before it.
class ColorHistogram {
  public:
    static constexpr std::size_t kMostColors = 32767;

    ColorHistogram();

    /// Counts pixels of three bytes each.
    void Add(std::span<const std::uint8_t> pixels);

    [[nodiscard]] std::size_t Size() const { return keys_.size(); }
    /// The greatest value of a component; 255 as long as no colour was one too many.
    [[nodiscard]] int Maximum() const { return (1 << bits_) - 1; }
    /// By place.
    [[nodiscard]] std::vector<CountedColor> Colors() const;

  private:
    friend class ColorIndices;

    /// A component's share of a key, by its value from 0 to 255.
    using Shares = std::array<std::uint32_t, 256>;

    [[nodiscard]] bool IsDirect() const { return bits_ <= kMostDirectBits; }
    [[nodiscard]] std::size_t KeyCount() const { return std::size_t{1} << (3 * bits_); }
    [[nodiscard]] std::uint32_t KeyOf(const std::uint8_t* pixel) const {
        return shares_[0][pixel[0]] | shares_[1][pixel[1]] | shares_[2][pixel[2]];
    }
    [[nodiscard]] ColorParts PartsOf(std::uint32_t key) const;
    /// The keys, of at most 16 bits, of as many pixels as there is room for.
    void MakeShortKeys(const std::uint8_t* pixels, std::span<std::uint16_t> keys) const;
    /// The slot of a key, or the free one that it would take.
    [[nodiscard]] std::size_t SlotOf(std::uint32_t key) const;
    /// Both count until a colour is one too many and return how many pixels they have taken.
    [[nodiscard]] std::size_t AddBySlots(std::span<const std::uint8_t> pixels);
    [[nodiscard]] std::size_t AddDirectly(std::span<const std::uint8_t> pixels);
    /// Counts by keys; how many, if not all, until a colour was one too many.
    template <class Key>
    [[nodiscard]] std::size_t AddKeys(std::span<const Key> keys);
    /// Adds to the count of a key in its slot; false when it would be one colour too many.
    [[nodiscard]] bool AddToSlot(std::uint32_t key, std::uint32_t count);
    /// Rescales all colours to half the maximum.
    void Coarsen();
    void SetBits(int bits);

    /// Keys of so few bits a component are looked up without search.
    static constexpr int kMostDirectBits = 6;
    /// Those of so few bits fit into 16 bits, and are made many at a time.
    static constexpr int kMostShortBits = 5;
    static constexpr std::size_t kSlots = 65536;

    struct Slot {
        std::uint32_t key = 0;
        std::uint32_t count = 0;  ///< 0 in a free slot
    };

    int bits_ = 8;
    std::array<std::uint8_t, 256> scaled_;  ///< each component at the present scale
    std::array<Shares, 3> shares_;
    std::vector<std::uint32_t> keys_;    ///< by place
    std::vector<std::uint32_t> counts_;  ///< of direct keys, by key
    std::vector<Slot> slots_;  ///< of others, where their hash says or in the next free one
};

/// Gives pixels of counted colours their indices. The histogram must stay as it is meanwhile.
class ColorIndices {
  public:
    /// indices: by the colours' places.
    ColorIndices(const ColorHistogram& histogram, std::span<const std::uint8_t> indices);
    /// Three bytes a pixel to one.
    void LookUp(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out) const;

  private:
    void LookUpDirectly(const std::uint8_t* pixels, std::span<std::uint8_t> out) const;
    void LookUpInSlots(const std::uint8_t* pixels, std::span<std::uint8_t> out) const;

    const ColorHistogram& histogram_;
    std::vector<std::uint8_t> indices_;  ///< of direct keys, by key
    std::vector<std::uint32_t> slots_;   ///< of others: the key and, lowest, its index
};

}  // namespace rastrel
