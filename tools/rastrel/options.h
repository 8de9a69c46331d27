#pragma once

#include <CLI/ConfigFwd.hpp>
#include <optional>
#include <span>
#include <string>

#include "image.h"
#include "map_box.h"
#include "saving.h"

namespace rastrel_cli {

// Options that several commands have. What they store must outlive the parsing.

/// An option that takes a format's name or code and stores the code.
void AddTypeOption(CLI::App& command, const std::string& name, int& type,
                   const std::string& description);

/// An option that takes a finite number from least to most.
void AddNumberOption(CLI::App& command, const std::string& name, double& number, double least,
                     double most, const std::string& description);

/// The same for a number that may be left out.
void AddNumberOption(CLI::App& command, const std::string& name, std::optional<double>& number,
                     double least, double most, const std::string& description);

/// A word on the command line and what it stands for.
struct Choice {
    const char* word;
    int value;
};

/// An option that takes one of some words, which must outlive the parsing.
void AddChoiceOption(CLI::App& command, const std::string& name, int& value,
                     std::span<const Choice> choices, const std::string& description);

/// An option that takes a colour: red,green,blue.
void AddColorOption(CLI::App& command, const std::string& name, std::optional<PaletteEntry>& color,
                    const std::string& description);

/// An option that takes a rectangle of the map: xmin,ymin,xmax,ymax.
void AddBoxOption(CLI::App& command, const std::string& name, std::optional<MapBox>& box,
                  const std::string& description);

/// --cell-size, for the side of pixels in map units.
void AddCellSizeOption(CLI::App& command, std::optional<double>& cell_size,
                       const std::string& description);

/// --type, --quality and --compress, for the one file that a command saves.
void AddSavingOptions(CLI::App& command, SavingOptions& saving);
/// What speaks against them, once the file's name is known, as CLI::ValidationError.
void CheckSavingOptions(const SavingOptions& saving);

/// --from, for the format of input images.
void AddInputTypeOption(CLI::App& command, int& type);

/// --compress, for a compression of TIFF files, which is stored as its tag value.
void AddCompressOption(CLI::App& command, std::optional<int>& compression);

/// --crop, for a rectangle.
void AddCropOption(CLI::App& command, std::optional<Rectangle>& crop);

}  // namespace rastrel_cli
