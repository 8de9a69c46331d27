#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace rastrel {

/// Fields of a line of text, separated by white space. Numbers are written with a point, whatever
/// the host's locale says.
class FieldReader {
  public:
    explicit FieldReader(std::string_view text) : rest_(text) {}

    /// The characters up to the next white space; empty at the end.
    [[nodiscard]] std::string_view Word();
    /// A decimal integer, with what follows its digits left for the next field. None, and nothing
    /// taken, for what is none or lies outside the range of int.
    [[nodiscard]] std::optional<int> Integer();
    /// The same for a decimal number, also with an exponent; what is not finite is no number.
    [[nodiscard]] std::optional<double> Number();

  private:
    template <class Value>
    [[nodiscard]] std::optional<Value> Take();
    void SkipSpace();

    std::string_view rest_;
};

/// The number with a fixed count of decimals, right-aligned in a field of width characters.
[[nodiscard]] std::string FixedDecimals(double value, int decimals, std::size_t width);

}  // namespace rastrel
