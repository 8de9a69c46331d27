#include "core/format_table.h"

#include <algorithm>

#include "core/ascii.h"

namespace rastrel {

const FormatRow* FindFormat(int type) {
    const auto rows = FormatTable();
    const auto row = std::find_if(rows.begin(), rows.end(),
                                  [type](const FormatRow& r) { return r.type == type; });
    return row == rows.end() ? nullptr : &*row;
}

int ImageTypeFromName(std::string_view name) {
    const std::size_t point = name.rfind('.');
    if (point == std::string_view::npos || point + 1 == name.size()) return kNoImageType;
    const std::string_view extension = name.substr(point + 1);
    for (const FormatRow& row : FormatTable()) {
        for (const std::string_view known : row.extensions) {
            if (EqualsInAnyCase(extension, known)) return row.type;
        }
    }
    return kNoImageType;
}

int ImageTypeFromContent(ByteSource& source) {
    for (const FormatRow& row : FormatTable()) {
        source.Seek(0);
        if (row.recognises != nullptr && row.recognises(source)) return row.type;
    }
    return kNoImageType;
}

}  // namespace rastrel
