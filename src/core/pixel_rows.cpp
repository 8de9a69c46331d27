#include "core/pixel_rows.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "core/pixel_rows_plain.h"
#include "core/pixel_rows_simd.h"

namespace rastrel {

namespace {

// Groups of pixels are moved as whole machine words, lowest byte first.
static_assert(std::endian::native == std::endian::little);

constexpr std::size_t kPixelsPerByte = 8;  // of 1-bit pixels

void StoreWord(std::uint64_t word, std::uint8_t* bytes) {
    std::memcpy(bytes, &word, sizeof word);
}

/// For each byte of eight 1-bit pixels, the leftmost in its highest bit: their eight indices as a
/// word whose lowest byte is the leftmost.
constexpr std::array<std::uint64_t, 256> MakeUnpackedBits() {
    std::array<std::uint64_t, 256> words = {};
    for (std::size_t byte = 0; byte < words.size(); ++byte) {
        for (unsigned pixel = 0; pixel < kPixelsPerByte; ++pixel)
            words[byte] |= std::uint64_t{(byte >> (7 - pixel)) & 1} << (8 * pixel);
    }
    return words;
}

void UnpackBits(std::span<const std::uint8_t> row, std::size_t column,
                std::span<std::uint8_t> out) {
    static constexpr std::array<std::uint64_t, 256> kUnpacked = MakeUnpackedBits();
    std::size_t done = 0;
    const auto one_pixel = [&] {
        out[done++] = static_cast<std::uint8_t>((row[column / 8] >> (7 - column % 8)) & 1);
        ++column;
    };
    while (done < out.size() && column % kPixelsPerByte != 0)
        one_pixel();
    for (; out.size() - done >= kPixelsPerByte; done += kPixelsPerByte, column += kPixelsPerByte)
        StoreWord(kUnpacked[row[column / kPixelsPerByte]], &out[done]);
    while (done < out.size())
        one_pixel();
}

void UnpackNibbles(std::span<const std::uint8_t> row, std::size_t column,
                   std::span<std::uint8_t> out) {
    for (std::uint8_t& index : out) {
        const std::uint8_t byte = row[column / 2];
        index = column % 2 == 0 ? byte >> 4 : byte & 15;
        ++column;
    }
}

void PackBits(std::span<const std::uint8_t> indices, std::span<std::uint8_t> row) {
    std::size_t byte = 0;
    for (; indices.size() >= kPixelsPerByte; indices = indices.subspan(kPixelsPerByte)) {
        unsigned bits = 0;
        for (const std::uint8_t index : indices.first(kPixelsPerByte))
            bits = bits << 1 | (index != 0 ? 1u : 0u);
        row[byte++] = static_cast<std::uint8_t>(bits);
    }
    if (indices.empty()) return;
    unsigned bits = 0;
    for (std::size_t i = 0; i < indices.size(); ++i) {
        if (indices[i] != 0) bits |= 0x80u >> i;
    }
    row[byte] = static_cast<std::uint8_t>(bits);
}

void PackNibbles(std::span<const std::uint8_t> indices, std::span<std::uint8_t> row) {
    for (std::size_t i = 0; i < indices.size(); i += 2) {
        const unsigned left = indices[i] & 15u;
        const unsigned right = i + 1 < indices.size() ? indices[i + 1] & 15u : 0;
        row[i / 2] = static_cast<std::uint8_t>(left << 4 | right);
    }
}

}  // namespace

void UnpackIndices(std::span<const std::uint8_t> row, int bits, int first,
                   std::span<std::uint8_t> out) {
    const auto column = static_cast<std::size_t>(first);
    switch (bits) {
        case 1:
            UnpackBits(row, column, out);
            break;
        case 4:
            UnpackNibbles(row, column, out);
            break;
        default:
            std::copy_n(row.begin() + first, out.size(), out.begin());
            break;
    }
}

void PackIndices(std::span<const std::uint8_t> indices, int bits, std::span<std::uint8_t> row) {
    switch (bits) {
        case 1:
            PackBits(indices, row);
            break;
        case 4:
            PackNibbles(indices, row);
            break;
        default:
            std::copy(indices.begin(), indices.end(), row.begin());
            break;
    }
}

void ExpandTo24(std::span<const std::uint8_t> indices, const ValueColors& colors,
                std::span<std::uint8_t> out) {
    const std::size_t done = simd::ExpandTo24(indices.data(), colors, indices.size(), out.data());
    plain::ExpandTo24(indices.subspan(done), colors, out.subspan(3 * done));
}

void Bgr24From32(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out) {
    const std::size_t done = simd::Bgr24From32(pixels.data(), pixels.size() / 4, out.data());
    plain::Bgr24From32(pixels.subspan(4 * done), out.subspan(3 * done));
}

void SwapRedBlue24(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out) {
    const std::size_t done = simd::SwapRedBlue24(pixels.data(), pixels.size() / 3, out.data());
    plain::SwapRedBlue24(pixels.subspan(3 * done), out.subspan(3 * done));
}

void Bgr24FromRgba32(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out) {
    const std::size_t done = simd::Bgr24FromRgba32(pixels.data(), pixels.size() / 4, out.data());
    plain::Bgr24FromRgba32(pixels.subspan(4 * done), out.subspan(3 * done));
}

void Bgr24FromPlanes(const std::uint8_t* red, std::span<const std::uint8_t> green,
                     const std::uint8_t* blue, std::span<std::uint8_t> out) {
    const std::size_t done =
        simd::Bgr24FromPlanes(red, green.data(), blue, green.size(), out.data());
    plain::Bgr24FromPlanes(red + done, green.subspan(done), blue + done, out.subspan(3 * done));
}

void Bgr24From16(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out) {
    const std::size_t count = pixels.size() / 2;
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned pixel = pixels[2 * i] | static_cast<unsigned>(pixels[2 * i + 1]) << 8;
        for (unsigned channel = 0; channel < 3; ++channel) {
            const unsigned level = (pixel >> (5 * channel)) & 31;
            out[3 * i + channel] = static_cast<std::uint8_t>(level << 3 | level >> 2);
        }
    }
}

void ExpandTo32(std::span<const std::uint8_t> indices, const ValueColors& colors,
                std::span<std::uint8_t> out) {
    std::uint8_t* to = out.data();
    for (const std::uint8_t index : indices) {
        std::memcpy(to, &colors.pixels[index], 4);
        to += 4;
    }
}

void Bgra32From24(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out) {
    const std::size_t done = simd::Bgra32From24(pixels.data(), pixels.size() / 3, out.data());
    plain::Bgra32From24(pixels.subspan(3 * done), out.subspan(4 * done));
}

void GreyFromBgr(std::span<const std::uint8_t> pixels, std::size_t pixel_bytes,
                 std::span<std::uint8_t> out) {
    const std::size_t done = pixel_bytes == 3
                                 ? simd::GreyFromBgr24(pixels.data(), out.size(), out.data())
                                 : simd::GreyFromBgra32(pixels.data(), out.size(), out.data());
    plain::GreyFromBgr(pixels.subspan(pixel_bytes * done), pixel_bytes, out.subspan(done));
}

void TakeChannel(std::span<const std::uint8_t> pixels, std::size_t channel,
                 std::span<std::uint8_t> out) {
    const std::size_t done = simd::TakeChannel(pixels.data(), channel, out.size(), out.data());
    plain::TakeChannel(pixels.subspan(3 * done), channel, out.subspan(done));
}

void StreamCopy(std::span<const std::uint8_t> from, std::uint8_t* to) {
    if (!from.empty()) simd::StreamCopy(from.data(), from.size(), to);
}

}  // namespace rastrel
