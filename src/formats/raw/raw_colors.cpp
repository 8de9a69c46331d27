#include "formats/raw/raw_colors.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "core/line_reader.h"
#include "core/text_fields.h"

namespace rastrel {

namespace {

constexpr std::size_t kMostColorLineCharacters = 200;

}  // namespace

Palette ReadColorFile(ByteSource& source) {
    std::array<Color, Palette::kMostEntries> colors;
    std::ranges::copy(Palette::Grey().Entries(), colors.begin());
    LineReader lines(source, kMostColorLineCharacters);
    while (const auto line = lines.NextLine()) {
        FieldReader fields(*line);
        // One after the other: each reads on where the one before has stopped.
        const auto index = fields.Integer();
        const auto red = fields.Integer();
        const auto green = fields.Integer();
        const auto blue = fields.Integer();
        if (!index || !red || !green || !blue) continue;
        if (*index < 0 || static_cast<std::size_t>(*index) >= colors.size()) continue;
        colors[static_cast<std::size_t>(*index)] = {.red = static_cast<std::uint8_t>(*red),
                                                    .green = static_cast<std::uint8_t>(*green),
                                                    .blue = static_cast<std::uint8_t>(*blue)};
    }
    return Palette(colors);
}

std::string ColorFileText(const Palette& palette) {
    std::string text;
    int index = 0;
    for (const Color& color : palette.Entries()) {
        text += std::to_string(index++) + "  " + std::to_string(color.red) + ' ' +
                std::to_string(color.green) + ' ' + std::to_string(color.blue) + '\n';
    }
    return text;
}

}  // namespace rastrel
