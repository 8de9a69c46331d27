#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace rastrel {

// Letters of extensions and keywords, which are ASCII: independent of the host's locale.

constexpr char UpperCase(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

inline std::string UpperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) { return UpperCase(c); });
    return text;
}

inline bool EqualsInAnyCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return UpperCase(x) == UpperCase(y); });
}

}  // namespace rastrel
