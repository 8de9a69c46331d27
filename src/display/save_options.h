#pragma once

#include <span>
#include <string>
#include <string_view>

namespace rastrel {

/// A coordinate system that images can be said to lie in.
struct CoordinateSystem {
    std::string_view name;        ///< as users choose it
    std::string_view definition;  ///< well-known text, as .prj files hold it
};

/// What the user is offered: extensions with their points, in this order.
[[nodiscard]] std::span<const std::string_view> SaveExtensions();
[[nodiscard]] std::span<const CoordinateSystem> SaveCoordinateSystems();

/// The place in SaveExtensions of the format that a name's extension stands for; none: -1.
[[nodiscard]] int SaveExtensionOf(std::string_view name);

/// The name, with an extension behind it unless its own stands for one of the formats offered.
[[nodiscard]] std::string WithAnExtension(std::string_view name, std::string_view extension);
/// The name with an extension in the place of one that stands for another format.
[[nodiscard]] std::string WithThisExtension(std::string_view name, std::string_view extension);

/// Writes the .prj file beside an image that tells its coordinate system.
[[nodiscard]] bool WriteProjectionFile(const std::string& image_name,
                                       const CoordinateSystem& system);

}  // namespace rastrel
