#include "formats/quantize/color_histogram.h"

#include <algorithm>

#include "formats/quantize/quantize_simd.h"

namespace rastrel {

namespace {

constexpr std::size_t kPixelBytes = 3;

/// Pixels whose keys are made at once.
constexpr std::size_t kPiece = 1024;

/// The upper half of a product depends on all of the key.
constexpr std::size_t FirstSlot(std::uint32_t key) {
    constexpr std::uint32_t kGoldenRatio = 0x9e3779b1;  // times 2^32
    return key * kGoldenRatio >> 16;
}

}  // namespace

ColorHistogram::ColorHistogram() {
    for (std::size_t value = 0; value < scaled_.size(); ++value)
        scaled_[value] = static_cast<std::uint8_t>(value);
    SetBits(8);
}

void ColorHistogram::SetBits(int bits) {
    const int old_maximum = Maximum();
    bits_ = bits;
    for (std::size_t value = 0; value < scaled_.size(); ++value) {
        scaled_[value] = static_cast<std::uint8_t>(scaled_[value] * Maximum() / old_maximum);
        for (std::size_t part = 0; part < shares_.size(); ++part)
            shares_[part][value] = std::uint32_t{scaled_[value]}
                                   << (static_cast<std::size_t>(bits) * (2 - part));
    }
    keys_.clear();
    counts_.assign(IsDirect() ? KeyCount() : 0, 0);
    slots_.assign(IsDirect() ? 0 : kSlots, Slot());
}

ColorParts ColorHistogram::PartsOf(std::uint32_t key) const {
    const auto maximum = static_cast<std::uint32_t>(Maximum());
    return {static_cast<std::uint8_t>(key >> (2 * bits_)),
            static_cast<std::uint8_t>(key >> bits_ & maximum),
            static_cast<std::uint8_t>(key & maximum)};
}

void ColorHistogram::MakeShortKeys(const std::uint8_t* pixels,
                                   std::span<std::uint16_t> keys) const {
    for (std::size_t i = simd::ShortKeys(pixels, keys.size(), bits_, keys.data()); i < keys.size();
         ++i)
        keys[i] = static_cast<std::uint16_t>(KeyOf(pixels + kPixelBytes * i));
}

std::vector<CountedColor> ColorHistogram::Colors() const {
    std::vector<CountedColor> colors;
    colors.reserve(Size());
    for (const std::uint32_t key : keys_)
        colors.push_back({PartsOf(key), IsDirect() ? counts_[key] : slots_[SlotOf(key)].count});
    return colors;
}

std::size_t ColorHistogram::SlotOf(std::uint32_t key) const {
    std::size_t slot = FirstSlot(key);
    while (slots_[slot].count != 0 && slots_[slot].key != key)
        slot = (slot + 1) % kSlots;
    return slot;
}

bool ColorHistogram::AddToSlot(std::uint32_t key, std::uint32_t count) {
    Slot& slot = slots_[SlotOf(key)];
    if (slot.count == 0) {
        if (Size() == kMostColors) return false;
        keys_.push_back(key);
        slot.key = key;
    }
    slot.count += count;
    return true;
}

std::size_t ColorHistogram::AddBySlots(std::span<const std::uint8_t> pixels) {
    // Neighbours are often alike.
    std::uint32_t last_key = 0;
    std::uint32_t run = 0;
    for (std::size_t at = 0; at < pixels.size(); at += kPixelBytes) {
        const std::uint32_t key = KeyOf(&pixels[at]);
        if (run > 0 && key == last_key) {
            ++run;
            continue;
        }
        if (run > 0 && !AddToSlot(last_key, run)) return at - run * kPixelBytes;
        last_key = key;
        run = 1;
    }
    const bool added = run == 0 || AddToSlot(last_key, run);
    return pixels.size() - (added ? 0 : run * kPixelBytes);
}

template <class Key>
std::size_t ColorHistogram::AddKeys(std::span<const Key> keys) {
    std::uint32_t* const counts = counts_.data();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const Key key = keys[i];
        if (counts[key] == 0) {
            if (Size() == kMostColors) return i;
            keys_.push_back(key);
        }
        ++counts[key];
    }
    return keys.size();
}

std::size_t ColorHistogram::AddDirectly(std::span<const std::uint8_t> pixels) {
    std::array<std::uint16_t, kPiece> short_keys;
    std::array<std::uint32_t, kPiece> long_keys;
    for (std::size_t at = 0; at < pixels.size(); at += kPixelBytes * kPiece) {
        const std::size_t count = std::min((pixels.size() - at) / kPixelBytes, kPiece);
        std::size_t added = 0;
        if (bits_ <= kMostShortBits) {
            const auto keys = std::span(short_keys).first(count);
            MakeShortKeys(&pixels[at], keys);
            added = AddKeys<std::uint16_t>(keys);
        } else {
            const auto keys = std::span(long_keys).first(count);
            for (std::size_t i = 0; i < count; ++i)
                keys[i] = KeyOf(&pixels[at + kPixelBytes * i]);
            added = AddKeys<std::uint32_t>(keys);
        }
        if (added < count) return at + kPixelBytes * added;
    }
    return pixels.size();
}

void ColorHistogram::Add(std::span<const std::uint8_t> pixels) {
    for (;;) {
        pixels = pixels.subspan(IsDirect() ? AddDirectly(pixels) : AddBySlots(pixels));
        if (pixels.empty()) return;
        Coarsen();
    }
}

void ColorHistogram::Coarsen() {
    const std::vector<CountedColor> colors = Colors();
    const int old_maximum = Maximum();
    SetBits(bits_ - 1);
    for (const CountedColor& color : colors) {
        std::uint32_t key = 0;
        for (const std::uint8_t part : color.parts)
            key = key << bits_ | static_cast<std::uint32_t>(part * Maximum() / old_maximum);
        // There are no more of them than before.
        if (!IsDirect()) {
            static_cast<void>(AddToSlot(key, color.count));
            continue;
        }
        if (counts_[key] == 0) keys_.push_back(key);
        counts_[key] += color.count;
    }
}

ColorIndices::ColorIndices(const ColorHistogram& histogram, std::span<const std::uint8_t> indices)
    : histogram_(histogram),
      indices_(histogram.IsDirect() ? histogram.KeyCount() : 0),
      slots_(histogram.IsDirect() ? 0 : ColorHistogram::kSlots) {
    for (std::size_t place = 0; place < histogram.Size(); ++place) {
        const std::uint32_t key = histogram.keys_[place];
        if (histogram.IsDirect())
            indices_[key] = indices[place];
        else
            slots_[histogram.SlotOf(key)] = key << 8 | indices[place];
    }
}

void ColorIndices::LookUp(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out) const {
    if (histogram_.IsDirect())
        LookUpDirectly(pixels.data(), out);
    else
        LookUpInSlots(pixels.data(), out);
}

void ColorIndices::LookUpDirectly(const std::uint8_t* pixels, std::span<std::uint8_t> out) const {
    const std::uint8_t* const indices = indices_.data();
    if (histogram_.bits_ > ColorHistogram::kMostShortBits) {
        for (std::size_t i = 0; i < out.size(); ++i)
            out[i] = indices[histogram_.KeyOf(pixels + kPixelBytes * i)];
        return;
    }
    std::array<std::uint16_t, kPiece> keys;
    while (!out.empty()) {
        const std::size_t count = std::min(out.size(), kPiece);
        histogram_.MakeShortKeys(pixels, std::span(keys).first(count));
        std::uint8_t* const to = out.data();
        for (std::size_t i = 0; i < count; ++i)
            to[i] = indices[keys[i]];
        pixels += kPixelBytes * count;
        out = out.subspan(count);
    }
}

void ColorIndices::LookUpInSlots(const std::uint8_t* pixels, std::span<std::uint8_t> out) const {
    constexpr std::size_t kSlots = ColorHistogram::kSlots;
    std::uint32_t last_key = ~0u;
    std::uint8_t last_index = 0;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const std::uint32_t key = histogram_.KeyOf(pixels + kPixelBytes * i);
        if (key != last_key) {
            std::size_t slot = FirstSlot(key);
            // Every colour that was counted is there; for others the search must end as well.
            for (std::size_t tried = 0; slots_[slot] >> 8 != key && tried < kSlots; ++tried)
                slot = (slot + 1) % kSlots;
            last_key = key;
            last_index = static_cast<std::uint8_t>(slots_[slot]);
        }
        out[i] = last_index;
    }
}

}  // namespace rastrel
