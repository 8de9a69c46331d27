#pragma once

#include <atomic>
#include <string>

namespace rastrel {

/// How many names are tried before a folder counts as one that takes no new file: names may be
/// left from a process of the same number that was killed.
constexpr int kBesideNameTries = 100;

/// A short name in the target's folder that no other call and no other living process uses.
inline std::string NameBeside(const std::string& target, unsigned long process) {
    static std::atomic<unsigned> serial{0};
    const std::size_t separator = target.find_last_of("/\\:");
    const std::size_t folder = separator == std::string::npos ? 0 : separator + 1;
    return target.substr(0, folder) + ".rastrel-" + std::to_string(process) + "-" +
           std::to_string(serial++);
}

}  // namespace rastrel
