#include "formats/tiff/tiff_messages.h"

#include <cstdio>
#include <memory>
#include <mutex>

namespace rastrel {

namespace {

constexpr const char* kLogName = "RASTER.LOG";

/// A damaged directory can have a word to say on each of its 65,535 entries; what matters stands at
/// the beginning.
constexpr int kMostMessages = 100;

/// Messages of files that are read at the same time must not interleave.
std::mutex log_lock;

}  // namespace

TiffMessages::~TiffMessages() {
    if (text_.empty()) return;
    const std::lock_guard lock(log_lock);
    const std::unique_ptr<std::FILE, decltype(&std::fclose)> log(std::fopen(kLogName, "ab"),
                                                                 &std::fclose);
    if (log) std::fwrite(text_.data(), 1, text_.size(), log.get());
}

void TiffMessages::Error(std::string_view module, std::string_view text) noexcept {
    Add("\nFATAL ERROR:\n\n", "", module, text, "\n\n");
}

void TiffMessages::Warning(std::string_view module, std::string_view text) noexcept {
    Add("\nWARNING:\n\n", "Warning,", module, text, "\n\n");
}

void TiffMessages::Plain(std::string_view text) noexcept {
    Add("\n", "", "", text, "\n");
}

void TiffMessages::Add(std::string_view head, std::string_view prefix, std::string_view module,
                       std::string_view text, std::string_view tail) noexcept {
    if (++count_ > kMostMessages) return;
    try {
        std::string message(head);
        message += prefix;
        if (!module.empty()) message.append(module).append(":");
        message.append(text).append(tail);
        text_ += message;
    } catch (...) {
        // Called from inside libtiff, through which nothing may be thrown. A message that memory
        // does not suffice for is lost.
        return;
    }
}

}  // namespace rastrel
