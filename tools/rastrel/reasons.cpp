#include "reasons.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

#include "rastrel.h"
#include "text.h"
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

/// What is wrong with the header beside raw pixels; empty when there is no telling.
std::string WhyNoRawPixels(const std::string& name) {
    const fs::path header = fs::path(name).replace_extension(".hdr");
    std::error_code error;
    if (!fs::exists(header, error) && !fs::exists(fs::path(name).replace_extension(".HDR"), error))
        return fmt::format("its header {} is missing", header.string());
    int bits = 0;
    if (Rastrel_ReadInfo(name.c_str(), nullptr, nullptr, &bits) == 1 && bits != 8 && bits != 24)
        return fmt::format("its pixels have {} bits; of raw images those of 8 and 24 are read",
                           bits);
    return "";
}

}  // namespace

std::string WhyNotOpened(const std::string& name) {
    std::error_code error;
    if (fs::is_directory(name, error)) return "it is a folder";
    // Opening a pipe would wait for its other end.
    if (fs::exists(name, error) && !fs::is_regular_file(name, error))
        return "it is no ordinary file";
    return WhyNotOpened(name, "rb");
}

std::string WhyNoFileThere(const std::string& name) {
    std::error_code error;
    if (fs::is_directory(name, error)) return "it is a folder";
    const fs::path parent = fs::path(name).parent_path();
    if (!parent.empty() && !fs::is_directory(parent, error))
        return fmt::format("there is no folder \"{}\"", parent.string());
    return fs::exists(name, error) ? WhyNotOpened(name, "r+b") : "";
}

std::string WhyNotWritten(const std::string& name) {
    std::string reason = WhyNoFileThere(name);
    if (!reason.empty()) return reason;
    const fs::path parent = fs::path(name).parent_path();
    std::error_code error;
    const fs::space_info room = fs::space(parent.empty() ? fs::path(".") : parent, error);
    return !error && room.available < kLittleRoom ? "the disk is full" : "";
}

std::string WhyNotRead(const std::string& name, int type) {
    if (IsAddress(name))
        return "what stands there cannot be fetched, or is no image that this version of the "
               "library "
               "can read";
    std::string opening = WhyNotOpened(name);
    if (!opening.empty()) return opening;
    const int effective = EffectiveType(name, type);
    if (effective < 0) return "neither its name nor its content is that of a known format";
    if (effective >= RASTREL_TYPE_BIL && effective <= RASTREL_TYPE_BSQ) {
        std::string reason = WhyNoRawPixels(name);
        if (!reason.empty()) return reason;
    }
    return fmt::format(
        "it is damaged or no {} image, or this version of the library cannot read such images",
        TypeName(effective));
}

std::string WhyPartNotRead(const std::string& name, int type,
                           const std::optional<Rectangle>& part) {
    const Image whole;
    if (part && Rastrel_Read(whole.Handle(), name.c_str(), type) == 1)
        return fmt::format(
            "the rectangle lies outside the image of {} x {} pixels, or its pixels "
            "are run-length coded",
            Rastrel_GetWidth(whole.Handle()), Rastrel_GetHeight(whole.Handle()));
    return WhyNotRead(name, type);
}

std::string WhyNotSaved(const std::string& name, int type, int bits) {
    const int effective = EffectiveType(name, type);
    if (effective < 0)
        return "the name has no extension of an image format; say the format with --type";
    std::string writing = WhyNotWritten(name);
    if (!writing.empty()) return writing;
    return fmt::format(
        "the folder or disk does not take it, or this version of the library cannot "
        "write {} images of {} bits",
        TypeName(effective), bits);
}

}  // namespace rastrel_cli
