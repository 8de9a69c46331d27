// A type, one byte less one, and then a stream: read through the exported interface into an image
// that holds something already, written in every form of stream, and read again.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "rastrel.h"

namespace {

constexpr std::array<int, 4> kStreamTypes = {RASTREL_TYPE_BMP, RASTREL_TYPE_JPEG, RASTREL_TYPE_PNG,
                                             RASTREL_TYPE_QVI};

void Require(bool holds) {
    if (!holds) std::abort();
}

class Image {
  public:
    Image() : handle_(Rastrel_New()) {}
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;
    ~Image() { Rastrel_Delete(handle_); }
    [[nodiscard]] int Handle() const { return handle_; }

  private:
    int handle_;
};

/// What a failed call must leave as it was.
struct State {
    int type = 0;
    int width = 0;
    int height = 0;
    int depth = 0;
    std::vector<std::uint8_t> rows;

    friend bool operator==(const State&, const State&) = default;
};

State StateOf(const Image& image) {
    const int handle = image.Handle();
    State state = {Rastrel_GetImageType(handle),
                   Rastrel_GetWidth(handle),
                   Rastrel_GetHeight(handle),
                   Rastrel_GetDepth(handle),
                   {}};
    const std::uint8_t* rows = Rastrel_GetRawImage(handle);
    Require(rows != nullptr && state.width > 0 && state.height > 0);
    const auto row_bytes = static_cast<std::size_t>(Rastrel_GetEffWidth(handle));
    state.rows.assign(rows, rows + row_bytes * static_cast<std::size_t>(state.height));
    return state;
}

/// Whether a bitmap's rows follow its colour table: the size of one of more than 65,535 bytes is
/// cut to 16 bits, and a plain file's rows are then somewhere in the table.
bool HasSoundTable(const std::vector<std::uint8_t>& bitmap) {
    constexpr std::size_t kColorsUsed = 46;
    std::uint32_t colors = 0;
    for (std::size_t i = 0; i < 4; ++i)
        colors |= std::uint32_t{bitmap[kColorsUsed + i]} << (8 * i);
    return colors < 65536 / 4;
}

/// Writes the image as one type and reads it again: in a buffer that is just large enough, and not
/// in one that is a byte shorter.
void ThereAndBack(const Image& image, const State& state, int type) {
    int needed = 0;
    if (Rastrel_Image2Stream(image.Handle(), nullptr, 0, type, &needed) != 0) std::abort();
    // Not every form takes every depth, nor run-length coded pixels.
    if (needed == 0) return;
    std::vector<std::uint8_t> stream(static_cast<std::size_t>(needed));
    int size = 0;
    Require(Rastrel_Image2Stream(image.Handle(), stream.data(), needed - 1, type, &size) == 0);
    Require(size == needed);
    Require(Rastrel_Image2Stream(image.Handle(), stream.data(), needed, type, &size) == 1);
    Require(size == needed && StateOf(image) == state);
    if (type == RASTREL_TYPE_QVI) Require(needed <= Rastrel_StreamMaxSize(image.Handle()));
    const Image again;
    Require(Rastrel_Stream2Image(again.Handle(), stream.data(), size, type) == 1);
    const State back = StateOf(again);
    Require(back.type == type && back.width == state.width && back.height == state.height);
    if (type == RASTREL_TYPE_QVI || (type == RASTREL_TYPE_BMP && HasSoundTable(stream)))
        Require(back.depth == state.depth && back.rows == state.rows);
    if (Rastrel_Stream2Image(again.Handle(), stream.data(), size, RASTREL_TYPE_NONE) != 1)
        std::abort();
    // A bitmap's first pixels may pass for the lengths that a QVI stream has there.
    const int shown = Rastrel_GetImageType(again.Handle());
    Require(shown == type || (type == RASTREL_TYPE_BMP && shown == RASTREL_TYPE_QVI));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const int type = data[0] - 1;
    const Image image;
    constexpr std::array<std::uint8_t, 6> kPixels = {1, 2, 3, 4, 5, 6};
    Require(Rastrel_CreateFromByte(image.Handle(), kPixels.data(), 3, 2) == 1);
    const State before = StateOf(image);
    if (Rastrel_Stream2Image(image.Handle(), data + 1, static_cast<int>(size - 1), type) != 1) {
        Require(StateOf(image) == before);
        return 0;
    }
    // Blocks much larger than their files are zeros: they would only slow the search down.
    constexpr std::int64_t kMostUsedBytes = std::int64_t{4} << 20;
    if (std::int64_t{Rastrel_GetEffWidth(image.Handle())} * Rastrel_GetHeight(image.Handle()) >
        kMostUsedBytes)
        return 0;
    const State state = StateOf(image);
    Require(std::find(kStreamTypes.begin(), kStreamTypes.end(), state.type) != kStreamTypes.end());
    Require(type == RASTREL_TYPE_NONE || state.type == type);
    for (const int written : kStreamTypes)
        ThereAndBack(image, state, written);
    return 0;
}
