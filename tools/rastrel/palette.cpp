#include <fmt/format.h>

#include "commands.h"
#include "image.h"
#include "reasons.h"

namespace rastrel_cli {

namespace {

bool ShowOne(const std::string& name, int type) {
    const Image image;
    if (Rastrel_Read(image.Handle(), name.c_str(), type) != 1) {
        ReportFailure(name, WhyNotRead(name, type));
        return false;
    }
    const std::vector<PaletteEntry> entries = image.Palette();
    if (entries.empty()) {
        ReportFailure(name, "it has no palette");
        return false;
    }
    fmt::print("# {}: {} colours (index red green blue)\n", name, entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i)
        fmt::print("{} {} {} {}\n", i, entries[i].red, entries[i].green, entries[i].blue);
    return true;
}

}  // namespace

void AddPaletteCommand(CLI::App& app, Job& job) {
    AddCommandOnImages(app, job, "palette", "list the palettes of images", ShowOne);
}

}  // namespace rastrel_cli
