#include "reasons.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

#include "types.h"

namespace rastrel_cli {

namespace {

namespace fs = std::filesystem;

/// Less room than this on a disk is taken for the reason of a failed save.
constexpr std::uintmax_t kLittleRoom = std::uintmax_t{1} << 20;

/// The system's reason for not opening a file; empty when it opens.
std::string WhyNotOpened(const std::string& name, const char* mode) {
    errno = 0;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(name.c_str(), mode),
                                                               &std::fclose);
    return file ? "" : std::strerror(errno);
}

std::string WhyNoType(const std::string& name, const char* option) {
    return fmt::format(
        "the name \"{}\" has no extension of an image format; say the format with {}", name,
        option);
}

int EffectiveType(const std::string& name, int type) {
    return type >= 0 ? type : TypeFromFileName(name).value_or(-1);
}

}  // namespace

std::string WhyNotRead(const std::string& name, int type) {
    std::error_code error;
    if (fs::is_directory(name, error)) return "it is a folder";
    std::string opening = WhyNotOpened(name, "rb");
    if (!opening.empty()) return opening;
    if (!fs::is_regular_file(name, error)) return "it is no ordinary file";
    const int effective = EffectiveType(name, type);
    if (effective < 0) return WhyNoType(name, "--from");
    return fmt::format(
        "it is damaged or no {} image, or this version of the library cannot read such images",
        TypeName(effective));
}

std::string WhyNotSaved(const std::string& name, int type, int bits) {
    const int effective = EffectiveType(name, type);
    if (effective < 0) return WhyNoType(name, "--type");
    std::error_code error;
    if (fs::is_directory(name, error)) return "it is a folder";
    const fs::path parent = fs::path(name).parent_path();
    const fs::path folder = parent.empty() ? fs::path(".") : parent;
    if (!fs::is_directory(folder, error))
        return fmt::format("there is no folder \"{}\"", folder.string());
    if (fs::exists(name, error)) {
        std::string opening = WhyNotOpened(name, "r+b");
        if (!opening.empty()) return opening;
    }
    const fs::space_info room = fs::space(folder, error);
    if (!error && room.available < kLittleRoom) return "the disk is full";
    return fmt::format(
        "the folder or disk does not take it, or this version of the library cannot "
        "write {} images of {} bits",
        TypeName(effective), bits);
}

}  // namespace rastrel_cli
