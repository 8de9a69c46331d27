#include "platform/file.h"

#include <windows.h>

#include <algorithm>
#include <utility>

#include "platform/beside_name.h"

namespace rastrel {

namespace {

/// A file handle that closes itself.
class FileHandle {
  public:
    explicit FileHandle(HANDLE handle) : handle_(handle) {}
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    ~FileHandle() {
        if (IsOpen()) CloseHandle(handle_);
    }
    [[nodiscard]] HANDLE Get() const { return handle_; }
    [[nodiscard]] bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
    [[nodiscard]] bool Close() {
        return CloseHandle(std::exchange(handle_, INVALID_HANDLE_VALUE)) != 0;
    }

  private:
    HANDLE handle_;
};

/// ReadFile and WriteFile count in 32 bits.
constexpr std::size_t kMostPerCall = std::size_t{1} << 30;

}  // namespace

struct InputFile::Handle {
    FileHandle file;
};

InputFile::InputFile(std::unique_ptr<Handle> handle, std::uint64_t size)
    : handle_(std::move(handle)), size_(size) {}

InputFile::~InputFile() = default;

std::unique_ptr<InputFile> InputFile::Open(const std::string& path) {
    HANDLE raw = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                             nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (raw == INVALID_HANDLE_VALUE) return nullptr;
    std::unique_ptr<Handle> handle(new Handle{FileHandle(raw)});
    LARGE_INTEGER size = {};
    if (GetFileType(raw) != FILE_TYPE_DISK || !GetFileSizeEx(raw, &size)) return nullptr;
    return std::unique_ptr<InputFile>(
        new InputFile(std::move(handle), static_cast<std::uint64_t>(size.QuadPart)));
}

std::size_t InputFile::Read(std::span<std::uint8_t> out) {
    std::size_t done = 0;
    while (done < out.size()) {
        // The position goes with every call; the file is not opened for overlapped work.
        OVERLAPPED at = {};
        at.Offset = static_cast<DWORD>(position_ & 0xffffffffu);
        at.OffsetHigh = static_cast<DWORD>(position_ >> 32);
        DWORD got = 0;
        const auto ask = static_cast<DWORD>(std::min(out.size() - done, kMostPerCall));
        if (!ReadFile(handle_->file.Get(), out.data() + done, ask, &got, &at) || got == 0) break;
        done += got;
        position_ += got;
    }
    return done;
}

struct ReplacingFile::Handle {
    FileHandle file;
    std::string target;
    std::string temporary;  ///< empty once it has the target's name
};

ReplacingFile::ReplacingFile(std::unique_ptr<Handle> handle) : handle_(std::move(handle)) {}

ReplacingFile::~ReplacingFile() {
    if (!handle_ || handle_->temporary.empty()) return;
    // An open file cannot be deleted; a close that fails leaves nothing more to be done.
    if (handle_->file.IsOpen()) static_cast<void>(handle_->file.Close());
    DeleteFileA(handle_->temporary.c_str());
}

std::unique_ptr<ReplacingFile> ReplacingFile::Create(const std::string& path) {
    const DWORD old = GetFileAttributesA(path.c_str());
    const bool exists = old != INVALID_FILE_ATTRIBUTES;
    if (exists && (old & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0) return nullptr;
    std::string temporary;
    HANDLE raw = INVALID_HANDLE_VALUE;
    for (int i = 0; i < kBesideNameTries; ++i) {
        temporary = NameBeside(path, GetCurrentProcessId());
        raw = CreateFileA(temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                          FILE_ATTRIBUTE_NORMAL, nullptr);
        if (raw != INVALID_HANDLE_VALUE || GetLastError() != ERROR_FILE_EXISTS) break;
    }
    if (raw == INVALID_HANDLE_VALUE) return nullptr;
    std::unique_ptr<Handle> handle(new Handle{FileHandle(raw), path, temporary});
    return std::unique_ptr<ReplacingFile>(new ReplacingFile(std::move(handle)));
}

bool ReplacingFile::Write(std::span<const std::uint8_t> bytes) {
    if (!handle_ || !handle_->file.IsOpen()) return false;
    std::size_t done = 0;
    while (done < bytes.size()) {
        DWORD put = 0;
        const auto ask = static_cast<DWORD>(std::min(bytes.size() - done, kMostPerCall));
        if (!WriteFile(handle_->file.Get(), bytes.data() + done, ask, &put, nullptr) || put == 0)
            return false;
        done += put;
    }
    return true;
}

bool ReplacingFile::Commit() {
    if (!handle_ || !handle_->file.IsOpen() || !handle_->file.Close()) return false;
    if (!MoveFileExA(handle_->temporary.c_str(), handle_->target.c_str(),
                     MOVEFILE_REPLACE_EXISTING))
        return false;
    handle_->temporary.clear();
    return true;
}

}  // namespace rastrel
