#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "rastrel.h"

namespace rastrel_test {

using Bytes = std::vector<std::uint8_t>;
using Rgb = std::array<int, 3>;
/// Rows from the top, a character a pixel: "." is 0, then 1 to 9, a to z; "?" is anything else.
using Picture = std::vector<std::string>;

/// An image of the library's, ended with its owner.
class TestImage {
  public:
    TestImage() : handle_(Rastrel_New()) {}
    TestImage(int width, int height, int bits);
    TestImage(const TestImage&) = delete;
    TestImage& operator=(const TestImage&) = delete;
    ~TestImage() { Rastrel_Delete(handle_); }

    operator int() const { return handle_; }  // NOLINT: used like the handle that it is

    [[nodiscard]] int Width() const { return Rastrel_GetWidth(handle_); }
    [[nodiscard]] int Height() const { return Rastrel_GetHeight(handle_); }
    [[nodiscard]] int Depth() const { return Rastrel_GetDepth(handle_); }
    /// A pixel's colour, in stored rows; none where the library has none.
    [[nodiscard]] std::optional<Rgb> ColorAt(int x, int y) const;
    [[nodiscard]] std::vector<Rgb> Palette() const;
    [[nodiscard]] std::string Description() const;
    /// The indices as a picture.
    [[nodiscard]] Picture Indices() const;
    /// The stored rows' bytes, padding included, the bottom row first.
    [[nodiscard]] Bytes StoredBytes() const;
    /// Everything that callers can see of the pixels: size, depth, palette and rows without
    /// padding.
    [[nodiscard]] std::string Fingerprint() const;

  private:
    int handle_;
};

/// Sets a palette from colours.
int SetPalette(int handle, const std::vector<Rgb>& colors);
/// Fills an image's pixels with values that depend on place and seed, whatever the depth.
void FillWithPattern(const TestImage& image, unsigned seed = 1);
/// Draws a picture's indices into the image.
void Draw(const TestImage& image, const Picture& picture);

/// A folder that is empty at first and removed with all it holds.
class TestFolder {
  public:
    TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    ~TestFolder();

    [[nodiscard]] std::string Path(const std::string& name) const;
    [[nodiscard]] std::vector<std::string> Names() const;
    std::string Write(const std::string& name, const Bytes& bytes) const;

  private:
    std::string path_;
};

[[nodiscard]] Bytes FileBytes(const std::string& path);
[[nodiscard]] std::string FileText(const std::string& path);
/// A text as the bytes of a file.
[[nodiscard]] Bytes Text(const std::string& text);

/// Little-endian fields, one after the other.
class FieldWriter {
  public:
    FieldWriter& Text(const char* text);
    FieldWriter& U8(std::initializer_list<int> values);
    FieldWriter& U16(std::uint32_t value) { return Field(value, 2); }
    FieldWriter& U32(std::uint32_t value) { return Field(value, 4); }
    FieldWriter& I32(std::int32_t value) { return Field(static_cast<std::uint32_t>(value), 4); }
    FieldWriter& Raw(const Bytes& bytes);
    [[nodiscard]] const Bytes& Done() const { return bytes_; }

  private:
    FieldWriter& Field(std::uint32_t value, int count);
    Bytes bytes_;
};

[[nodiscard]] std::uint32_t U32At(const Bytes& bytes, std::size_t at);
void PutU32(Bytes& bytes, std::size_t at, std::uint32_t value);

/// The fields of a bitmap file, to be spoilt one at a time.
struct BmpRecipe {
    std::uint32_t header_size = 40;
    std::int32_t width = 3;
    std::int32_t height = 2;
    std::uint16_t planes = 1;
    std::uint16_t bits = 24;
    std::uint32_t compression = 0;
    std::uint32_t image_size = 0;
    std::uint32_t colors_used = 0;
    std::optional<std::uint32_t> pixel_offset;  ///< none: right behind all that stands before
    Bytes table;                                ///< behind the header
    Bytes pixels;

    [[nodiscard]] Bytes File() const;
};

}  // namespace rastrel_test
