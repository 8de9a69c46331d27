// Bytes as a world file, as a header of raw pixels, and as an AIMA image's header.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "geo/aima_header.h"
#include "geo/header_keys.h"
#include "geo/world_file.h"
#include "read_and_use.h"

namespace {

using namespace rastrel;
using rastrel_fuzz::Require;

using Bytes = std::span<const std::uint8_t>;

void RequireFinite(const FoundGeoreference& found) {
    for (const auto& value : {found.x, found.y, found.pixel_size})
        Require(!value || std::isfinite(*value));
}

void UseWorldFile(Bytes bytes) {
    MemorySource source(bytes);
    const FoundGeoreference found = ReadWorldFile(source);
    Require(found.success);
    RequireFinite(found);
}

std::vector<std::uint8_t> OtherLines(Bytes header) {
    MemorySource source(header);
    MemorySink sink;
    Require(CopyOtherLines(source, sink));
    return sink.Bytes();
}

void UseHeader(Bytes bytes) {
    MemorySource source(bytes);
    const FoundGeoreference found = ReadHeaderGeoreference(source);
    RequireFinite(found);
    Require(found.success == (found.x && found.y && found.pixel_size));
    // Without its georeference a header has none, ends with a line's end, and stays as it is.
    const auto others = OtherLines(bytes);
    MemorySource others_source(others);
    Require(!ReadHeaderGeoreference(others_source).success);
    Require(others.empty() || others.back() == '\n');
    Require(OtherLines(others) == others);
}

/// The values to be stored are bytes of the input, too.
Georeference TakeGeoreference(Bytes bytes) {
    std::array<double, 3> values = {12345.67, 89.0, 0.5};
    std::memcpy(values.data(), bytes.data(), std::min(bytes.size(), sizeof values));
    return {values[0], values[1], values[2]};
}

void UseAimaHeader(Bytes bytes, AimaHeader kind) {
    MemorySource source(bytes);
    const std::size_t length = AimaHeaderBytes(kind);
    Require(ReadAimaGeoreference(source, kind).success == (bytes.size() >= length));
    if (bytes.size() < length) return;
    std::vector<std::uint8_t> header(bytes.begin(),
                                     bytes.begin() + static_cast<std::ptrdiff_t>(length));
    const std::vector<std::uint8_t> old = header;
    const Georeference wanted = TakeGeoreference(bytes.subspan(length));
    if (!PatchAimaHeader(header, kind, wanted)) {
        Require(header == old);
        return;
    }
    MemorySource patched(header);
    const FoundGeoreference stored = ReadAimaGeoreference(patched, kind);
    // Half a unit is added before truncating toward zero, which takes negative values by up to one
    // and a half.
    const auto is_near = [](double have, double want, double unit) {
        return std::abs(have - want) < 1.5 * unit;
    };
    Require(is_near(*stored.x, wanted.x, 0.1) && is_near(*stored.y, wanted.y, 0.1));
    // A long header keeps only 16 bits of the pixel size.
    Require(kind == AimaHeader::kLong || is_near(*stored.pixel_size, wanted.pixel_size, 0.0001));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bytes bytes(data, size);
    UseWorldFile(bytes);
    UseHeader(bytes);
    UseAimaHeader(bytes, AimaHeader::kShort);
    UseAimaHeader(bytes, AimaHeader::kLong);
    return 0;
}
