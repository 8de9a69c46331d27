#include "imaging/streams.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "formats/dib/dib_file.h"
#include "formats/stream_image.h"

namespace rastrel {

namespace {

constexpr int kQviImageType = 5;

/// A raster of a type's class, if streams of that type are exchanged.
std::unique_ptr<StreamImage> MakeStreamImage(int type) {
    constexpr std::array kTypes = {0, 1, 3, kQviImageType};
    if (std::find(kTypes.begin(), kTypes.end(), type) == kTypes.end()) return nullptr;
    const FormatRow* format = FindFormat(type);
    std::unique_ptr<RasterImage> raster = format->make != nullptr ? format->make() : nullptr;
    auto* stream = dynamic_cast<StreamImage*>(raster.get());
    if (stream != nullptr) static_cast<void>(raster.release());
    return std::unique_ptr<StreamImage>(stream);
}

class BufferSink final : public ByteSink {
  public:
    explicit BufferSink(std::span<std::uint8_t> buffer) : buffer_(buffer) {}
    [[nodiscard]] bool Write(std::span<const std::uint8_t> bytes) override {
        if (size_ < buffer_.size()) {
            const auto at = static_cast<std::size_t>(size_);
            std::copy_n(bytes.begin(), std::min(bytes.size(), buffer_.size() - at),
                        buffer_.begin() + static_cast<std::ptrdiff_t>(at));
        }
        size_ += bytes.size();
        return true;
    }
    [[nodiscard]] bool Commit() override { return true; }
    [[nodiscard]] std::uint64_t Size() const { return size_; }

  private:
    std::span<std::uint8_t> buffer_;
    std::uint64_t size_ = 0;
};

/// Lends a raster's image to a raster of another class, for as long as it stands.
class Lent {
  public:
    Lent(RasterImage& owner, RasterImage& borrower) : owner_(owner), borrower_(borrower) {
        borrower_.TakeOver(owner_);
    }
    Lent(const Lent&) = delete;
    Lent& operator=(const Lent&) = delete;
    ~Lent() { owner_.TakeOver(borrower_); }

  private:
    RasterImage& owner_;
    RasterImage& borrower_;
};

}  // namespace

std::uint64_t MostQviStreamBytes(const ImageObject& image) {
    return image.IsValid() ? MostLzoFileBytes(image.Raster()->Block()) : 0;
}

StreamResult WriteStream(ImageObject& image, int type, std::span<std::uint8_t> buffer) {
    const auto writer = MakeStreamImage(type == kNoImageType ? kQviImageType : type);
    if (!writer || !image.IsValid()) return {};
    BufferSink sink(buffer);
    const Lent lent(*image.Raster(), *writer);
    if (!writer->WriteTo(sink)) return {};
    return {sink.Size() <= buffer.size(), sink.Size()};
}

bool ReadStream(ImageObject& image, int type, std::span<const std::uint8_t> bytes) {
    MemorySource source(bytes);
    if (type == kNoImageType) type = ImageTypeFromContent(source);
    auto reader = MakeStreamImage(type);
    source.Seek(0);
    if (!reader || !reader->ReadFrom(source)) return false;
    image.Adopt(type, std::move(reader));
    return true;
}

}  // namespace rastrel
