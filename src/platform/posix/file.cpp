#include "platform/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>

#include "platform/beside_name.h"

namespace rastrel {

namespace {

/// A file descriptor that closes itself.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (number_ >= 0) close(number_);
    }
    [[nodiscard]] int Number() const { return number_; }
    [[nodiscard]] bool IsOpen() const { return number_ >= 0; }
    /// False when the system had kept an error back until now, as network file systems do.
    [[nodiscard]] bool Close() { return close(std::exchange(number_, -1)) == 0; }

  private:
    int number_;
};

/// One system call transfers no more than this on Linux; more is asked for in parts.
constexpr std::size_t kMostPerCall = 0x7ffff000;

/// Names written for Windows, and companion names, are joined with "\".
std::string NativePath(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

/// The file that a name stands for in the end, so that replacing it keeps a symbolic link a link.
std::string ResolveLinks(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(path.c_str(), nullptr),
                                                               &std::free);
    return resolved ? std::string(resolved.get()) : path;
}

/// Reads on after every part that comes, to the end of the file or the first error.
std::size_t ReadAllAt(int descriptor, std::uint64_t position, std::span<std::uint8_t> out) {
    std::size_t done = 0;
    while (done < out.size()) {
        const ssize_t got =
            pread(descriptor, out.data() + done, std::min(out.size() - done, kMostPerCall),
                  static_cast<off_t>(position + done));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

/// Opens a regular file, and tells its length; -1 for anything else.
int OpenRegular(const std::string& path, int flags, std::uint64_t& size) {
    // Not blocking: opening a pipe would wait for its other end.
    const int number = open(NativePath(path).c_str(), flags | O_CLOEXEC | O_NONBLOCK);
    if (number < 0) return -1;
    struct stat status = {};
    if (fstat(number, &status) != 0 || !S_ISREG(status.st_mode)) {
        close(number);
        return -1;
    }
    size = static_cast<std::uint64_t>(status.st_size);
    return number;
}

}  // namespace

bool FileExists(const std::string& path) {
    struct stat status = {};
    return stat(NativePath(path).c_str(), &status) == 0;
}

bool RemoveFile(const std::string& path) {
    return unlink(NativePath(path).c_str()) == 0 || errno == ENOENT;
}

struct InputFile::Handle {
    Descriptor descriptor;
};

InputFile::InputFile(std::unique_ptr<Handle> handle, std::uint64_t size)
    : handle_(std::move(handle)), size_(size) {}

InputFile::~InputFile() = default;

std::unique_ptr<InputFile> InputFile::Open(const std::string& path) {
    std::uint64_t size = 0;
    const int number = OpenRegular(path, O_RDONLY, size);
    if (number < 0) return nullptr;
    std::unique_ptr<Handle> handle(new Handle{Descriptor(number)});
    return std::unique_ptr<InputFile>(new InputFile(std::move(handle), size));
}

std::size_t InputFile::Read(std::span<std::uint8_t> out) {
    const std::size_t done = ReadAllAt(handle_->descriptor.Number(), position_, out);
    position_ += done;
    return done;
}

struct ReplacingFile::Handle {
    Descriptor descriptor;
    std::string target;
    std::string temporary;  ///< empty when the target is written directly
};

ReplacingFile::ReplacingFile(std::unique_ptr<Handle> handle) : handle_(std::move(handle)) {}

ReplacingFile::~ReplacingFile() {
    if (handle_ && !handle_->temporary.empty()) unlink(handle_->temporary.c_str());
}

std::unique_ptr<ReplacingFile> ReplacingFile::Create(const std::string& path) {
    const std::string target = ResolveLinks(NativePath(path));
    struct stat old = {};
    const bool exists = stat(target.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode)) {
        if (S_ISDIR(old.st_mode)) return nullptr;
        const int number = open(target.c_str(), O_WRONLY | O_CLOEXEC);
        if (number < 0) return nullptr;
        std::unique_ptr<Handle> handle(new Handle{Descriptor(number), target, {}});
        return std::unique_ptr<ReplacingFile>(new ReplacingFile(std::move(handle)));
    }
    // Renaming over a file asks only for its folder's permission; writing asks for its own.
    if (exists && faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) return nullptr;
    std::string temporary;
    int number = -1;
    for (int i = 0; i < kBesideNameTries; ++i) {
        temporary = NameBeside(target, static_cast<unsigned long>(getpid()));
        number = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (number >= 0 || errno != EEXIST) break;
    }
    if (number < 0) return nullptr;
    std::unique_ptr<Handle> handle(new Handle{Descriptor(number), target, temporary});
    if (exists) {
        // The owner first: a change of owner may clear permission bits. Not being allowed to give
        // a file away is no reason not to save it. New content inherits no right to run as
        // somebody.
        [[maybe_unused]] const int owner_kept = fchown(number, old.st_uid, old.st_gid);
        [[maybe_unused]] const int mode_kept = fchmod(number, old.st_mode & 0777);
    }
    return std::unique_ptr<ReplacingFile>(new ReplacingFile(std::move(handle)));
}

std::unique_ptr<ReplacingFile> ReplacingFile::CreateInPlace(const std::string& path) {
    const std::string target = NativePath(path);
    const int number = open(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (number < 0) return nullptr;
    std::unique_ptr<Handle> handle(new Handle{Descriptor(number), target, {}});
    return std::unique_ptr<ReplacingFile>(new ReplacingFile(std::move(handle)));
}

bool ReplacingFile::Seek(std::uint64_t position) {
    if (!handle_ || !handle_->descriptor.IsOpen()) return false;
    if (position == position_) return true;
    if (lseek(handle_->descriptor.Number(), static_cast<off_t>(position), SEEK_SET) < 0)
        return false;
    position_ = position;
    return true;
}

bool ReplacingFile::Write(std::span<const std::uint8_t> bytes) {
    if (!handle_ || !handle_->descriptor.IsOpen()) return false;
    while (!bytes.empty()) {
        const ssize_t put =
            write(handle_->descriptor.Number(), bytes.data(), std::min(bytes.size(), kMostPerCall));
        if (put < 0 && errno == EINTR) continue;
        if (put <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(put));
        MovePosition(static_cast<std::uint64_t>(put));
    }
    return true;
}

bool ReplacingFile::Commit() {
    if (!handle_ || !handle_->descriptor.IsOpen() || !handle_->descriptor.Close()) return false;
    if (handle_->temporary.empty()) return true;
    if (rename(handle_->temporary.c_str(), handle_->target.c_str()) != 0) return false;
    handle_->temporary.clear();
    return true;
}

struct UpdatedFile::Handle {
    Descriptor descriptor;
};

UpdatedFile::UpdatedFile(std::unique_ptr<Handle> handle, std::uint64_t size)
    : handle_(std::move(handle)), size_(size) {}

UpdatedFile::~UpdatedFile() = default;

std::unique_ptr<UpdatedFile> UpdatedFile::Open(const std::string& path, Access access) {
    std::uint64_t size = 0;
    const int number = OpenRegular(path, access == Access::kWrite ? O_WRONLY : O_RDWR, size);
    if (number < 0) return nullptr;
    std::unique_ptr<Handle> handle(new Handle{Descriptor(number)});
    return std::unique_ptr<UpdatedFile>(new UpdatedFile(std::move(handle), size));
}

std::size_t UpdatedFile::ReadAt(std::uint64_t position, std::span<std::uint8_t> out) {
    return ReadAllAt(handle_->descriptor.Number(), position, out);
}

bool UpdatedFile::WriteAt(std::uint64_t position, std::span<const std::uint8_t> bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t put = pwrite(handle_->descriptor.Number(), bytes.data() + done,
                                   std::min(bytes.size() - done, kMostPerCall),
                                   static_cast<off_t>(position + done));
        if (put < 0 && errno == EINTR) continue;
        if (put <= 0) return false;
        done += static_cast<std::size_t>(put);
    }
    return true;
}

bool UpdatedFile::Append(std::span<const std::uint8_t> bytes) {
    if (WriteAt(size_, bytes)) return true;
    // Nothing more can be done when even this fails.
    [[maybe_unused]] const int cut =
        ftruncate(handle_->descriptor.Number(), static_cast<off_t>(size_));
    return false;
}

}  // namespace rastrel
