#include <fmt/format.h>

#include <algorithm>

#include "commands.h"
#include "georeference.h"
#include "image.h"
#include "reasons.h"
#include "text.h"
#include "types.h"

namespace rastrel_cli {

namespace {

/// Reads as little as tells the format and palette: one pixel, where the format allows that.
bool ReadForInfo(const Image& image, const std::string& name, int type) {
    // Fetched once, and no more.
    if (IsAddress(name)) return Rastrel_Read(image.Handle(), name.c_str(), type) == 1;
    return Rastrel_ReadPartial(image.Handle(), name.c_str(), type, 0, 0, 1, 1) == 1 ||
           Rastrel_Read(image.Handle(), name.c_str(), type) == 1;
}

/// A description of several lines as one.
std::string OneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

bool ShowOne(const std::string& name, int type) {
    const Image image;
    if (!ReadForInfo(image, name, type)) {
        ReportFailure(name, WhyNotRead(name, type));
        return false;
    }
    int width = Rastrel_GetWidth(image.Handle());
    int height = Rastrel_GetHeight(image.Handle());
    int bits = Rastrel_GetDepth(image.Handle());
    if (!IsAddress(name) &&
        (type >= 0 || Rastrel_ReadInfo(name.c_str(), &width, &height, &bits) != 1)) {
        // A type that the name does not tell: only reading all of it gives the size.
        if (Rastrel_Read(image.Handle(), name.c_str(), type) != 1) {
            ReportFailure(name, WhyNotRead(name, type));
            return false;
        }
        width = Rastrel_GetWidth(image.Handle());
        height = Rastrel_GetHeight(image.Handle());
        bits = Rastrel_GetDepth(image.Handle());
    }
    fmt::print("{}\n", name);
    fmt::print("  type         {}\n", TypeName(Rastrel_GetImageType(image.Handle())));
    fmt::print("  description  {}\n", OneLine(image.Description()));
    fmt::print("  size         {} x {} pixels\n", width, height);
    fmt::print("  depth        {} bits\n", bits);
    const std::size_t colors = image.Palette().size();
    if (colors > 0) fmt::print("  palette      {} colours\n", colors);
    PaletteEntry clear;
    if (Rastrel_GetTransparentColor(image.Handle(), &clear.red, &clear.green, &clear.blue) == 1)
        fmt::print("  transparent  {} {} {}\n", clear.red, clear.green, clear.blue);
    if (const auto georeference = ReadGeoreference(name))
        PrintGeoreference(*georeference, width, height);
    return true;
}

}  // namespace

void AddInfoCommand(CLI::App& app, Job& job) {
    AddCommandOnImages(app, job, "info", "show size, depth, format and palette of images", ShowOne);
}

}  // namespace rastrel_cli
