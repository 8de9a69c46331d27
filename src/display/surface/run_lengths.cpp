#include "display/surface/run_lengths.h"

#include <algorithm>
#include <span>

namespace rastrel {

namespace {

/// The second byte of a code whose first is 0; greater ones count the indices that follow.
constexpr std::uint8_t kEndOfRow = 0;
constexpr std::uint8_t kEndOfPicture = 1;
constexpr std::uint8_t kMove = 2;

class RunLengthDecoder {
  public:
    RunLengthDecoder(std::span<const std::uint8_t> data, bool has_nibbles, RasterImage& target)
        : data_(data), has_nibbles_(has_nibbles), target_(target) {}

    void Run() {
        while (data_.size() - at_ >= 2 && y_ < target_.Height()) {
            const std::uint8_t count = data_[at_];
            const std::uint8_t value = data_[at_ + 1];
            at_ += 2;
            if (count > 0) {
                for (unsigned i = 0; i < count; ++i)
                    Put(has_nibbles_ ? Nibble(value, i) : value);
            } else if (value == kEndOfRow) {
                x_ = 0;
                ++y_;
            } else if (value == kEndOfPicture || !Escape(value)) {
                return;
            }
        }
    }

  private:
    static std::uint8_t Nibble(std::uint8_t byte, unsigned place) {
        return place % 2 == 0 ? byte >> 4 : byte & 15;
    }

    /// A move, or indices one by one; false where the data end within.
    bool Escape(std::uint8_t value) {
        if (value == kMove) {
            if (data_.size() - at_ < 2) return false;
            x_ = std::min(x_ + data_[at_], target_.Width());
            y_ += data_[at_ + 1];
            at_ += 2;
            return true;
        }
        const std::size_t bytes = has_nibbles_ ? (value + 1u) / 2 : value;
        if (data_.size() - at_ < bytes) return false;
        for (unsigned i = 0; i < value; ++i)
            Put(has_nibbles_ ? Nibble(data_[at_ + i / 2], i) : data_[at_ + i]);
        // Whole words.
        at_ = std::min(at_ + bytes + bytes % 2, data_.size());
        return true;
    }

    void Put(std::uint8_t index) {
        target_.SetIndex(x_, y_, index);
        if (x_ < target_.Width()) ++x_;
    }

    std::span<const std::uint8_t> data_;
    bool has_nibbles_;
    RasterImage& target_;
    std::size_t at_ = 0;
    int x_ = 0;
    int y_ = 0;
};

}  // namespace

bool DecodeRunLengths(const RasterImage& source, RasterImage& target) {
    if (!target.Create(source.Width(), source.Height(), 8, kColorTypePalettised)) return false;
    const DibHeader header = source.Block().Header();
    const auto data = source.Block().PixelData();
    const auto bytes = std::min<std::size_t>(header.image_size, data.size());
    RunLengthDecoder(data.first(bytes), header.compression == kDibRle4, target).Run();
    return true;
}

}  // namespace rastrel
