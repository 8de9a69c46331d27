#include "platform/temporary_file.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace rastrel {

namespace {

constexpr std::size_t kMostFolderCharacters = 260;

}  // namespace

std::unique_ptr<TemporaryFile> TemporaryFile::Create(std::string_view extension) {
    const char* set = std::getenv("TMPDIR");
    std::string path = set != nullptr && *set != '\0' ? set : "/tmp";
    if (path.size() > kMostFolderCharacters) return nullptr;
    path += "/TMPXXXXXX.";
    path += extension;
    // Readable by its owner alone.
    const int descriptor = mkstemps(path.data(), static_cast<int>(extension.size()) + 1);
    if (descriptor < 0) return nullptr;
    close(descriptor);
    return std::unique_ptr<TemporaryFile>(new TemporaryFile(std::move(path)));
}

bool TemporaryFile::TakeContentOf(TemporaryFile& other) {
    return std::rename(other.path_.c_str(), path_.c_str()) == 0;
}

TemporaryFile::~TemporaryFile() {
    unlink(path_.c_str());
}

}  // namespace rastrel
