#include "saving.h"

#include <fmt/format.h>

#include <algorithm>

#include "reasons.h"
#include "types.h"

namespace rastrel_cli {

namespace {

/// Sides are 16-bit fields of the file.
constexpr int kMostGifSide = 65535;

/// Makes a GIF file's image of any. The library would tell of some failures in a message box.
std::string PrepareForGif(Image& image, const std::string& name) {
    if (std::max(Rastrel_GetWidth(image.Handle()), Rastrel_GetHeight(image.Handle())) >
        kMostGifSide)
        return fmt::format("GIF images have at most {} columns and rows", kMostGifSide);
    if (Rastrel_GetDepth(image.Handle()) > 8 && !image.ConvertDepth(8))
        return "memory does not suffice to reduce its colours";
    return WhyNoFileThere(name);
}

}  // namespace

std::string Save(Image& image, const std::string& name, int type) {
    if ((type >= 0 ? type : TypeFromFileName(name).value_or(-1)) == RASTREL_TYPE_GIF) {
        std::string reason = PrepareForGif(image, name);
        if (!reason.empty()) return reason;
    }
    if (Rastrel_Save(image.Handle(), name.c_str(), type) == 1) return "";
    return WhyNotSaved(name, type, Rastrel_GetDepth(image.Handle()));
}

}  // namespace rastrel_cli
