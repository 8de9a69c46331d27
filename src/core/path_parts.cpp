#include "core/path_parts.h"

#include "core/ascii.h"
#include "platform/file.h"

namespace rastrel {

PathParts SplitPath(std::string_view path) {
    const bool has_drive = path.size() >= 2 && path[1] == ':' && UpperCase(path[0]) >= 'A' &&
                           UpperCase(path[0]) <= 'Z';
    const std::size_t separator = path.find_last_of("/\\");
    const std::size_t name = separator != std::string_view::npos ? separator + 1
                             : has_drive                         ? 2
                                                                 : 0;
    const std::size_t point = path.rfind('.');
    const std::size_t extension =
        point != std::string_view::npos && point >= name ? point : path.size();
    return {path.substr(0, name), path.substr(name, extension - name), path.substr(extension)};
}

std::string ExistingInEitherCase(const std::string& path) {
    if (FileExists(path)) return path;
    const std::size_t extension = path.size() - SplitPath(path).extension.size();
    const std::string upper = path.substr(0, extension) + UpperCase(path.substr(extension));
    return FileExists(upper) ? upper : path;
}

}  // namespace rastrel
