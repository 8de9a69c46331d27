#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rastrel_cli {

// What the readers of text files share. Numbers have the decimal point, whatever the locale.

[[nodiscard]] std::string LowerCase(std::string_view text);

[[nodiscard]] bool IsBlank(char c);

/// Whether a name is an address, of which the library fetches a copy.
[[nodiscard]] bool IsAddress(std::string_view name);

/// The whole text as a number: finite; nothing otherwise.
[[nodiscard]] std::optional<double> ParseFinite(std::string_view text);
/// The whole text as a whole number between two others.
[[nodiscard]] std::optional<std::int64_t> ParseWhole(std::string_view text, std::int64_t least,
                                                     std::int64_t most);

/// Finite numbers with commas between them; none when the text is anything else.
[[nodiscard]] std::vector<double> ParseNumbers(std::string_view text);

/// Takes the next word, up to a blank or the end, off the front of a text; empty at its end.
[[nodiscard]] std::string_view TakeWord(std::string_view& text);
/// Takes the next line off the front of a text, without its line end.
[[nodiscard]] std::string_view TakeLine(std::string_view& text);

/// What stands between the commas of a text.
[[nodiscard]] std::vector<std::string_view> SplitAtCommas(std::string_view text);

/// A text as it can be shown in a message: cut when long, and without control characters.
[[nodiscard]] std::string Shown(std::string_view text);

/// A file's bytes, or why they cannot be had.
[[nodiscard]] std::optional<std::string> ReadWholeFile(const std::string& name, std::string& why);

}  // namespace rastrel_cli
