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

/// The position goes with every call; no file is opened for overlapped work.
OVERLAPPED At(std::uint64_t position) {
    OVERLAPPED at = {};
    at.Offset = static_cast<DWORD>(position & 0xffffffffu);
    at.OffsetHigh = static_cast<DWORD>(position >> 32);
    return at;
}

/// Reads on after every part that comes, to the end of the file or the first error.
std::size_t ReadAllAt(HANDLE file, std::uint64_t position, std::span<std::uint8_t> out) {
    std::size_t done = 0;
    while (done < out.size()) {
        OVERLAPPED at = At(position + done);
        DWORD got = 0;
        const auto ask = static_cast<DWORD>(std::min(out.size() - done, kMostPerCall));
        if (!ReadFile(file, out.data() + done, ask, &got, &at) || got == 0) break;
        done += got;
    }
    return done;
}

/// Opens an existing regular file, and tells its length; INVALID_HANDLE_VALUE for anything else.
/// Others may read and write it meanwhile.
HANDLE OpenRegular(const std::string& path, DWORD access, std::uint64_t& size) {
    HANDLE raw = CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                             OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (raw == INVALID_HANDLE_VALUE) return raw;
    LARGE_INTEGER length = {};
    if (GetFileType(raw) != FILE_TYPE_DISK || !GetFileSizeEx(raw, &length)) {
        CloseHandle(raw);
        return INVALID_HANDLE_VALUE;
    }
    size = static_cast<std::uint64_t>(length.QuadPart);
    return raw;
}

}  // namespace

bool FileExists(const std::string& path) {
    return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool RemoveFile(const std::string& path) {
    return DeleteFileA(path.c_str()) || GetLastError() == ERROR_FILE_NOT_FOUND;
}

struct InputFile::Handle {
    FileHandle file;
};

InputFile::InputFile(std::unique_ptr<Handle> handle, std::uint64_t size)
    : handle_(std::move(handle)), size_(size) {}

InputFile::~InputFile() = default;

std::unique_ptr<InputFile> InputFile::Open(const std::string& path) {
    std::uint64_t size = 0;
    HANDLE raw = OpenRegular(path, GENERIC_READ, size);
    if (raw == INVALID_HANDLE_VALUE) return nullptr;
    std::unique_ptr<Handle> handle(new Handle{FileHandle(raw)});
    return std::unique_ptr<InputFile>(new InputFile(std::move(handle), size));
}

std::size_t InputFile::Read(std::span<std::uint8_t> out) {
    const std::size_t done = ReadAllAt(handle_->file.Get(), position_, out);
    position_ += done;
    return done;
}

struct ReplacingFile::Handle {
    FileHandle file;
    std::string target;
    std::string temporary;  ///< empty once it has the target's name, or is the target
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

std::unique_ptr<ReplacingFile> ReplacingFile::CreateInPlace(const std::string& path) {
    HANDLE raw = CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                             FILE_ATTRIBUTE_NORMAL, nullptr);
    if (raw == INVALID_HANDLE_VALUE) return nullptr;
    std::unique_ptr<Handle> handle(new Handle{FileHandle(raw), path, {}});
    return std::unique_ptr<ReplacingFile>(new ReplacingFile(std::move(handle)));
}

bool ReplacingFile::Seek(std::uint64_t position) {
    if (!handle_ || !handle_->file.IsOpen()) return false;
    LARGE_INTEGER to = {};
    to.QuadPart = static_cast<LONGLONG>(position);
    if (!SetFilePointerEx(handle_->file.Get(), to, nullptr, FILE_BEGIN)) return false;
    position_ = position;
    return true;
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
        MovePosition(put);
    }
    return true;
}

bool ReplacingFile::Commit() {
    if (!handle_ || !handle_->file.IsOpen() || !handle_->file.Close()) return false;
    if (handle_->temporary.empty()) return true;
    if (!MoveFileExA(handle_->temporary.c_str(), handle_->target.c_str(),
                     MOVEFILE_REPLACE_EXISTING))
        return false;
    handle_->temporary.clear();
    return true;
}

struct UpdatedFile::Handle {
    FileHandle file;
};

UpdatedFile::UpdatedFile(std::unique_ptr<Handle> handle, std::uint64_t size)
    : handle_(std::move(handle)), size_(size) {}

UpdatedFile::~UpdatedFile() = default;

std::unique_ptr<UpdatedFile> UpdatedFile::Open(const std::string& path, Access access) {
    std::uint64_t size = 0;
    const DWORD rights =
        access == Access::kWrite ? GENERIC_WRITE : DWORD{GENERIC_READ | GENERIC_WRITE};
    HANDLE raw = OpenRegular(path, rights, size);
    if (raw == INVALID_HANDLE_VALUE) return nullptr;
    std::unique_ptr<Handle> handle(new Handle{FileHandle(raw)});
    return std::unique_ptr<UpdatedFile>(new UpdatedFile(std::move(handle), size));
}

std::size_t UpdatedFile::ReadAt(std::uint64_t position, std::span<std::uint8_t> out) {
    return ReadAllAt(handle_->file.Get(), position, out);
}

bool UpdatedFile::WriteAt(std::uint64_t position, std::span<const std::uint8_t> bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        OVERLAPPED at = At(position + done);
        DWORD put = 0;
        const auto ask = static_cast<DWORD>(std::min(bytes.size() - done, kMostPerCall));
        if (!WriteFile(handle_->file.Get(), bytes.data() + done, ask, &put, &at) || put == 0)
            return false;
        done += put;
    }
    return true;
}

bool UpdatedFile::Append(std::span<const std::uint8_t> bytes) {
    if (WriteAt(size_, bytes)) return true;
    // Nothing more can be done when even this fails.
    LARGE_INTEGER old_end = {};
    old_end.QuadPart = static_cast<LONGLONG>(size_);
    if (SetFilePointerEx(handle_->file.Get(), old_end, nullptr, FILE_BEGIN))
        SetEndOfFile(handle_->file.Get());
    return false;
}

}  // namespace rastrel
