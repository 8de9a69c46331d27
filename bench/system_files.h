#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace rastrel_bench {

// The system's own calls on files, as plainly as a program can use them: what the library's reads
// and writes are measured against. Linux only.

[[nodiscard]] std::size_t FileSize(const std::string& path);

[[nodiscard]] bool ReadWhole(const std::string& path, std::uint8_t* to, std::size_t size);

/// Into a new file that takes the old one's name.
[[nodiscard]] bool WriteWhole(const std::string& path, const std::uint8_t* from, std::size_t size);

}  // namespace rastrel_bench
