#include "options.h"

#include <CLI/CLI.hpp>
#include <charconv>

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

void AddInputTypeOption(CLI::App& command, int& type) {
    AddTypeOption(command, "--from", type, "the inputs' format, not by their extensions");
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
