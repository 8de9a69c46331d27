// What the interface does not show, or cannot be made to show.

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "api/handle_table.h"
#include "core/byte_fields.h"
#include "core/byte_source.h"
#include "core/checked_size.h"
#include "core/dib_palette.h"
#include "core/ecw_settings.h"
#include "core/format_table.h"
#include "core/geometry.h"
#include "formats/bmp/bmp_image.h"
#include "formats/dib/dib_file.h"
#include "formats/dib/lzo_pixels.h"
#include "formats/qvi/qvi_image.h"

namespace rastrel {
namespace {

TEST(CheckedSize, TellsOfEveryResultThatIsNoSize) {
    const std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
    const auto product_is_size = [](auto a, auto b, std::uint64_t most) {
        CheckedSize size(most);
        const std::uint64_t result = size.Mul(a, b);
        return size.Ok() && result == static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b);
    };
    EXPECT_TRUE(product_is_size(3, 5, 15));
    EXPECT_FALSE(product_is_size(3, 5, 14));
    EXPECT_FALSE(product_is_size(-3, 5, kMost));
    EXPECT_FALSE(product_is_size(-3, -5, 14));
    EXPECT_FALSE(product_is_size(kMost, 2, kMost));
    EXPECT_TRUE(product_is_size(kMost, 1, kMost));

    CheckedSize sticky(100);
    EXPECT_EQ(sticky.Mul(20, 20), 0u);
    EXPECT_EQ(sticky.Add(1, 1), 0u) << "once wrong, always wrong";
    EXPECT_FALSE(sticky.Ok());
}

TEST(ByteReader, YieldsZerosPastTheEndAndRemembers) {
    const std::array<std::uint8_t, 7> bytes = {0x01, 0x02, 0xff, 0xff, 0xff, 0xff, 0x09};
    ByteReader in(bytes);
    EXPECT_EQ(in.U16(), 0x0201);
    EXPECT_EQ(in.I32(), -1);
    EXPECT_TRUE(in.Ok());
    EXPECT_EQ(in.U16(), 0) << "one byte is no field of two";
    EXPECT_FALSE(in.Ok());
    EXPECT_EQ(in.U32(), 0u);
}

TEST(Geometry, ClipsWithoutOverflow) {
    const int kMost = std::numeric_limits<int>::max();
    const int kLeast = std::numeric_limits<int>::min();
    const Size size{10, 20};
    const Rect whole = Clip({kLeast, kLeast, kMost, kMost}, size);
    EXPECT_TRUE(whole.IsEmpty());
    const Rect part = Clip({-1, 5, kMost, kMost}, size);
    EXPECT_EQ(part.x, 0);
    EXPECT_EQ(part.y, 5);
    EXPECT_EQ(part.width, 10);
    EXPECT_EQ(part.height, 15);
    EXPECT_TRUE(Clip({kMost, 0, kMost, 1}, size).IsEmpty());
    EXPECT_TRUE(Clip({0, 0, kLeast, kLeast}, size).IsEmpty());
}

TEST(FormatTable, HasOneRowForEachTypeAndExtension) {
    std::array<int, 16> rows = {};
    for (const FormatRow& row : FormatTable()) {
        ASSERT_TRUE(row.type >= 0 && row.type < 16);
        ++rows[static_cast<std::size_t>(row.type)];
        for (const std::string_view extension : row.extensions) {
            if (!extension.empty()) {
                EXPECT_EQ(ImageTypeFromName("x." + std::string(extension)), row.type);
            }
        }
    }
    for (const int count : rows)
        EXPECT_EQ(count, 1);
    EXPECT_EQ(FindFormat(-1), nullptr);
    EXPECT_EQ(FindFormat(16), nullptr);
}

TEST(HandleTable, EndsItsImagesInTheOrderOfTheirHandles) {
    std::string ended;
    {
        HandleTable table;
        for (const char name : {'a', 'b', 'c', 'd'}) {
            const auto tell = [name, &ended](ImageObject* image) {
                ended += name;
                delete image;  // NOLINT: a deleter
            };
            static_cast<void>(table.Add(HandleTable::ImagePointer(new ImageObject, tell)));
        }
        EXPECT_NE(table.Remove(1), nullptr);
        EXPECT_EQ(ended, "b");
        EXPECT_EQ(table.Fetch(1), nullptr);
    }
    EXPECT_EQ(ended, "bacd");
}

TEST(HandleTable, FreesOnlyWhatStillHoldsTheImage) {
    HandleTable table;
    const auto first = std::make_shared<ImageObject>();
    const auto second = std::make_shared<ImageObject>();
    const int handle = table.Add(first);
    EXPECT_EQ(table.Replace(handle, second), first);
    table.RemoveIfHolding(handle, first);
    EXPECT_EQ(table.Fetch(handle), second);
    table.RemoveIfHolding(handle, second);
    EXPECT_EQ(table.Fetch(handle), nullptr);
    EXPECT_EQ(table.Replace(handle, first), nullptr) << "a free handle is not filled";
}

TEST(EcwSettings, StartAsDocumentedAndNeverLackACounter) {
    EcwSettings settings;
    EXPECT_NE(settings.display_counter.load(), nullptr);
    EXPECT_EQ(settings.main_frame.load(), nullptr);
    EXPECT_EQ(settings.pumps_messages.load(), 1);
    const int counter = 3;
    settings.SetDisplayCounter(&counter);
    EXPECT_EQ(settings.display_counter.load(), &counter);
    settings.SetDisplayCounter(nullptr);
    EXPECT_NE(settings.display_counter.load(), nullptr);
}

TEST(DibPalette, CountsColoursIn16BitsWithSign) {
    struct Case {
        std::uint32_t stated;
        std::size_t entries;
    };
    for (const Case& c : {Case{1, 1},
                          {256, 256},
                          {300, 256},
                          {0x8000, 0},
                          {0x10000, 0},
                          {0x10002, 2},
                          {0xffff, 0}}) {
        DibHeader header;
        header.width = header.height = 1;
        header.bit_count = 8;
        header.colors_used = c.stated;
        const DibBlock block = DibBlock::ForHeader(header);
        ASSERT_TRUE(block);
        const auto palette = CreateDibPalette(block);
        EXPECT_EQ(palette ? palette->Entries().size() : 0, c.entries) << c.stated;
    }
}

TEST(DibPalette, RefillsTablesAsTheModeSays) {
    EXPECT_FALSE(DibColorTableFromPalette(DibBlock(), nullptr, ColorTableMode::kColors));

    const DibBlock block = DibBlock::Create(1, 1, 4);
    EXPECT_TRUE(DibColorTableFromPalette(block, nullptr, ColorTableMode::kIndices));
    const auto table = block.ColorTable();
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_EQ(table[2 * i], i);
        EXPECT_EQ(table[2 * i + 1], 0);
    }
    EXPECT_EQ(table[34], 128) << "behind the indices the table is as created";

    DibHeader masks;
    masks.width = masks.height = 1;
    masks.bit_count = 16;
    masks.compression = kDibBitFields;
    masks.colors_used = 3;
    const DibBlock with_masks = DibBlock::ForHeader(masks);
    with_masks.ColorTable()[0] = 0x77;
    EXPECT_TRUE(DibColorTableFromPalette(with_masks, nullptr, ColorTableMode::kColors));
    EXPECT_EQ(with_masks.ColorTable()[0], 0x77) << "three colours of a bit-field header are masks";
}

/// A sink that fails after some bytes.
class ShortSink final : public ByteSink {
  public:
    explicit ShortSink(std::size_t room) : room_(room) {}
    bool Write(std::span<const std::uint8_t> bytes) override {
        if (bytes.size() > room_) return false;
        room_ -= bytes.size();
        return true;
    }
    bool Commit() override { return true; }

  private:
    std::size_t room_;
};

TEST(DibFile, WritesOnlyHeadersOf40BytesAndToSinksThatTakeAll) {
    const DibBlock block = DibBlock::Create(5, 5, 8);
    for (const PixelCoding coding : {PixelCoding::kPlain, PixelCoding::kLzo}) {
        MemorySink whole;
        ASSERT_TRUE(WriteDibFile(whole, block, coding));
        for (std::size_t room = 0; room < whole.Bytes().size(); ++room) {
            ShortSink sink(room);
            EXPECT_FALSE(WriteDibFile(sink, block, coding)) << room;
        }
        MemorySink sink;
        EXPECT_FALSE(WriteDibFile(sink, DibBlock(), coding));
        DibHeader header = block.Header();
        header.size = 108;
        block.SetHeader(header);
        EXPECT_FALSE(WriteDibFile(sink, block, coding));
        EXPECT_TRUE(sink.Bytes().empty());
        header.size = 40;
        block.SetHeader(header);
    }
}

TEST(DibFile, NeverWritesBeyondABlockWhoseHeaderWasChanged) {
    const DibBlock block = DibBlock::Create(5, 5, 8);
    for (const std::uint32_t colors : {0xffffffffu, 0x3fffffffu, 5000u}) {
        DibHeader header = block.Header();
        header.colors_used = colors;
        block.SetHeader(header);
        MemorySink sink;
        EXPECT_FALSE(WriteDibFile(sink, block, PixelCoding::kPlain)) << colors;
    }
    DibHeader header = block.Header();
    header.colors_used = 256;
    header.width = 5000;
    block.SetHeader(header);
    MemorySink sink;
    EXPECT_FALSE(WriteDibFile(sink, block, PixelCoding::kPlain));
}

TEST(DibFile, ReadsTheSameFromMemoryAndFile) {
    QviImage image;
    ASSERT_TRUE(image.Create(20, 10, 8, -1));
    image.SetIndex(3, 3, 77);
    MemorySink sink;
    ASSERT_TRUE(image.WriteTo(sink));
    // Not at the start of what there is: positions count from where reading starts.
    std::vector<std::uint8_t> bytes(13 + sink.Bytes().size(), 0xee);
    std::copy(sink.Bytes().begin(), sink.Bytes().end(), bytes.begin() + 13);
    MemorySource source(bytes);
    source.Seek(13);
    QviImage back;
    ASSERT_TRUE(back.ReadFrom(source));
    EXPECT_EQ(back.GetIndex(3, 3), 77);
}

TEST(LzoPixels, GrowIncompressibleBytesWithinTheirBuffer) {
    std::vector<std::uint8_t> noise(100000);
    std::uint32_t state = 1;
    for (std::uint8_t& byte : noise) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<std::uint8_t>(state >> 24);
    }
    for (const std::size_t size : {0u, 1u, 3u, 4u, 100u, 100000u}) {
        const LzoPixels compressed = CompressLzo(std::span(noise).first(size));
        ASSERT_GT(compressed.size, 0u) << size;
        std::vector<std::uint8_t> back(size);
        DecompressLzo(compressed.Bytes(), back);
        EXPECT_TRUE(std::equal(back.begin(), back.end(), noise.begin())) << size;
    }
}

TEST(RasterImage, PixelsOf32BitsHaveFourParts) {
    RasterImage raster;
    ASSERT_TRUE(raster.Create(2, 2, 32, -1));
    EXPECT_EQ(raster.ColorType(), kColorTypeColor);
    EXPECT_TRUE(raster.SetPixel32(1, 1, {1, 2, 3, 4}));
    const auto pixel = raster.GetPixel32(1, 1);
    ASSERT_TRUE(pixel);
    EXPECT_EQ(pixel->alpha, 4);
    EXPECT_EQ(pixel->red, 1);
    EXPECT_FALSE(raster.GetPixel32(2, 0));
    EXPECT_FALSE(raster.SetPixel32(0, -1, {}));
    ASSERT_TRUE(raster.Create(2, 2, 24, -1));
    EXPECT_FALSE(raster.GetPixel32(0, 0));
    EXPECT_FALSE(raster.SetPixel32(0, 0, {}));
}

TEST(RasterImage, TakeOverMovesTheImageAndLeavesNothing) {
    BmpImage source;
    ASSERT_TRUE(source.Create(3, 2, 8, kColorTypePalettised));
    source.SetPalette(Palette::Grey());
    source.SetTransparentIndex(7);
    source.SetQuality(50);
    const std::uint8_t* pixels = source.Pixels();
    QviImage target;
    ASSERT_TRUE(target.Create(9, 9, 24, -1));
    target.TakeOver(source);
    EXPECT_EQ(target.Pixels(), pixels) << "no pixel is copied";
    EXPECT_EQ(target.Width(), 3);
    EXPECT_EQ(target.ColorType(), kColorTypePalettised);
    EXPECT_EQ(target.TransparentIndex(), 7);
    EXPECT_EQ(target.Quality(), 50);
    ASSERT_NE(target.GetPalette(), nullptr);
    EXPECT_FALSE(source.HasBlock());
    EXPECT_EQ(source.Pixels(), nullptr);
    EXPECT_EQ(source.GetPalette(), nullptr);
    EXPECT_EQ(source.GetIndex(0, 0), -1);
}

}  // namespace
}  // namespace rastrel
