#include "picture.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdio>
#include <filesystem>

#include "commands.h"
#include "reasons.h"
#include "types.h"

namespace rastrel_cli {

namespace {

namespace fs = std::filesystem;

bool SameFile(const std::string& a, const std::string& b) {
    std::error_code error;
    return fs::equivalent(a, b, error) && !error;
}

/// The library joins folder and name of companion files with a separator even where there is no
/// folder, and so takes them for files in the root.
std::string WithFolder(const std::string& name) {
    std::error_code error;
    const fs::path whole = fs::absolute(name, error);
    return error ? name : whole.string();
}

bool Create(const Image& image, const Picture& picture) {
    if (picture.bits == 24)
        return Rastrel_CreateFromByte24(image.Handle(), picture.pixels, picture.columns,
                                        picture.rows) == 1;
    if (Rastrel_CreateFromByte(image.Handle(), picture.pixels, picture.columns, picture.rows) != 1)
        return false;
    if (picture.palette.empty()) return true;
    std::vector<std::uint8_t> red;
    std::vector<std::uint8_t> green;
    std::vector<std::uint8_t> blue;
    for (const PaletteEntry& entry : picture.palette) {
        red.push_back(entry.red);
        green.push_back(entry.green);
        blue.push_back(entry.blue);
    }
    return Rastrel_SetPalette(image.Handle(), static_cast<int>(red.size()), red.data(),
                              green.data(), blue.data()) == 1;
}

}  // namespace

bool ReplacesInput(const std::string& input, const std::string& output) {
    const auto replaces_header = [&input, &output] {
        return SameFile(HeaderName(input), output) ||
               (IsRawGridName(output) && SameFile(HeaderName(input), HeaderName(output)));
    };
    const bool replaces = SameFile(input, output) || (IsRawGridName(input) && replaces_header());
    if (replaces) ReportFailure(output, "this would replace the input");
    return replaces;
}

bool SavePicture(const Picture& picture, const OutputOptions& output, const GridPlace& place) {
    const Image image;
    if (!Create(image, picture)) {
        ReportFailure(output.name,
                      fmt::format("an image of {} x {} pixels is more than the library makes",
                                  picture.columns, picture.rows));
        return false;
    }
    if (Rastrel_Save(image.Handle(), output.name.c_str(), output.type) != 1) {
        ReportFailure(output.name, WhyNotSaved(output.name, output.type, picture.bits));
        return false;
    }
    return SavePlace(output.name, place);
}

GridPlace PlaceOfPicture(const std::string& name) {
    GridPlace place;
    double x = 0.0;
    double y = 0.0;
    double size = 0.0;
    if (Rastrel_ReadGeoref(WithFolder(name).c_str(), &x, &y, &size) == 1 && std::isfinite(x) &&
        std::isfinite(y) && std::isfinite(size)) {
        place.x = x;
        place.y = y;
        place.cell_width = place.cell_height = size;
    }
    return place;
}

bool SavePlace(const std::string& name, const GridPlace& place) {
    const auto leave_out = [&name](const char* reason) {
        fmt::print(stderr, "rastrel: {}: no world file, because {}\n", name, reason);
        return true;
    };
    // Both the place and the world file tell of the first cell's centre, as other programs read
    // them.
    if (!place.HasPosition()) return true;
    if (!place.HasSquareCells())
        return leave_out("it states one pixel size, and the cells are not square");
    if (!TypeFromFileName(name))
        return leave_out("its name follows from the image's extension, and this is none");
    if (Rastrel_WriteGeoref(WithFolder(name).c_str(), place.x, place.y, place.cell_width) != 1) {
        ReportFailure(name, "its world file cannot be written");
        return false;
    }
    return true;
}

}  // namespace rastrel_cli
