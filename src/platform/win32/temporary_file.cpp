#include "platform/temporary_file.h"

#include <windows.h>

#include <array>
#include <atomic>
#include <cstdint>

namespace rastrel {

namespace {

constexpr DWORD kMostFolderCharacters = 260;
/// Names may be left from a process of the same number that was killed.
constexpr int kNameTries = 100;

/// A name that no other call of this process has had.
std::string NameIn(const std::string& folder, std::string_view extension) {
    static std::atomic<unsigned> serial{0};
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::uint64_t number = (std::uint64_t{GetCurrentProcessId()} << 24) ^ serial++;
    std::string name = folder + "TMP";
    for (; number != 0; number >>= 4)
        name += kDigits[number & 15];
    name += '.';
    name += extension;
    return name;
}

}  // namespace

std::unique_ptr<TemporaryFile> TemporaryFile::Create(std::string_view extension) {
    std::array<char, kMostFolderCharacters + 1> folder = {};
    const DWORD length = GetTempPathA(static_cast<DWORD>(folder.size()), folder.data());
    if (length == 0 || length > kMostFolderCharacters) return nullptr;
    for (int i = 0; i < kNameTries; ++i) {
        std::string path = NameIn(folder.data(), extension);
        HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                  FILE_ATTRIBUTE_TEMPORARY, nullptr);
        if (file != INVALID_HANDLE_VALUE) {
            CloseHandle(file);
            return std::unique_ptr<TemporaryFile>(new TemporaryFile(std::move(path)));
        }
        if (GetLastError() != ERROR_FILE_EXISTS) break;
    }
    return nullptr;
}

bool TemporaryFile::TakeContentOf(TemporaryFile& other) {
    return MoveFileExA(other.path_.c_str(), path_.c_str(), MOVEFILE_REPLACE_EXISTING) != 0;
}

TemporaryFile::~TemporaryFile() {
    DeleteFileA(path_.c_str());
}

}  // namespace rastrel
