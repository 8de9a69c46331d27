#include "types.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>

namespace rastrel_cli {

namespace {

/// By code.
constexpr std::array<std::string_view, 16> kNames = {"bmp", "jpg", "gif", "png", "tif", "qvi",
                                                     "bil", "bip", "bsq", "sid", "ecw", "fot",
                                                     "map", "gfc", "gaf", "jp2"};

}  // namespace

std::string_view TypeName(int type) {
    if (type < 0 || static_cast<std::size_t>(type) >= kNames.size()) return "unknown";
    return kNames[static_cast<std::size_t>(type)];
}

std::optional<int> TypeFromText(const std::string& text) {
    std::string lower = text;
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    if (lower == "bin") lower = "jp2";
    const auto name = std::find(kNames.begin(), kNames.end(), lower);
    if (name != kNames.end()) return static_cast<int>(name - kNames.begin());
    int code = -1;
    const char* end = lower.data() + lower.size();
    const auto parsed = std::from_chars(lower.data(), end, code);
    if (parsed.ec != std::errc() || parsed.ptr != end) return std::nullopt;
    if (code < 0 || static_cast<std::size_t>(code) >= kNames.size()) return std::nullopt;
    return code;
}

std::optional<int> TypeFromFileName(const std::string& name) {
    const std::size_t point = name.rfind('.');
    // An extension is not a code: "a.5" is no QVI file.
    if (point == std::string::npos || point + 4 != name.size()) return std::nullopt;
    return TypeFromText(name.substr(point + 1));
}

int EffectiveType(const std::string& name, int type) {
    return type >= 0 ? type : TypeFromFileName(name).value_or(-1);
}

}  // namespace rastrel_cli
