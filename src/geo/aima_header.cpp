#include "geo/aima_header.h"

#include <array>
#include <cmath>

#include "core/byte_fields.h"

namespace rastrel {

namespace {

constexpr std::size_t kMostHeaderBytes = AimaHeaderBytes(AimaHeader::kLong);
constexpr double kUnitsOfCoordinates = 10;
constexpr double kUnitsOfPixelSize = 10000;

/// Where the fields stand. The short header's pixel size is told as two 16-bit halves, the low one
/// first, which is a 32-bit field at an odd place; the long header's has 16 bits.
struct FieldPlaces {
    std::size_t x;
    std::size_t y;
    std::size_t pixel_size;
};

constexpr FieldPlaces PlacesIn(AimaHeader kind) {
    return kind == AimaHeader::kShort ? FieldPlaces{8, 12, 18} : FieldPlaces{36, 40, 48};
}

/// Whole numbers that a field holds.
struct Range {
    double least;
    double most;
};

constexpr Range kSigned32 = {-2147483648.0, 2147483647.0};
constexpr Range kUnsigned32 = {0.0, 4294967295.0};
/// Of a long header's pixel size the lowest 16 bits are kept, whatever stands above them.
constexpr Range kExactInDouble = {-9007199254740992.0, 9007199254740992.0};

/// A value in whole units; none outside the range. Nearly rounded: half a unit short of the next
/// goes down, as in the files that there are.
std::optional<std::int64_t> InUnits(double value, double units, const Range& range) {
    const double whole = std::trunc(value * units + 0.49999);
    if (!(whole >= range.least && whole <= range.most)) return std::nullopt;
    return static_cast<std::int64_t>(whole);
}

}  // namespace

FoundGeoreference ReadAimaGeoreference(ByteSource& source, AimaHeader kind) {
    std::array<std::uint8_t, kMostHeaderBytes> bytes = {};
    const std::span<const std::uint8_t> header = bytes;
    const std::size_t length = AimaHeaderBytes(kind);
    if (source.Read(std::span(bytes).first(length)) < length) return {};
    const FieldPlaces at = PlacesIn(kind);
    const bool is_short = kind == AimaHeader::kShort;
    const auto coordinate = [&](std::size_t field) -> double {
        ByteReader in(header.subspan(field));
        return is_short ? 0.1 * in.U32() : 0.1 * in.I32();
    };
    ByteReader in(header.subspan(at.pixel_size));
    return FoundGeoreference::Of({.x = coordinate(at.x),
                                  .y = coordinate(at.y),
                                  .pixel_size = 0.0001 * (is_short ? in.I32() : int{in.U16()})});
}

bool PatchAimaHeader(std::span<std::uint8_t> header, AimaHeader kind,
                     const Georeference& georeference) {
    const bool is_short = kind == AimaHeader::kShort;
    const Range& coordinates = is_short ? kUnsigned32 : kSigned32;
    const auto x = InUnits(georeference.x, kUnitsOfCoordinates, coordinates);
    const auto y = InUnits(georeference.y, kUnitsOfCoordinates, coordinates);
    const auto pixel_size =
        InUnits(georeference.pixel_size, kUnitsOfPixelSize, is_short ? kSigned32 : kExactInDouble);
    if (!x || !y || !pixel_size) return false;
    const FieldPlaces at = PlacesIn(kind);
    ByteWriter(header.subspan(at.x)).U32(static_cast<std::uint32_t>(*x));
    ByteWriter(header.subspan(at.y)).U32(static_cast<std::uint32_t>(*y));
    ByteWriter out(header.subspan(at.pixel_size));
    if (is_short)
        out.U32(static_cast<std::uint32_t>(*pixel_size));
    else
        out.U16(static_cast<std::uint16_t>(*pixel_size));
    return true;
}

bool WriteAimaGeoreference(const std::string& image_name, AimaHeader kind,
                           const Georeference& georeference) {
    std::array<std::uint8_t, kMostHeaderBytes> bytes = {};
    const std::span<std::uint8_t> header = std::span(bytes).first(AimaHeaderBytes(kind));
    const auto file = UpdatedFile::Open(image_name, UpdatedFile::Access::kReadAndWrite);
    return file && file->ReadAt(0, header) == header.size() &&
           PatchAimaHeader(header, kind, georeference) && file->WriteAt(0, header);
}

}  // namespace rastrel
