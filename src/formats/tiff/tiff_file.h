#pragma once

#include <tiffio.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "formats/tiff/tiff_messages.h"
#include "platform/file.h"

namespace rastrel {

struct TiffCloser {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffHandle = std::unique_ptr<TIFF, TiffCloser>;

/// A TIFF file opened for reading at its first image. libtiff reads through our own file, never by
/// mapping it into memory: a mapped file that somebody shortens would end the process.
class TiffInput {
  public:
    /// Null, with a word in the log, when the file cannot be opened or is no TIFF.
    [[nodiscard]] static std::unique_ptr<TiffInput> Open(const std::string& name);

    [[nodiscard]] TIFF* Tiff() const { return tiff_.get(); }
    [[nodiscard]] std::uint64_t FileSize() const { return file_->Size(); }
    [[nodiscard]] TiffMessages& Messages() { return messages_; }
    /// Reads bytes of the file as they are; false when there are not as many.
    [[nodiscard]] bool ReadAt(std::uint64_t offset, std::span<std::uint8_t> out);

    /// A field that has a value or a default.
    template <class Value>
    [[nodiscard]] Value Field(std::uint32_t tag) const {
        Value value = 0;
        TIFFGetFieldDefaulted(tiff_.get(), tag, &value);
        return value;
    }

  private:
    TiffInput() = default;

    // In this order: libtiff, which ends first, uses the two others until then.
    TiffMessages messages_;
    std::unique_ptr<InputFile> file_;
    TiffHandle tiff_;
};

/// A TIFF file being written.
class TiffOutput {
  public:
    enum class Place {
        kBeside,  ///< a new file that takes the target's name when it is complete
        kItself,  ///< the target
    };
    /// Null, with a word in the log, when the file cannot be created.
    [[nodiscard]] static std::unique_ptr<TiffOutput> Create(const std::string& name, Place place);

    [[nodiscard]] TIFF* Tiff() const { return tiff_.get(); }
    [[nodiscard]] TiffMessages& Messages() { return messages_; }
    /// Writes the directory and closes; true when every byte of the file has been taken.
    [[nodiscard]] bool Commit();

  private:
    TiffOutput() = default;
    static tmsize_t WriteBytes(thandle_t self, void* bytes, tmsize_t count);

    TiffMessages messages_;
    std::unique_ptr<ReplacingFile> file_;
    bool all_written_ = true;
    TiffHandle tiff_;
};

}  // namespace rastrel
