#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstdio>
#include <filesystem>

#include "commands.h"
#include "types.h"

namespace {

using namespace rastrel_cli;

constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

constexpr const char* kExamples = R"(Examples:
  rastrel info sheet.bmp scan.qvi
  rastrel convert sheet.bmp sheet.qvi
  rastrel convert --crop 100,50,640,480 --depth 24 sheet.bmp detail.bmp
  rastrel convert --type qvi north.bmp south.bmp archive/
  rastrel palette sheet.bmp

Rectangles are x,y,width,height in pixels from the upper left corner.
Formats go by their extension or code: bmp 0, jpg 1, gif 2, png 3, tif 4, qvi 5,
bil 6, bip 7, bsq 8, sid 9, ecw 10, fot 11, map 12, gfc 13, gaf 14, jp2 15.
This version reads and writes bmp and qvi.
Exit code: 0 all went well, 1 something failed, 2 wrong usage.)";

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

/// An option that takes a format's name or code and stores the code.
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

/// The last of the names is the output; several inputs need a folder there.
void SplitNames(std::vector<std::string> names, ConvertOptions& options) {
    options.output = names.back();
    names.pop_back();
    options.inputs = std::move(names);
    std::error_code error;
    if (options.inputs.size() > 1 && !std::filesystem::is_directory(options.output, error))
        throw CLI::ValidationError(
            "convert", "several inputs need an existing folder as output, and \"" + options.output +
                           "\" is none");
}

int Run(int argc, char** argv) {
    CLI::App app("Raster images for geographic applications.", "rastrel");
    app.set_version_flag("--version", "rastrel " RASTREL_VERSION);
    app.footer(kExamples);
    app.require_subcommand(1);

    std::vector<std::string> names;
    int input_type = -1;
    const auto add_command = [&](const char* name, const char* description) {
        CLI::App* command = app.add_subcommand(name, description);
        AddTypeOption(*command, "--from", input_type,
                      "the inputs' format, not by their extensions");
        return command;
    };

    CLI::App* info = add_command("info", "show size, depth, format and palette of images");
    info->add_option("file", names, "images")->required();

    CLI::App* palette = add_command("palette", "list the palettes of images");
    palette->add_option("file", names, "images")->required();

    ConvertOptions options;
    CLI::App* convert = add_command("convert", "convert images to other formats and depths");
    convert->add_option("file", names, "inputs, then the output: a file or an existing folder")
        ->required()
        ->expected(2, -1);
    AddTypeOption(*convert, "--type", options.output_type,
                  "the output's format, not by its extension");
    convert->add_option("--depth", options.depth, "bits a pixel: 1, 8, 24 or 32")
        ->check(CLI::IsMember({1, 8, 24, 32}));
    convert->add_option("--quality", options.quality, "the format's code for quality");
    AddCropOption(*convert, options.crop);

    try {
        app.parse(argc, argv);
        if (convert->parsed()) SplitNames(names, options);
    } catch (const CLI::ParseError& error) {
        const bool asked_for = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success);
        app.exit(error);
        return asked_for ? 0 : kExitUsage;
    }
    options.input_type = input_type;
    const bool all_well = info->parsed()      ? ShowInfo(names, input_type)
                          : palette->parsed() ? ShowPalette(names, input_type)
                                              : Convert(options);
    return all_well ? 0 : kExitFailed;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "rastrel: %s\n", error.what());
        return kExitFailed;
    }
}
