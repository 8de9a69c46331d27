#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/file.h"

namespace rastrel {

/// Where a format's reader gets its bytes from: a file or memory.
class ByteSource {
  public:
    ByteSource() = default;
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;
    virtual ~ByteSource() = default;

    /// Reads from the current position on and moves it; less than asked only at the end.
    [[nodiscard]] virtual std::size_t Read(std::span<std::uint8_t> out) = 0;
    /// Any position from 0 up; past the end nothing can be read.
    virtual void Seek(std::uint64_t position) = 0;
    [[nodiscard]] virtual std::uint64_t Position() const = 0;
    [[nodiscard]] virtual std::uint64_t Size() const = 0;

    /// Bytes between a position and the end.
    [[nodiscard]] std::uint64_t BytesFrom(std::uint64_t position) const {
        return position < Size() ? Size() - position : 0;
    }
};

/// Where a format's writer puts its bytes. Nothing is there for others until Commit succeeds.
class ByteSink {
  public:
    ByteSink() = default;
    ByteSink(const ByteSink&) = delete;
    ByteSink& operator=(const ByteSink&) = delete;
    virtual ~ByteSink() = default;

    [[nodiscard]] virtual bool Write(std::span<const std::uint8_t> bytes) = 0;
    [[nodiscard]] virtual bool Commit() = 0;
};

class FileSource final : public ByteSource {
  public:
    /// Null when the file cannot be opened.
    [[nodiscard]] static std::unique_ptr<FileSource> Open(const std::string& name) {
        auto file = InputFile::Open(name);
        if (!file) return nullptr;
        return std::unique_ptr<FileSource>(new FileSource(std::move(file)));
    }
    [[nodiscard]] std::size_t Read(std::span<std::uint8_t> out) override {
        return file_->Read(out);
    }
    void Seek(std::uint64_t position) override { file_->Seek(position); }
    [[nodiscard]] std::uint64_t Position() const override { return file_->Position(); }
    [[nodiscard]] std::uint64_t Size() const override { return file_->Size(); }

  private:
    explicit FileSource(std::unique_ptr<InputFile> file) : file_(std::move(file)) {}
    std::unique_ptr<InputFile> file_;
};

/// Bytes in memory that somebody else keeps alive.
class MemorySource final : public ByteSource {
  public:
    explicit MemorySource(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}
    [[nodiscard]] std::size_t Read(std::span<std::uint8_t> out) override {
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(out.size(), BytesFrom(position_)));
        if (count > 0) std::memcpy(out.data(), bytes_.data() + position_, count);
        position_ += count;
        return count;
    }
    void Seek(std::uint64_t position) override { position_ = position; }
    [[nodiscard]] std::uint64_t Position() const override { return position_; }
    [[nodiscard]] std::uint64_t Size() const override { return bytes_.size(); }

  private:
    std::span<const std::uint8_t> bytes_;
    std::uint64_t position_ = 0;
};

class FileSink final : public ByteSink {
  public:
    /// Null when the file cannot be created.
    [[nodiscard]] static std::unique_ptr<FileSink> Create(const std::string& name) {
        auto file = ReplacingFile::Create(name);
        if (!file) return nullptr;
        return std::unique_ptr<FileSink>(new FileSink(std::move(file)));
    }
    /// The same for a file that is written in its own place: what is written stays in any case.
    [[nodiscard]] static std::unique_ptr<FileSink> CreateInPlace(const std::string& name) {
        auto file = ReplacingFile::CreateInPlace(name);
        if (!file) return nullptr;
        return std::unique_ptr<FileSink>(new FileSink(std::move(file)));
    }
    [[nodiscard]] bool Write(std::span<const std::uint8_t> bytes) override {
        return file_->Write(bytes);
    }
    [[nodiscard]] bool Commit() override { return file_->Commit(); }

  private:
    explicit FileSink(std::unique_ptr<ReplacingFile> file) : file_(std::move(file)) {}
    std::unique_ptr<ReplacingFile> file_;
};

/// Bytes gathered in memory.
class MemorySink final : public ByteSink {
  public:
    [[nodiscard]] bool Write(std::span<const std::uint8_t> bytes) override {
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
        return true;
    }
    [[nodiscard]] bool Commit() override { return true; }
    [[nodiscard]] const std::vector<std::uint8_t>& Bytes() const { return bytes_; }

  private:
    std::vector<std::uint8_t> bytes_;
};

}  // namespace rastrel
