#include "saving.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

#include "compression.h"
#include "quality.h"
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
    if (EffectiveType(name, type) == RASTREL_TYPE_GIF) {
        std::string reason = PrepareForGif(image, name);
        if (!reason.empty()) return reason;
    }
    if (Rastrel_Save(image.Handle(), name.c_str(), type) == 1) return "";
    return WhyNotSaved(name, type, Rastrel_GetDepth(image.Handle()));
}

std::string SavedName(const std::string& name, int type) {
    const bool is_raw = type >= RASTREL_TYPE_BIL && type <= RASTREL_TYPE_BSQ;
    if (!is_raw || TypeFromFileName(name) == type) return name;
    return std::filesystem::path(name).replace_extension(std::string(TypeName(type))).string();
}

std::string SaveOnMap(Image& image, const SavingOptions& options,
                      const std::optional<Georeference>& georeference) {
    SetQualityFor(image, options.name, options.type, options.quality);
    if (options.compression) {
        // The library would fall back to one that it can write.
        std::string reason = WhyNotCompressed(image, *options.compression);
        if (!reason.empty()) return reason;
        Rastrel_SetQuality(image.Handle(), *options.compression);
    }
    std::string reason = Save(image, options.name, options.type);
    if (!reason.empty() || !georeference) return reason;
    return WriteGeoreference(SavedName(options.name, options.type), *georeference).value_or("");
}

}  // namespace rastrel_cli
