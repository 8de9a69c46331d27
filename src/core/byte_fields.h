#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace rastrel {

/// Little-endian fields from bytes in memory. Past the end it yields zeros and remembers; ask Ok()
/// before the first decision that depends on a value.
class ByteReader {
  public:
    explicit ByteReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    [[nodiscard]] std::uint16_t U16() { return static_cast<std::uint16_t>(Value(2)); }
    [[nodiscard]] std::uint32_t U32() { return Value(4); }
    [[nodiscard]] std::int32_t I32() { return static_cast<std::int32_t>(Value(4)); }
    void Skip(std::size_t count) { static_cast<void>(Take(count)); }
    [[nodiscard]] bool Ok() const { return ok_; }

  private:
    /// The next count bytes, or none when fewer are left.
    [[nodiscard]] std::span<const std::uint8_t> Take(std::size_t count) {
        if (count > bytes_.size()) {
            ok_ = false;
            bytes_ = {};
            return {};
        }
        const auto taken = bytes_.first(count);
        bytes_ = bytes_.subspan(count);
        return taken;
    }
    [[nodiscard]] std::uint32_t Value(std::size_t count) {
        std::uint32_t value = 0;
        unsigned shift = 0;
        for (const std::uint8_t byte : Take(count)) {
            value |= std::uint32_t{byte} << shift;
            shift += 8;
        }
        return value;
    }

    std::span<const std::uint8_t> bytes_;
    bool ok_ = true;
};

/// The mirror of ByteReader: little-endian fields into a buffer that is large enough or remembers.
class ByteWriter {
  public:
    explicit ByteWriter(std::span<std::uint8_t> bytes) : bytes_(bytes) {}

    void U16(std::uint16_t value) { Value(value, 2); }
    void U32(std::uint32_t value) { Value(value, 4); }
    void I32(std::int32_t value) { Value(static_cast<std::uint32_t>(value), 4); }
    [[nodiscard]] bool Ok() const { return ok_; }

  private:
    void Value(std::uint32_t value, std::size_t count) {
        if (count > bytes_.size()) {
            ok_ = false;
            bytes_ = {};
            return;
        }
        for (std::uint8_t& byte : bytes_.first(count)) {
            byte = static_cast<std::uint8_t>(value);
            value >>= 8;
        }
        bytes_ = bytes_.subspan(count);
    }

    std::span<std::uint8_t> bytes_;
    bool ok_ = true;
};

}  // namespace rastrel
