#pragma once

#include <string>
#include <string_view>

namespace rastrel {

/// A file's name taken apart. The parts, one after the other, are the name again.
struct PathParts {
    std::string_view folder;     ///< drive and folder, up to and with the last separator
    std::string_view base;       ///< the file's name without its extension
    std::string_view extension;  ///< from the last point of the file's name on; may be empty

    /// The extension without its point.
    [[nodiscard]] std::string_view ExtensionText() const {
        return extension.empty() ? extension : extension.substr(1);
    }
};

/// Takes a name apart, which must outlive the parts. "/" and "\" separate folders, and a letter
/// with a colon in front is a drive, on every system: companion names come out the same.
[[nodiscard]] PathParts SplitPath(std::string_view path);

/// The name, or the name with its extension in upper case when only that file exists. Data come
/// from systems that do not tell the two apart, and some of their programs write upper case.
[[nodiscard]] std::string ExistingInEitherCase(const std::string& path);

}  // namespace rastrel
