#include "display/save_options.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "core/format_table.h"
#include "core/path_parts.h"
#include "platform/file.h"

namespace rastrel {

namespace {

constexpr std::array<std::string_view, 14> kExtensions = {".tif", ".bmp", ".jpg", ".jp2", ".gif",
                                                          ".png", ".qvi", ".bil", ".bip", ".bsq",
                                                          ".fot", ".gaf", ".map", ".gfc"};

// The UTM zones on WGS 84 (EPSG 32632 and 32633) and the two zones of the Italian Gauss-Boaga grid
// on Monte Mario (EPSG 3003 and 3004), whose central meridians are 9 and 15 degrees east, too.
constexpr std::array<CoordinateSystem, 4> kCoordinateSystems = {{
    {"UTM32", R"(PROJCS["WGS_1984_UTM_Zone_32N",GEOGCS["GCS_WGS_1984",DATUM["D_WGS_1984",)"
              R"(SPHEROID["WGS_1984",6378137.0,298.257223563]],PRIMEM["Greenwich",0.0],)"
              R"(UNIT["Degree",0.0174532925199433]],PROJECTION["Transverse_Mercator"],)"
              R"(PARAMETER["False_Easting",500000.0],PARAMETER["False_Northing",0.0],)"
              R"(PARAMETER["Central_Meridian",9.0],PARAMETER["Scale_Factor",0.9996],)"
              R"(PARAMETER["Latitude_Of_Origin",0.0],UNIT["Meter",1.0]])"},
    {"UTM33", R"(PROJCS["WGS_1984_UTM_Zone_33N",GEOGCS["GCS_WGS_1984",DATUM["D_WGS_1984",)"
              R"(SPHEROID["WGS_1984",6378137.0,298.257223563]],PRIMEM["Greenwich",0.0],)"
              R"(UNIT["Degree",0.0174532925199433]],PROJECTION["Transverse_Mercator"],)"
              R"(PARAMETER["False_Easting",500000.0],PARAMETER["False_Northing",0.0],)"
              R"(PARAMETER["Central_Meridian",15.0],PARAMETER["Scale_Factor",0.9996],)"
              R"(PARAMETER["Latitude_Of_Origin",0.0],UNIT["Meter",1.0]])"},
    {"GB9 (fuso ovest)",
     R"(PROJCS["Monte_Mario_Italy_1",GEOGCS["GCS_Monte_Mario",DATUM["D_Monte_Mario",)"
     R"(SPHEROID["International_1924",6378388.0,297.0]],PRIMEM["Greenwich",0.0],)"
     R"(UNIT["Degree",0.0174532925199433]],PROJECTION["Transverse_Mercator"],)"
     R"(PARAMETER["False_Easting",1500000.0],PARAMETER["False_Northing",0.0],)"
     R"(PARAMETER["Central_Meridian",9.0],PARAMETER["Scale_Factor",0.9996],)"
     R"(PARAMETER["Latitude_Of_Origin",0.0],UNIT["Meter",1.0]])"},
    {"GB15 (fuso est)",
     R"(PROJCS["Monte_Mario_Italy_2",GEOGCS["GCS_Monte_Mario",DATUM["D_Monte_Mario",)"
     R"(SPHEROID["International_1924",6378388.0,297.0]],PRIMEM["Greenwich",0.0],)"
     R"(UNIT["Degree",0.0174532925199433]],PROJECTION["Transverse_Mercator"],)"
     R"(PARAMETER["False_Easting",2520000.0],PARAMETER["False_Northing",0.0],)"
     R"(PARAMETER["Central_Meridian",15.0],PARAMETER["Scale_Factor",0.9996],)"
     R"(PARAMETER["Latitude_Of_Origin",0.0],UNIT["Meter",1.0]])"},
}};

std::string Join(std::string_view first, std::string_view second) {
    std::string joined(first);
    return joined += second;
}

}  // namespace

std::span<const std::string_view> SaveExtensions() {
    return kExtensions;
}

std::span<const CoordinateSystem> SaveCoordinateSystems() {
    return kCoordinateSystems;
}

int SaveExtensionOf(std::string_view name) {
    const int type = ImageTypeFromName(SplitPath(name).extension);
    const auto found = std::ranges::find_if(kExtensions, [type](std::string_view extension) {
        return type != kNoImageType && ImageTypeFromName(extension) == type;
    });
    return found == kExtensions.end() ? -1 : static_cast<int>(found - kExtensions.begin());
}

std::string WithAnExtension(std::string_view name, std::string_view extension) {
    return SaveExtensionOf(name) >= 0 ? std::string(name) : Join(name, extension);
}

std::string WithThisExtension(std::string_view name, std::string_view extension) {
    const int own = SaveExtensionOf(name);
    if (own < 0 || own == SaveExtensionOf(extension)) return WithAnExtension(name, extension);
    return Join(name.substr(0, name.size() - SplitPath(name).extension.size()), extension);
}

bool WriteProjectionFile(const std::string& image_name, const CoordinateSystem& system) {
    const PathParts parts = SplitPath(image_name);
    const auto file =
        ReplacingFile::Create(Join(Join(parts.folder, parts.base), std::string_view(".prj")));
    const auto* text = reinterpret_cast<const std::uint8_t*>(system.definition.data());
    return file && file->Write({text, system.definition.size()}) && file->Commit();
}

}  // namespace rastrel
