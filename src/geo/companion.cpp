#include "geo/companion.h"

#include <algorithm>
#include <array>

#include "core/ascii.h"
#include "core/path_parts.h"

namespace rastrel {

namespace {

using enum GeoreferencePlace;

struct CompanionRow {
    std::string_view image_extension;
    std::string_view companion;  ///< an extension, or a marker
    GeoreferencePlace place = kWorldFile;
    bool is_written = true;  ///< else a world file without extension is
};

constexpr std::array<CompanionRow, 16> kRows = {{
    {"tif", ".tfw"},
    {"bmp", ".bpw"},
    {"gif", ".gfw"},
    {"jpg", ".jgw"},
    {"jp2", ".j2w"},
    {"png", ".pgw"},
    {"sid", ".sdw", kWorldFile, false},
    {"ecw", "ECWxxx", kEcwFile, false},
    {"qvi", ".qiw"},
    {"bil", ".hdr", kRawHeader},
    {"bip", ".hdr", kRawHeader},
    {"bsq", ".hdr", kRawHeader},
    {"fot", "FOTxxx", kShortAimaHeader},
    {"map", "MAPxxx", kShortAimaHeader},
    {"gfc", "GFCxxx", kLongAimaHeader},
    {"gaf", "GAFxxx", kLongAimaHeader},
}};

/// Drive and folder without the separator that ends them.
std::string_view WithoutSeparator(std::string_view folder) {
    if (!folder.empty() && (folder.back() == '\\' || folder.back() == '/')) folder.remove_suffix(1);
    return folder;
}

}  // namespace

Companion CompanionOf(std::string_view image_name) {
    const PathParts parts = SplitPath(image_name);
    Companion companion;
    companion.base = std::string(WithoutSeparator(parts.folder)) + "\\" + std::string(parts.base);
    const auto row = std::find_if(kRows.begin(), kRows.end(), [&](const CompanionRow& r) {
        return EqualsInAnyCase(parts.ExtensionText(), r.image_extension);
    });
    if (row == kRows.end()) return companion;
    (row->companion.front() == '.' ? companion.extension : companion.marker) = row->companion;
    companion.read_from = row->place;
    if (row->is_written) {
        companion.written_to = row->place;
        companion.written_extension = companion.extension;
    }
    return companion;
}

}  // namespace rastrel
