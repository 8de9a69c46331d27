#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace rastrel_cli {

/// The name of an image type, which is also its extension; "unknown" for others.
[[nodiscard]] std::string_view TypeName(int type);
/// A type's code from its name, in any case, or from the code itself as a number.
[[nodiscard]] std::optional<int> TypeFromText(const std::string& text);
/// The type that a file name's extension stands for.
[[nodiscard]] std::optional<int> TypeFromFileName(const std::string& name);

/// The type given or, where that is -1, the one of the name; -1 for none.
[[nodiscard]] int EffectiveType(const std::string& name, int type);

}  // namespace rastrel_cli
