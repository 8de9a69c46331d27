#include "geo/world_file.h"

#include "core/line_reader.h"
#include "geo/georeference_text.h"

namespace rastrel {

FoundGeoreference ReadWorldFile(ByteSource& source) {
    FoundGeoreference found = {.success = true, .x = {}, .y = {}, .pixel_size = {}};
    LineReader lines(source, kMostLineCharacters);
    for (int number = 1; number <= 6; ++number) {
        const auto line = lines.NextLine();
        if (!line) break;
        const auto value = FieldReader(*line).Number();
        if (number == 1) found.pixel_size = value;
        if (number == 5) found.x = value;
        if (number == 6) found.y = value;
    }
    return found;
}

std::string WorldFileText(const Georeference& georeference) {
    std::string text;
    for (const double value : {georeference.pixel_size, 0.0, 0.0, -georeference.pixel_size,
                               georeference.x, georeference.y})
        text += CoordinateText(value) + "\n";
    return text;
}

}  // namespace rastrel
