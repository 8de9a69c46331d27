#include "support/images.h"

#include <atomic>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>

namespace rastrel_test {

namespace fs = std::filesystem;

TestImage::TestImage(int width, int height, int bits) : TestImage() {
    EXPECT_EQ(Rastrel_Create(handle_, width, height, bits), 1);
}

std::optional<Rgb> TestImage::ColorAt(int x, int y) const {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    if (Rastrel_GetRGB(handle_, x, y, &red, &green, &blue) != 1) return std::nullopt;
    return Rgb{red, green, blue};
}

std::vector<Rgb> TestImage::Palette() const {
    std::array<std::array<std::uint8_t, 256>, 3> channels = {};
    const int count = Rastrel_GetPalette(handle_, 256, channels[0].data(), channels[1].data(),
                                         channels[2].data());
    std::vector<Rgb> colors;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
        colors.push_back({channels[0][i], channels[1][i], channels[2][i]});
    return colors;
}

std::string TestImage::Description() const {
    std::array<char, 256> text = {};
    EXPECT_EQ(Rastrel_GetDescription(handle_, text.data(), static_cast<int>(text.size())), 1);
    return text.data();
}

Picture TestImage::Indices() const {
    static const std::string kDigits = ".123456789abcdefghijklmnopqrstuvwxyz";
    Picture picture;
    for (int y = Height() - 1; y >= 0; --y) {
        std::string row;
        for (int x = 0; x < Width(); ++x) {
            const auto index = static_cast<std::size_t>(Rastrel_GetIndex(handle_, x, y));
            row += index < kDigits.size() ? kDigits[index] : '?';
        }
        picture.push_back(row);
    }
    return picture;
}

Bytes TestImage::StoredBytes() const {
    const std::uint8_t* rows = Rastrel_GetRawImage(handle_);
    if (rows == nullptr) return {};
    return {rows, rows + static_cast<std::ptrdiff_t>(Rastrel_GetEffWidth(handle_)) * Height()};
}

std::string TestImage::Fingerprint() const {
    std::ostringstream text;
    text << Width() << 'x' << Height() << 'x' << Depth() << '\n';
    for (const Rgb& color : Palette())
        text << color[0] << ',' << color[1] << ',' << color[2] << ' ';
    const int row_bits = Width() * Depth();
    const Bytes stored = StoredBytes();
    for (int y = 0; y < Height(); ++y) {
        const int start = y * Rastrel_GetEffWidth(handle_);
        for (int i = 0; i < (row_bits + 7) / 8; ++i) {
            unsigned byte = stored[static_cast<std::size_t>(start + i)];
            const int unused = 8 * (i + 1) - row_bits;
            if (unused > 0) byte &= 0xffu << unused;
            text << ' ' << byte;
        }
    }
    return text.str();
}

int SetPalette(int handle, const std::vector<Rgb>& colors) {
    std::array<Bytes, 3> channels;
    for (const Rgb& color : colors) {
        for (std::size_t c = 0; c < 3; ++c)
            channels[c].push_back(static_cast<std::uint8_t>(color[c]));
    }
    return Rastrel_SetPalette(handle, static_cast<int>(colors.size()), channels[0].data(),
                              channels[1].data(), channels[2].data());
}

void FillWithPattern(const TestImage& image, unsigned seed) {
    std::mt19937 random(seed);
    std::uint8_t* rows = Rastrel_GetRawImage(image);
    ASSERT_NE(rows, nullptr);
    for (int y = 0; y < image.Height(); ++y) {
        const int row_bytes = (image.Width() * image.Depth() + 7) / 8;
        std::uint8_t* row = rows + static_cast<std::ptrdiff_t>(Rastrel_GetEffWidth(image)) * y;
        for (int i = 0; i < row_bytes; ++i)
            row[i] = static_cast<std::uint8_t>(random() >> 16);
    }
}

void Draw(const TestImage& image, const Picture& picture) {
    const int height = static_cast<int>(picture.size());
    for (int y = 0; y < height; ++y) {
        const std::string& row = picture[static_cast<std::size_t>(y)];
        for (int x = 0; x < static_cast<int>(row.size()); ++x) {
            const char c = row[static_cast<std::size_t>(x)];
            const int index = c == '.' ? 0 : c <= '9' ? c - '0' : c - 'a' + 10;
            ASSERT_EQ(Rastrel_SetIndex(image, x, height - 1 - y, index), 1);
        }
    }
}

TestFolder::TestFolder() {
    static std::atomic<unsigned> serial{0};
    std::random_device random;
    path_ = (fs::temp_directory_path() /
             ("rastrel-test-" + std::to_string(random()) + "-" + std::to_string(serial++)))
                .string();
    fs::create_directories(path_);
}

TestFolder::~TestFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::string TestFolder::Path(const std::string& name) const {
    return path_ + "/" + name;
}

std::vector<std::string> TestFolder::Names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(path_))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string TestFolder::Write(const std::string& name, const Bytes& bytes) const {
    std::ofstream file(Path(name), std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    EXPECT_TRUE(file.good()) << name;
    return Path(name);
}

Bytes FileBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.good()) << path;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string FileText(const std::string& path) {
    const Bytes bytes = FileBytes(path);
    return {bytes.begin(), bytes.end()};
}

Bytes Text(const std::string& text) {
    return {text.begin(), text.end()};
}

FieldWriter& FieldWriter::Text(const char* text) {
    bytes_.insert(bytes_.end(), text, text + std::strlen(text));
    return *this;
}

FieldWriter& FieldWriter::U8(std::initializer_list<int> values) {
    for (const int value : values)
        bytes_.push_back(static_cast<std::uint8_t>(value));
    return *this;
}

FieldWriter& FieldWriter::Raw(const Bytes& bytes) {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    return *this;
}

FieldWriter& FieldWriter::Field(std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i)
        bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    return *this;
}

std::uint32_t U32At(const Bytes& bytes, std::size_t at) {
    if (at + 4 > bytes.size()) return 0xdeadbeef;
    std::uint32_t value = 0;
    for (std::size_t i = 4; i-- > 0;)
        value = value << 8 | bytes[at + i];
    return value;
}

void PutU32(Bytes& bytes, std::size_t at, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i)
        bytes.at(at + i) = static_cast<std::uint8_t>(value >> (8 * i));
}

Bytes BmpRecipe::File() const {
    FieldWriter out;
    const auto before_pixels = static_cast<std::uint32_t>(14 + header_size + table.size());
    out.Text("BM")
        .U32(static_cast<std::uint32_t>(before_pixels + pixels.size()))
        .U32(0)
        .U32(pixel_offset.value_or(before_pixels));
    if (header_size == 12) {
        out.U32(12).U16(static_cast<std::uint32_t>(width)).U16(static_cast<std::uint32_t>(height));
        out.U16(planes).U16(bits);
    } else {
        FieldWriter header;
        header.U32(header_size).I32(width).I32(height).U16(planes).U16(bits);
        header.U32(compression).U32(image_size).U32(2835).U32(2835).U32(colors_used).U32(0);
        Bytes fields = header.Done();
        fields.resize(header_size);
        out.Raw(fields);
    }
    return out.Raw(table).Raw(pixels).Done();
}

}  // namespace rastrel_test
