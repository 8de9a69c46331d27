#include "formats/tiff/tiff_rows.h"

#include <cstring>

#include "core/pixel_rows.h"

namespace rastrel {

namespace {

/// A 16-bit sample to the nearest of 8 bits: divided by 257, which 65,535 is 255 times.
std::uint8_t NearestByte(std::uint16_t sample) {
    return static_cast<std::uint8_t>((sample * 255u + 32895u) >> 16);
}

/// Samples of 1, 2, 4 or 8 bits from first on, as they are; of 16 bits scaled to 8.
void UnpackSamples(std::span<const std::uint8_t> row, int bits, std::size_t first,
                   std::span<std::uint8_t> out) {
    if (bits == 16) {
        const std::uint8_t* in = row.data() + 2 * first;
        for (std::uint8_t& sample : out) {
            std::uint16_t wide = 0;
            std::memcpy(&wide, in, 2);
            sample = NearestByte(wide);
            in += 2;
        }
        return;
    }
    const auto per_byte = static_cast<std::size_t>(8 / bits);
    row = row.subspan(first / per_byte);
    first %= per_byte;
    if (bits != 2) {
        UnpackIndices(row, bits, static_cast<int>(first), out);
        return;
    }
    for (std::uint8_t& sample : out) {
        sample = static_cast<std::uint8_t>((row[first / 4] >> (6 - 2 * (first % 4))) & 3);
        ++first;
    }
}

}  // namespace

void TiffRowConverter::Convert(const TiffRows& rows, std::uint32_t row, std::size_t first_column,
                               std::span<std::uint8_t> out) {
    if (layout_.pixels == TiffPixels::kColorsByCodec) {
        const std::size_t count = out.size() / 3;
        Bgr24FromRgba32(rows.Row(0, row).subspan(4 * first_column, 4 * count), out);
        return;
    }
    if (layout_.pixels == TiffPixels::kIndices)
        ConvertIndices(rows.Row(0, row), first_column, out);
    else if (layout_.separate)
        ConvertPlanes(rows, row, first_column, out);
    else
        ConvertInterleaved(rows.Row(0, row), first_column, out);
    if (layout_.pixels == TiffPixels::kColors && layout_.photometric == PHOTOMETRIC_MINISWHITE) {
        for (std::uint8_t& byte : out)
            byte = static_cast<std::uint8_t>(~byte);
    }
}

void TiffRowConverter::ConvertIndices(std::span<const std::uint8_t> row, std::size_t first,
                                      std::span<std::uint8_t> out) const {
    UnpackSamples(row, layout_.bits, first, out);
}

void TiffRowConverter::ConvertInterleaved(std::span<const std::uint8_t> row, std::size_t first,
                                          std::span<std::uint8_t> out) {
    const auto samples = static_cast<std::size_t>(layout_.samples);
    const auto bytes =
        SampleBytes(row, first * samples, out.size() / 3 * samples, scratch_.front());
    if (samples == 3)
        SwapRedBlue24(bytes, out);
    else
        Bgr24FromRgba32(bytes, out);
}

void TiffRowConverter::ConvertPlanes(const TiffRows& rows, std::uint32_t row, std::size_t first,
                                     std::span<std::uint8_t> out) {
    std::array<std::span<const std::uint8_t>, 3> channels;
    for (std::size_t i = 0; i < channels.size(); ++i)
        channels[i] = SampleBytes(rows.Row(i, row), first, out.size() / 3, scratch_[i]);
    Bgr24FromPlanes(channels[0].data(), channels[1], channels[2].data(), out);
}

std::span<const std::uint8_t> TiffRowConverter::SampleBytes(
    std::span<const std::uint8_t> row, std::size_t first, std::size_t count,
    std::vector<std::uint8_t>& scratch) const {
    if (layout_.bits == 8) return row.subspan(first, count);
    scratch.resize(count);
    UnpackSamples(row, layout_.bits, first, scratch);
    if (layout_.bits < 8) {
        const unsigned factor = 255u / ((1u << layout_.bits) - 1);
        for (std::uint8_t& sample : scratch)
            sample = static_cast<std::uint8_t>(sample * factor);
    }
    return scratch;
}

}  // namespace rastrel
