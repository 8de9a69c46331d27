#include "options.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <limits>

#include "compression.h"
#include "text.h"
#include "types.h"

namespace rastrel_cli {

namespace {

constexpr int kIntMost = std::numeric_limits<int>::max();

/// Whole numbers with commas between them, as many as there is room for.
bool ParseWholeNumbers(const std::string& text, int least, int most, std::span<int> numbers) {
    const auto parts = SplitAtCommas(text);
    if (parts.size() != numbers.size()) return false;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const auto number = ParseWhole(parts[i], least, most);
        if (!number) return false;
        numbers[i] = static_cast<int>(*number);
    }
    return true;
}

/// "x,y,width,height" with a width and height of at least 1.
std::optional<Rectangle> ParseRectangle(const std::string& text) {
    std::array<int, 4> numbers{};
    if (!ParseWholeNumbers(text, -kIntMost, kIntMost, numbers)) return std::nullopt;
    const auto [x, y, width, height] = numbers;
    if (width < 1 || height < 1) return std::nullopt;
    return Rectangle{x, y, width, height};
}

std::optional<PaletteEntry> ParseColor(const std::string& text) {
    std::array<int, 3> channels{};
    if (!ParseWholeNumbers(text, 0, 255, channels)) return std::nullopt;
    return PaletteEntry{static_cast<std::uint8_t>(channels[0]),
                        static_cast<std::uint8_t>(channels[1]),
                        static_cast<std::uint8_t>(channels[2])};
}

std::optional<MapBox> ParseBox(const std::string& text) {
    const auto numbers = ParseNumbers(text);
    if (numbers.size() != 4) return std::nullopt;
    const MapBox box = {numbers[0], numbers[1], numbers[2], numbers[3]};
    return box.x_min < box.x_max && box.y_min < box.y_max ? std::optional(box) : std::nullopt;
}

double ParseNumberOption(const std::string& name, const std::string& text, double least,
                         double most) {
    const auto parsed = ParseFinite(text);
    if (!parsed || *parsed < least || *parsed > most)
        throw CLI::ValidationError(
            name, fmt::format("\"{}\" is no number from {} to {}", text, least, most));
    return *parsed;
}

}  // namespace

void AddTypeOption(CLI::App& command, const std::string& name, int& type,
                   const std::string& description) {
    command.add_option_function<std::string>(
        name,
        [name, &type](const std::string& text) {
            const auto parsed = TypeFromText(text);
            if (!parsed) throw CLI::ValidationError(name, "\"" + text + "\" is no image format");
            type = *parsed;
        },
        description);
}

void AddNumberOption(CLI::App& command, const std::string& name, double& number, double least,
                     double most, const std::string& description) {
    command
        .add_option_function<std::string>(
            name,
            [name, &number, least, most](const std::string& text) {
                number = ParseNumberOption(name, text, least, most);
            },
            fmt::format("{} ({})", description, number))
        ->type_name("NUMBER");
}

void AddNumberOption(CLI::App& command, const std::string& name, std::optional<double>& number,
                     double least, double most, const std::string& description) {
    command
        .add_option_function<std::string>(
            name,
            [name, &number, least, most](const std::string& text) {
                number = ParseNumberOption(name, text, least, most);
            },
            description)
        ->type_name("NUMBER");
}

void AddChoiceOption(CLI::App& command, const std::string& name, int& value,
                     std::span<const Choice> choices, const std::string& description) {
    std::string words;
    std::string usual;
    for (const Choice& choice : choices) {
        words += (words.empty() ? "" : ", ") + std::string(choice.word);
        if (choice.value == value) usual = choice.word;
    }
    command
        .add_option_function<std::string>(
            name,
            [name, &value, choices, words](const std::string& text) {
                const auto chosen = std::find_if(
                    choices.begin(), choices.end(),
                    [&text](const Choice& choice) { return choice.word == LowerCase(text); });
                if (chosen == choices.end())
                    throw CLI::ValidationError(name, "\"" + text + "\" is none of " + words);
                value = chosen->value;
            },
            fmt::format("{}: {} ({})", description, words, usual))
        ->type_name("WORD");
}

void AddColorOption(CLI::App& command, const std::string& name, std::optional<PaletteEntry>& color,
                    const std::string& description) {
    command
        .add_option_function<std::string>(
            name,
            [name, &color](const std::string& text) {
                color = ParseColor(text);
                if (!color)
                    throw CLI::ValidationError(
                        name, "\"" + text + "\" is no red,green,blue from 0 to 255");
            },
            description)
        ->type_name("R,G,B");
}

void AddBoxOption(CLI::App& command, const std::string& name, std::optional<MapBox>& box,
                  const std::string& description) {
    command
        .add_option_function<std::string>(
            name,
            [name, &box](const std::string& text) {
                box = ParseBox(text);
                if (!box)
                    throw CLI::ValidationError(name, "\"" + text + "\" is no xmin,ymin,xmax,ymax");
            },
            description + ": xmin,ymin,xmax,ymax in map units")
        ->type_name("BOX");
}

void AddCellSizeOption(CLI::App& command, std::optional<double>& cell_size,
                       const std::string& description) {
    constexpr double kLeast = 1e-12;
    constexpr double kMost = 1e12;
    AddNumberOption(command, "--cell-size", cell_size, kLeast, kMost, description);
}

void AddSavingOptions(CLI::App& command, SavingOptions& saving) {
    AddTypeOption(command, "--type", saving.type, "the output's format, not by its extension");
    command.add_option("--quality", saving.quality,
                       "of JPEG output, 1 to 100 (75); of JPEG 2000, 1 to 99, else without loss");
    AddCompressOption(command, saving.compression);
}

void CheckSavingOptions(const SavingOptions& saving) {
    if (saving.compression && EffectiveType(saving.name, saving.type) != RASTREL_TYPE_TIFF)
        throw CLI::ValidationError("--compress", "the output is no TIFF file");
}

void AddInputTypeOption(CLI::App& command, int& type) {
    AddTypeOption(command, "--from", type, "the inputs' format, not by their extensions");
}

void AddCompressOption(CLI::App& command, std::optional<int>& compression) {
    command.add_option_function<std::string>(
        "--compress",
        [&compression](const std::string& text) {
            compression = CompressionFromText(text);
            if (!compression)
                throw CLI::ValidationError("--compress", "\"" + text + "\" is no compression");
        },
        "of TIFF output: none, packbits, lzw, deflate, g3, g4 or jpeg");
}

void AddCropOption(CLI::App& command, std::optional<Rectangle>& crop) {
    command.add_option_function<std::string>(
        "--crop",
        [&crop](const std::string& text) {
            crop = ParseRectangle(text);
            if (!crop)
                throw CLI::ValidationError("--crop", "\"" + text + "\" is no x,y,width,height");
        },
        "only this rectangle: x,y,width,height");
}

}  // namespace rastrel_cli
