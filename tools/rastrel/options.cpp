#include "options.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <charconv>

#include "compression.h"
#include "text.h"
#include "types.h"

namespace rastrel_cli {

namespace {

/// "x,y,width,height" with a width and height of at least 1.
std::optional<Rectangle> ParseRectangle(const std::string& text) {
    Rectangle rectangle;
    const char* at = text.data();
    const char* end = at + text.size();
    for (int* field : {&rectangle.x, &rectangle.y, &rectangle.width, &rectangle.height}) {
        if (field != &rectangle.x && (at == end || *at++ != ',')) return std::nullopt;
        const auto parsed = std::from_chars(at, end, *field);
        if (parsed.ec != std::errc()) return std::nullopt;
        at = parsed.ptr;
    }
    if (at != end || rectangle.width < 1 || rectangle.height < 1) return std::nullopt;
    return rectangle;
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
                const auto parsed = ParseFinite(text);
                if (!parsed || *parsed < least || *parsed > most)
                    throw CLI::ValidationError(
                        name, fmt::format("\"{}\" is no number from {} to {}", text, least, most));
                number = *parsed;
            },
            fmt::format("{} ({})", description, number))
        ->type_name("NUMBER");
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
