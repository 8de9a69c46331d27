#include "formats/other/other_image.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <optional>
#include <string_view>

#include "core/checked_size.h"
#include "core/pixel_rows.h"
#include "formats/other/decoder.h"
#include "formats/plausibility.h"

namespace rastrel {

namespace {

/// What run-length coded data of these formats can expand to, times their length: two bytes for 128
/// of one of up to four channels.
constexpr std::uint64_t kMostExpansion = 256;

/// The decoder's way to its bytes.
struct Stream {
    static int Read(void* user, char* data, int size) {
        const auto count = static_cast<std::size_t>(size);
        return static_cast<int>(From(user).Read({reinterpret_cast<std::uint8_t*>(data), count}));
    }
    static void Skip(void* user, int count) {
        ByteSource& source = From(user);
        // Backwards, too, over what was read ahead.
        const auto position = static_cast<std::int64_t>(source.Position()) + count;
        source.Seek(static_cast<std::uint64_t>(std::max<std::int64_t>(position, 0)));
    }
    static int IsAtEnd(void* user) {
        const ByteSource& source = From(user);
        return source.BytesFrom(source.Position()) == 0 ? 1 : 0;
    }
    static ByteSource& From(void* user) { return *static_cast<ByteSource*>(user); }
};
constexpr stbi_io_callbacks kStream = {Stream::Read, Stream::Skip, Stream::IsAtEnd};

struct Layout {
    int width = 0;
    int height = 0;
    int channels = 0;  ///< grey, grey and alpha, RGB, RGB and alpha
};

int BitsOf(const Layout& layout) {
    constexpr std::array kBits = {8, 32, 24, 32};
    return kBits[static_cast<std::size_t>(layout.channels - 1)];
}

/// The decoder gives every Photoshop file four channels, whether or not it has the last.
bool HasThreeChannels(ByteSource& source) {
    constexpr std::string_view kPhotoshop = "8BPS";
    std::array<std::uint8_t, 14> head = {};
    source.Seek(0);
    if (source.Read(head) < head.size()) return false;
    return std::equal(kPhotoshop.begin(), kPhotoshop.end(), head.begin()) && head[12] == 0 &&
           head[13] == 3;
}

/// The decoder works on Softimage files in four channels. Asked for less it converts them even when
/// it could not decode the file, and has none.
bool IsSoftimage(ByteSource& source) {
    constexpr std::array<std::uint8_t, 4> kMagic = {0x53, 0x80, 0xf6, 0x34};
    std::array<std::uint8_t, 4> head = {};
    source.Seek(0);
    return source.Read(head) == head.size() && head == kMagic;
}

/// The greatest sample that a binary PGM or PPM file states; 0 for other files.
int GreatestPnmSample(ByteSource& source) {
    std::array<char, 256> head = {};
    source.Seek(0);
    const std::size_t got =
        source.Read({reinterpret_cast<std::uint8_t*>(head.data()), head.size()});
    std::string_view text(head.data(), got);
    if (!text.starts_with("P5") && !text.starts_with("P6")) return 0;
    text.remove_prefix(2);
    int value = 0;
    // Width, height and this one, with blanks and comments between.
    for (int i = 0; i < 3; ++i) {
        while (!text.empty() && (text[0] < '0' || text[0] > '9'))
            text.remove_prefix(text[0] == '#' ? std::min(text.find('\n'), text.size()) : 1);
        value = 0;
        const auto parsed = std::from_chars(text.data(), text.data() + text.size(), value);
        text.remove_prefix(static_cast<std::size_t>(parsed.ptr - text.data()));
    }
    return value;
}

/// The decoder takes samples of every range as bytes of 0 to 255, and those of 16 bits in the wrong
/// byte order.
bool HasOtherSamplesThanBytes(ByteSource& source) {
    const int greatest = GreatestPnmSample(source);
    return greatest != 0 && greatest != 255;
}

/// None for files of other formats, and for more pixels than the file can hold.
std::optional<Layout> ReadLayout(ByteSource& source) {
    Layout layout;
    if (HasOtherSamplesThanBytes(source)) return std::nullopt;
    const bool three_channels = HasThreeChannels(source);
    source.Seek(0);
    if (stbi_info_from_callbacks(&kStream, &source, &layout.width, &layout.height,
                                 &layout.channels) != 1)
        return std::nullopt;
    if (three_channels) layout.channels = 3;
    if (layout.width < 1 || layout.height < 1 || layout.channels < 1 || layout.channels > 4)
        return std::nullopt;
    CheckedSize size(kMostBlockBytes);
    const std::uint64_t bytes = size.Mul(size.Mul(layout.width, layout.height), layout.channels);
    if (!size.Ok() || bytes > source.Size() * kMostExpansion + kMostMissingBytes)
        return std::nullopt;
    return layout;
}

/// A row of decoded samples as stored pixels; there may be a fourth channel that the layout lacks.
void StoreRow(const std::uint8_t* samples, int sample_channels, const Layout& layout,
              std::span<std::uint8_t> row) {
    const auto width = static_cast<std::size_t>(layout.width);
    if (layout.channels == 1) {
        std::copy_n(samples, width, row.begin());
    } else if (layout.channels == 3 && sample_channels == 4) {
        Bgr24FromRgba32({samples, 4 * width}, row.first(3 * width));
    } else if (layout.channels == 3) {
        SwapRedBlue24({samples, 3 * width}, row.first(3 * width));
    } else {
        const std::size_t colors = layout.channels == 4 ? 3 : 1;
        std::uint8_t* out = row.data();
        for (std::size_t x = 0; x < width; ++x, samples += colors + 1, out += 4) {
            std::reverse_copy(samples, samples + colors, out);
            if (colors == 1) std::fill_n(out, 3, samples[0]);
            out[3] = samples[colors];
        }
    }
}

}  // namespace

bool OtherImage::ReadInfoFrom(ByteSource& source, ImageInfo& info) const {
    const auto layout = ReadLayout(source);
    if (!layout) return false;
    info = {layout->width, layout->height, BitsOf(*layout)};
    return true;
}

bool OtherImage::ReadFrom(ByteSource& source) {
    const auto layout = ReadLayout(source);
    if (!layout) return false;
    Layout decoded;
    const int sample_channels = IsSoftimage(source) ? 4 : layout->channels;
    source.Seek(0);
    const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> samples(
        stbi_load_from_callbacks(&kStream, &source, &decoded.width, &decoded.height,
                                 &decoded.channels, sample_channels),
        &stbi_image_free);
    if (!samples || decoded.width != layout->width || decoded.height != layout->height)
        return false;
    RasterImage image;
    if (!image.Create(layout->width, layout->height, BitsOf(*layout), -1)) return false;
    const std::size_t row_bytes =
        static_cast<std::size_t>(layout->width) * static_cast<std::size_t>(sample_channels);
    for (int y = 0; y < layout->height; ++y)
        StoreRow(samples.get() + static_cast<std::size_t>(y) * row_bytes, sample_channels, *layout,
                 image.PictureRow(y));
    if (layout->channels == 1) image.SetPalette(Palette::Grey());
    TakeOver(image);
    return true;
}

bool OtherImage::WriteTo(ByteSink& /*sink*/) {
    return false;
}

bool OtherImage::Describe(FormatTexts& texts) const {
    texts = {"Other Format, " + std::to_string(Bits()) + " bit.", ""};
    return true;
}

}  // namespace rastrel
