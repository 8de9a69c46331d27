#pragma once

#include <CLI/ConfigFwd.hpp>
#include <optional>
#include <string>

#include "image.h"

namespace rastrel_cli {

// Options that several commands have. What they store must outlive the parsing.

/// An option that takes a format's name or code and stores the code.
void AddTypeOption(CLI::App& command, const std::string& name, int& type,
                   const std::string& description);

/// An option that takes a finite number from least to most.
void AddNumberOption(CLI::App& command, const std::string& name, double& number, double least,
                     double most, const std::string& description);

/// --from, for the format of input images.
void AddInputTypeOption(CLI::App& command, int& type);

/// --compress, for a compression of TIFF files, which is stored as its tag value.
void AddCompressOption(CLI::App& command, std::optional<int>& compression);

/// --crop, for a rectangle.
void AddCropOption(CLI::App& command, std::optional<Rectangle>& crop);

}  // namespace rastrel_cli
