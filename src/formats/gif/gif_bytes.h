#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "core/byte_source.h"

namespace rastrel {

/// The bytes of a GIF file one after the other, whose blocks are too small to be read singly.
class GifBytes {
  public:
    explicit GifBytes(ByteSource& source) : source_(source) {}

    /// None at the end.
    [[nodiscard]] std::optional<std::uint8_t> Byte() {
        if (from_ == end_ && !Refill()) return std::nullopt;
        return buffer_[from_++];
    }
    /// How many of the bytes asked for there were.
    [[nodiscard]] std::size_t Read(std::span<std::uint8_t> out) {
        std::size_t count = 0;
        while (count < out.size() && (from_ < end_ || Refill())) {
            const std::size_t part = std::min(out.size() - count, end_ - from_);
            std::copy_n(buffer_.begin() + static_cast<std::ptrdiff_t>(from_), part,
                        out.begin() + static_cast<std::ptrdiff_t>(count));
            from_ += part;
            count += part;
        }
        return count;
    }
    [[nodiscard]] bool ReadAll(std::span<std::uint8_t> out) { return Read(out) == out.size(); }
    [[nodiscard]] bool Skip(std::size_t count) {
        while (count > 0) {
            if (from_ == end_ && !Refill()) return false;
            const std::size_t part = std::min(count, end_ - from_);
            from_ += part;
            count -= part;
        }
        return true;
    }
    /// How many bytes are left.
    [[nodiscard]] std::uint64_t Left() const {
        return source_.BytesFrom(source_.Position()) + (end_ - from_);
    }

  private:
    [[nodiscard]] bool Refill() {
        from_ = 0;
        end_ = source_.Read(buffer_);
        return end_ > 0;
    }

    ByteSource& source_;
    std::array<std::uint8_t, 16384> buffer_;
    std::size_t from_ = 0;
    std::size_t end_ = 0;
};

}  // namespace rastrel
