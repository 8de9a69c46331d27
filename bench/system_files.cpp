#include "system_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

namespace rastrel_bench {

std::size_t FileSize(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 ? static_cast<std::size_t>(status.st_size) : 0;
}

bool ReadWhole(const std::string& path, std::uint8_t* to, std::size_t size) {
    const int file = open(path.c_str(), O_RDONLY);
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got = read(file, to + done, size - done);
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    close(file);
    return done == size;
}

bool WriteWhole(const std::string& path, const std::uint8_t* from, std::size_t size) {
    const std::string temporary = path + ".part";
    const int file = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    std::size_t done = 0;
    while (done < size) {
        const ssize_t put = write(file, from + done, size - done);
        if (put <= 0) break;
        done += static_cast<std::size_t>(put);
    }
    close(file);
    return std::rename(temporary.c_str(), path.c_str()) == 0 && done == size;
}

}  // namespace rastrel_bench
