#include "picture.h"

#include <fmt/format.h>

#include <cstdio>
#include <filesystem>

#include "commands.h"
#include "georeference.h"
#include "quality.h"
#include "reasons.h"
#include "types.h"

namespace rastrel_cli {

namespace {

namespace fs = std::filesystem;

bool SameFile(const std::string& a, const std::string& b) {
    std::error_code error;
    return fs::equivalent(a, b, error) && !error;
}

bool Create(const Image& image, const Picture& picture) {
    if (picture.bits == 24)
        return Rastrel_CreateFromByte24(image.Handle(), picture.pixels, picture.columns,
                                        picture.rows) == 1;
    if (Rastrel_CreateFromByte(image.Handle(), picture.pixels, picture.columns, picture.rows) != 1)
        return false;
    return picture.palette.empty() || image.SetPalette(picture.palette);
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
    SetQualityFor(image, output.name, output.type);
    if (Rastrel_Save(image.Handle(), output.name.c_str(), output.type) != 1) {
        ReportFailure(output.name, WhyNotSaved(output.name, output.type, picture.bits));
        return false;
    }
    return SavePlace(output.name, place);
}

GridPlace PlaceOfPicture(const std::string& name) {
    GridPlace place;
    if (const auto georeference = ReadGeoreference(name)) {
        place.x = georeference->x;
        place.y = georeference->y;
        place.cell_width = place.cell_height = georeference->pixel_size;
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
    if (const auto failure = WriteGeoreference(name, {place.x, place.y, place.cell_width})) {
        ReportFailure(name, *failure);
        return false;
    }
    return true;
}

}  // namespace rastrel_cli
