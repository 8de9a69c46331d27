#include "georeference.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <vector>

#include "reasons.h"
#include "text.h"

namespace rastrel_cli {

namespace {

namespace fs = std::filesystem;

/// The library takes a name without a folder for one in the root of the drive.
std::string WithFolder(const std::string& name) {
    if (name.find_first_of("/\\") != std::string::npos) return name;
    return fs::path(name).has_root_name() ? fs::absolute(name).string() : "./" + name;
}

}  // namespace

Companion CompanionOf(const std::string& image_name) {
    const std::string full_name = WithFolder(image_name);
    constexpr std::size_t kRoomBeyondName = 16;
    std::vector<char> text(full_name.size() + kRoomBeyondName);
    Rastrel_FileNameGeoref(full_name.c_str(), text.data());
    std::string name = text.data();
    // "FOTxxx" and its like stand for the image; every other name has a folder.
    if (name.find('\\') == std::string::npos) return {image_name, true, false};
    std::replace(name.begin(), name.end(), '\\', static_cast<char>(fs::path::preferred_separator));
    if (full_name == "./" + image_name) name.erase(0, 2);
    std::error_code error;
    const bool is_image = name == image_name || (fs::equivalent(name, image_name, error) && !error);
    return {name, false, is_image};
}

std::optional<Georeference> ReadGeoreference(const std::string& image_name) {
    if (IsAddress(image_name) || CompanionOf(image_name).is_image) return std::nullopt;
    // What a world file lacks stays as it is set here.
    const double none = std::numeric_limits<double>::quiet_NaN();
    Georeference found = {none, none, none};
    if (Rastrel_ReadGeoref(WithFolder(image_name).c_str(), &found.x, &found.y, &found.pixel_size) !=
        1)
        return std::nullopt;
    if (!std::isfinite(found.x) || !std::isfinite(found.y) || !std::isfinite(found.pixel_size))
        return std::nullopt;
    return found;
}

Georeference OfPart(const Georeference& whole, const Rectangle& part) {
    // A rectangle that begins outside shows the image from its edge on.
    return {whole.x + std::max(part.x, 0) * whole.pixel_size,
            whole.y - std::max(part.y, 0) * whole.pixel_size, whole.pixel_size};
}

std::optional<std::string> WriteGeoreference(const std::string& image_name,
                                             const Georeference& georeference) {
    const Companion companion = CompanionOf(image_name);
    if (companion.is_image) return "its name has no extension: its georeference would replace it";
    if (Rastrel_WriteGeoref(WithFolder(image_name).c_str(), georeference.x, georeference.y,
                            georeference.pixel_size) == 1)
        return std::nullopt;
    std::string reason = WhyNotWritten(companion.name);
    if (reason.empty())
        reason = companion.is_inside ? "the image is too short, or cannot hold these values"
                                     : "the folder or disk does not take it";
    return fmt::format("its georeference cannot be written{}: {}",
                       companion.is_inside ? "" : " to " + companion.name, reason);
}

void PrintGeoreference(const Georeference& georeference, int width, int height) {
    const auto& [x, y, pixel_size] = georeference;
    fmt::print("  upper left   {} {}\n", x, y);
    fmt::print("  pixel size   {}\n", pixel_size);
    if (width > 0)
        fmt::print("  extent       {} {} {} {} (xmin ymin xmax ymax)\n", x, y - height * pixel_size,
                   x + width * pixel_size, y);
}

}  // namespace rastrel_cli
