#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace rastrel {

/// Whether a name stands for something, be it a file, a folder or a device.
[[nodiscard]] bool FileExists(const std::string& path);

/// Removes a file; true also when there was none.
[[nodiscard]] bool RemoveFile(const std::string& path);

/// A regular file opened for reading. Others may read and write it meanwhile.
class InputFile {
  public:
    /// Null when there is no such file, it is not a regular one, or it may not be read.
    static std::unique_ptr<InputFile> Open(const std::string& path);
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    ~InputFile();

    /// Reads from the current position on; less than asked only at the end or on an error.
    [[nodiscard]] std::size_t Read(std::span<std::uint8_t> out);
    /// Any position from 0 up; past the end nothing can be read.
    void Seek(std::uint64_t position) { position_ = position; }
    [[nodiscard]] std::uint64_t Position() const { return position_; }
    /// The length in bytes when it was opened.
    [[nodiscard]] std::uint64_t Size() const { return size_; }

  private:
    struct Handle;
    InputFile(std::unique_ptr<Handle> handle, std::uint64_t size);

    std::unique_ptr<Handle> handle_;
    std::uint64_t position_ = 0;
    std::uint64_t size_ = 0;
};

/// A file being replaced: what is written goes to a new file beside the target, which takes the
/// target's name when everything is there. Until then, and for ever if it never comes to that, the
/// old file stays as it is. A target that is no regular file (a device) is written directly.
class ReplacingFile {
  public:
    /// Null when the file cannot be created there.
    static std::unique_ptr<ReplacingFile> Create(const std::string& path);
    /// The same for a file that is written in its own place: the old content is gone at once, and
    /// what is written stays, committed or not.
    static std::unique_ptr<ReplacingFile> CreateInPlace(const std::string& path);
    ReplacingFile(const ReplacingFile&) = delete;
    ReplacingFile& operator=(const ReplacingFile&) = delete;
    /// Without a Commit what was written is removed.
    ~ReplacingFile();

    /// Writes at the current position, which is 0 at first, and moves it.
    [[nodiscard]] bool Write(std::span<const std::uint8_t> bytes);
    /// False where the target has no positions, as a pipe.
    [[nodiscard]] bool Seek(std::uint64_t position);
    [[nodiscard]] std::uint64_t Position() const { return position_; }
    /// The end of what was written.
    [[nodiscard]] std::uint64_t Size() const { return size_; }
    /// Closes the file and gives it its name. Nothing can be written afterwards.
    [[nodiscard]] bool Commit();

  private:
    struct Handle;
    explicit ReplacingFile(std::unique_ptr<Handle> handle);
    void MovePosition(std::uint64_t bytes) {
        position_ += bytes;
        size_ = std::max(size_, position_);
    }

    std::unique_ptr<Handle> handle_;
    std::uint64_t position_ = 0;
    std::uint64_t size_ = 0;
};

/// An existing regular file whose bytes are changed where they stand.
class UpdatedFile {
  public:
    enum class Access { kWrite, kReadAndWrite };

    /// Null when there is no such file, it is not a regular one, or the access is not permitted.
    static std::unique_ptr<UpdatedFile> Open(const std::string& path, Access access);
    UpdatedFile(const UpdatedFile&) = delete;
    UpdatedFile& operator=(const UpdatedFile&) = delete;
    ~UpdatedFile();

    /// The length in bytes when it was opened.
    [[nodiscard]] std::uint64_t Size() const { return size_; }
    /// Less than asked only at the end or on an error.
    [[nodiscard]] std::size_t ReadAt(std::uint64_t position, std::span<std::uint8_t> out);
    [[nodiscard]] bool WriteAt(std::uint64_t position, std::span<const std::uint8_t> bytes);
    /// Adds bytes at the end; when they do not all fit, none stays.
    [[nodiscard]] bool Append(std::span<const std::uint8_t> bytes);

  private:
    struct Handle;
    UpdatedFile(std::unique_ptr<Handle> handle, std::uint64_t size);

    std::unique_ptr<Handle> handle_;
    std::uint64_t size_ = 0;
};

}  // namespace rastrel
