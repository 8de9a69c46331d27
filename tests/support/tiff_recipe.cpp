#include "support/tiff_recipe.h"

#include <algorithm>
#include <bit>
#include <filesystem>

namespace rastrel_test {

namespace {

constexpr std::uint16_t kShort = 3;
constexpr std::uint16_t kLong = 4;
constexpr std::size_t kHeaderBytes = 8;
constexpr std::size_t kEntryBytes = 12;

}  // namespace

TiffRecipe::TiffRecipe(int width, int height, int bits, int samples, int photometric, Bytes strip)
    : chunks{std::move(strip)} {
    const auto value = [](int number) { return static_cast<std::uint32_t>(number); };
    Set(kImageWidth, {value(width)});
    Set(kImageLength, {value(height)});
    Set(kBitsPerSample, std::vector<std::uint32_t>(static_cast<std::size_t>(samples), value(bits)));
    Set(kCompression, {1});
    if (photometric >= 0) Set(kPhotometric, {value(photometric)});
    Set(kSamplesPerPixel, {value(samples)});
    Set(kRowsPerStrip, {value(height)});
}

TiffRecipe& TiffRecipe::Set(int tag, std::vector<std::uint32_t> values) {
    const bool wide =
        std::any_of(values.begin(), values.end(), [](std::uint32_t v) { return v > 0xffff; });
    FieldWriter bytes;
    for (const std::uint32_t v : values)
        wide ? bytes.U32(v) : bytes.U16(v);
    if (values.empty())
        fields_.erase(tag);
    else
        fields_[tag] = {wide ? kLong : kShort, static_cast<std::uint32_t>(values.size()),
                        bytes.Done()};
    return *this;
}

TiffRecipe& TiffRecipe::SetDoubles(int tag, const std::vector<double>& values) {
    constexpr std::uint16_t kDouble = 12;
    FieldWriter bytes;
    for (const double v : values) {
        const auto bits = std::bit_cast<std::uint64_t>(v);
        bytes.U32(static_cast<std::uint32_t>(bits)).U32(static_cast<std::uint32_t>(bits >> 32));
    }
    fields_[tag] = {kDouble, static_cast<std::uint32_t>(values.size()), bytes.Done()};
    return *this;
}

TiffRecipe& TiffRecipe::SetText(int tag, const char* text) {
    constexpr std::uint16_t kAscii = 2;
    const Bytes bytes = FieldWriter().Text(text).U8({0}).Done();
    fields_[tag] = {kAscii, static_cast<std::uint32_t>(bytes.size()), bytes};
    return *this;
}

TiffRecipe& TiffRecipe::Tiled(int width, int height) {
    tiled_ = true;
    Set(kRowsPerStrip, {});
    Set(kTileWidth, {static_cast<std::uint32_t>(width)});
    return Set(kTileLength, {static_cast<std::uint32_t>(height)});
}

Bytes TiffRecipe::File() const {
    TiffRecipe all = *this;
    std::vector<std::uint32_t> offsets;
    std::vector<std::uint32_t> counts;
    Bytes data;
    for (const Bytes& chunk : chunks) {
        offsets.push_back(
            stated_offset.value_or(static_cast<std::uint32_t>(kHeaderBytes + data.size())));
        counts.push_back(static_cast<std::uint32_t>(chunk.size()));
        data.insert(data.end(), chunk.begin(), chunk.end());
    }
    all.Set(tiled_ ? kTileOffsets : kStripOffsets, offsets);
    all.Set(tiled_ ? kTileByteCounts : kStripByteCounts, counts);
    if (data.size() % 2 != 0) data.push_back(0);  // directories begin at even offsets
    const std::size_t directory = kHeaderBytes + data.size();
    const std::size_t behind = directory + 2 + kEntryBytes * all.fields_.size() + 4;
    FieldWriter file;
    file.Text("II").U16(42).U32(static_cast<std::uint32_t>(directory)).Raw(data);
    file.U16(static_cast<std::uint32_t>(all.fields_.size()));
    Bytes rest;
    for (const auto& [tag, field] : all.fields_) {
        file.U16(static_cast<std::uint32_t>(tag)).U16(field.type).U32(field.count);
        Bytes bytes = field.bytes;
        if (bytes.size() > 4) {
            file.U32(static_cast<std::uint32_t>(behind + rest.size()));
            rest.insert(rest.end(), bytes.begin(), bytes.end());
        } else {
            bytes.resize(4);
            file.Raw(bytes);
        }
    }
    return file.U32(0).Raw(rest).Done();
}

TiffTags TagsOf(const Bytes& file) {
    const auto u16 = [&file](std::size_t at) {
        return file[at] | std::uint32_t{file[at + 1]} << 8;
    };
    TiffTags tags;
    std::size_t at = U32At(file, 4);
    for (std::uint32_t left = u16(at); left > 0; --left) {
        const std::size_t entry = at + 2;
        at += kEntryBytes;
        const std::uint32_t type = u16(entry + 2);
        const std::uint32_t count = U32At(file, entry + 4);
        const std::size_t width = type == kShort ? 2 : type == kLong ? 4 : 8;
        std::size_t from = width * count <= 4 ? entry + 8 : U32At(file, entry + 8);
        std::vector<std::uint32_t> values;
        for (std::uint32_t i = 0; i < count; ++i, from += width) {
            const std::uint32_t value = width == 2 ? u16(from) : U32At(file, from);
            values.push_back(width == 8 ? value / U32At(file, from + 4) : value);
        }
        tags.emplace_back(static_cast<int>(u16(entry)), values);
    }
    return tags;
}

std::vector<std::uint32_t> TagOf(const Bytes& file, int tag) {
    for (const auto& [number, values] : TagsOf(file)) {
        if (number == tag) return values;
    }
    return {};
}

LogFolder::LogFolder() : old_folder_(std::filesystem::current_path().string()) {
    std::filesystem::current_path(folder_.Path(""));
}

LogFolder::~LogFolder() {
    std::filesystem::current_path(old_folder_);
}

std::string LogFolder::NewText() {
    const std::string path = folder_.Path("RASTER.LOG");
    if (!std::filesystem::exists(path)) return {};
    const Bytes log = FileBytes(path);
    std::string text(log.begin() + static_cast<std::ptrdiff_t>(seen_), log.end());
    seen_ = log.size();
    return text;
}

}  // namespace rastrel_test
