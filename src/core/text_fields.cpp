#include "core/text_fields.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace rastrel {

namespace {

constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

}  // namespace

std::string_view FieldReader::Word() {
    SkipSpace();
    const std::string_view word = rest_.substr(0, rest_.find_first_of(kWhiteSpace));
    rest_.remove_prefix(word.size());
    return word;
}

std::optional<int> FieldReader::Integer() {
    return Take<int>();
}

std::optional<double> FieldReader::Number() {
    const std::string_view before = rest_;
    const auto number = Take<double>();
    if (number && std::isfinite(*number)) return number;
    rest_ = before;
    return std::nullopt;
}

template <class Value>
std::optional<Value> FieldReader::Take() {
    const std::string_view before = rest_;
    SkipSpace();
    // A plus sign is usual in text files and unknown to from_chars.
    const bool has_plus = rest_.size() > 1 && rest_[0] == '+' && rest_[1] != '-';
    if (has_plus) rest_.remove_prefix(1);
    Value value = {};
    const auto parsed = std::from_chars(rest_.data(), rest_.data() + rest_.size(), value);
    if (parsed.ec != std::errc()) {
        rest_ = before;
        return std::nullopt;
    }
    rest_.remove_prefix(static_cast<std::size_t>(parsed.ptr - rest_.data()));
    return value;
}

void FieldReader::SkipSpace() {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(kWhiteSpace), rest_.size()));
}

std::string FixedDecimals(double value, int decimals, std::size_t width) {
    // The largest numbers have 309 digits before the point.
    constexpr std::size_t kMostCharacters = 400;
    std::array<char, kMostCharacters> text;
    const auto written = std::to_chars(text.data(), text.data() + text.size(), value,
                                       std::chars_format::fixed, decimals);
    if (written.ec != std::errc()) return {};
    const auto length = static_cast<std::size_t>(written.ptr - text.data());
    return std::string(width > length ? width - length : 0, ' ') + std::string(text.data(), length);
}

}  // namespace rastrel
