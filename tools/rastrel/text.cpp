#include "text.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

namespace rastrel_cli {

namespace {

constexpr std::size_t kMostShown = 40;

/// Without a leading plus sign, which std::from_chars does not take.
std::string_view WithoutPlus(std::string_view text) {
    if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
    return text;
}

}  // namespace

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return lower;
}

bool IsBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool IsAddress(std::string_view name) {
    const std::string lower = LowerCase(name.substr(0, 8));
    return lower.starts_with("http://") || lower.starts_with("https://") ||
           lower.starts_with("file://");
}

std::optional<double> ParseFinite(std::string_view text) {
    text = WithoutPlus(text);
    double number = 0.0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size()) return std::nullopt;
    if (!std::isfinite(number)) return std::nullopt;
    return number;
}

std::optional<std::int64_t> ParseWhole(std::string_view text, std::int64_t least,
                                       std::int64_t most) {
    text = WithoutPlus(text);
    std::int64_t number = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size()) return std::nullopt;
    if (number < least || number > most) return std::nullopt;
    return number;
}

std::string_view TakeWord(std::string_view& text) {
    const auto start = std::find_if_not(text.begin(), text.end(), IsBlank);
    const auto end = std::find_if(start, text.end(), IsBlank);
    const auto at = static_cast<std::size_t>(start - text.begin());
    const std::string_view word = text.substr(at, static_cast<std::size_t>(end - start));
    text.remove_prefix(at + word.size());
    return word;
}

std::string_view TakeLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return line;
}

std::vector<std::string_view> SplitAtCommas(std::string_view text) {
    std::vector<std::string_view> parts;
    while (true) {
        const std::size_t comma = text.find(',');
        parts.push_back(text.substr(0, comma));
        if (comma == std::string_view::npos) return parts;
        text.remove_prefix(comma + 1);
    }
}

std::vector<double> ParseNumbers(std::string_view text) {
    std::vector<double> numbers;
    for (const std::string_view part : SplitAtCommas(text)) {
        const auto number = ParseFinite(part);
        if (!number) return {};
        numbers.push_back(*number);
    }
    return numbers;
}

std::string Shown(std::string_view text) {
    std::string shown(text.substr(0, kMostShown));
    for (char& c : shown) {
        if (static_cast<unsigned char>(c) < ' ' || c == '\x7f') c = '?';
    }
    if (text.size() > kMostShown) shown += "...";
    return "\"" + shown + "\"";
}

std::optional<std::string> ReadWholeFile(const std::string& name, std::string& why) {
    namespace fs = std::filesystem;
    std::error_code error;
    if (fs::is_directory(name, error)) {
        why = "it is a folder";
        return std::nullopt;
    }
    errno = 0;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(name.c_str(), "rb"),
                                                               &std::fclose);
    if (!file) {
        why = std::strerror(errno);
        return std::nullopt;
    }
    const std::uintmax_t size = fs::is_regular_file(name, error) ? fs::file_size(name, error) : 0;
    if (!fs::is_regular_file(name, error) || error) {
        why = "it is no ordinary file";
        return std::nullopt;
    }
    std::string bytes;
    if (size > bytes.max_size()) throw std::bad_alloc();
    bytes.resize(static_cast<std::size_t>(size));
    if (std::fread(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) {
        why = "it cannot be read to its end";
        return std::nullopt;
    }
    return bytes;
}

}  // namespace rastrel_cli
