#include <fmt/format.h>

#include "commands.h"
#include "image.h"
#include "reasons.h"
#include "types.h"

namespace rastrel_cli {

namespace {

/// Reads as little as tells the format and palette: one pixel, where the format allows that.
bool ReadForInfo(const Image& image, const std::string& name, int type) {
    return Rastrel_ReadPartial(image.Handle(), name.c_str(), type, 0, 0, 1, 1) == 1 ||
           Rastrel_Read(image.Handle(), name.c_str(), type) == 1;
}

/// A description of two lines as one.
std::string OneLine(std::string text) {
    const std::size_t line_end = text.find('\n');
    if (line_end != std::string::npos) text[line_end] = ' ';
    return text;
}

bool ShowOne(const std::string& name, int type) {
    const Image image;
    if (!ReadForInfo(image, name, type)) {
        ReportFailure(name, WhyNotRead(name, type));
        return false;
    }
    int width = 0;
    int height = 0;
    int bits = 0;
    if (type >= 0 || Rastrel_ReadInfo(name.c_str(), &width, &height, &bits) != 1) {
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
    return true;
}

}  // namespace

void AddInfoCommand(CLI::App& app, Job& job) {
    AddCommandOnImages(app, job, "info", "show size, depth, format and palette of images", ShowOne);
}

}  // namespace rastrel_cli
