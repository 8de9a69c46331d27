#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <unordered_map>

#include "commands.h"
#include "compression.h"
#include "georeference.h"
#include "image.h"
#include "options.h"
#include "progress_line.h"
#include "quality.h"
#include "reasons.h"
#include "saving.h"
#include "text.h"
#include "types.h"

namespace rastrel_cli {

namespace {

namespace fs = std::filesystem;

struct ConvertOptions {
    std::vector<std::string> inputs;
    std::string output;  ///< a file, or an existing folder
    int input_type = -1;
    int output_type = -1;
    std::optional<int> depth;
    std::optional<int> quality;
    std::optional<int> compression;  ///< a TIFF tag value
    std::optional<Rectangle> crop;
};

/// Where one input goes: the output itself or, when that is a folder, a file in it with the input's
/// name and the output format's extension.
std::string OutputName(const ConvertOptions& options, const std::string& input) {
    std::error_code error;
    if (!fs::is_directory(options.output, error))
        return SavedName(options.output, options.output_type);
    fs::path name = fs::path(input).filename();
    if (options.output_type >= 0)
        name.replace_extension(std::string(TypeName(options.output_type)));
    return (fs::path(options.output) / name).string();
}

/// The files that one run has made, so that none of them takes another's place.
class MadeFiles {
  public:
    void Add(const std::string& name) { made_[LowerCase(name)].push_back(name); }
    /// Whether the name is one of theirs, which on some systems does not depend on capitals.
    [[nodiscard]] bool Contain(const std::string& name) const {
        const auto alike = made_.find(LowerCase(name));
        return alike != made_.end() &&
               std::any_of(alike->second.begin(), alike->second.end(), [&name](const auto& made) {
                   std::error_code error;
                   return fs::equivalent(made, name, error) && !error;
               });
    }

  private:
    std::unordered_map<std::string, std::vector<std::string>> made_;
};

bool ConvertOne(const ConvertOptions& options, const std::string& input, ProgressLine& progress,
                const std::string& count, MadeFiles& made) {
    Image image;
    const auto fail = [&progress](const std::string& name, const std::string& reason) {
        progress.Wipe();
        ReportFailure(name, reason);
        return false;
    };
    const std::string output = OutputName(options, input);
    if (made.Contain(output))
        return fail(input, fmt::format("{} was just made from another input", output));
    progress.Say(fmt::format("{}reading {}", count, input));
    if (!ReadPart(image, input, options.input_type, options.crop))
        return fail(input, WhyPartNotRead(input, options.input_type, options.crop));
    const int source_depth = Rastrel_GetDepth(image.Handle());
    if (options.depth) {
        progress.Say(fmt::format("{}converting {} to {} bits", count, input, *options.depth));
        if (!image.ConvertDepth(*options.depth))
            return fail(input,
                        fmt::format("its pixels are run-length coded, or this version of the "
                                    "library cannot convert from {} to {} bits",
                                    source_depth, *options.depth));
    }
    // Before the output is written, which may replace the input's companion.
    auto georeference = ReadGeoreference(input);
    if (georeference && options.crop) georeference = OfPart(*georeference, *options.crop);
    progress.Say(fmt::format("{}saving {}", count, output));
    const std::string unsaved = SaveOnMap(
        image, {output, options.output_type, options.quality, options.compression}, georeference);
    made.Add(output);
    return unsaved.empty() || fail(output, unsaved);
}

bool Convert(const ConvertOptions& options) {
    ProgressLine progress;
    MadeFiles made;
    bool all_well = true;
    for (std::size_t i = 0; i < options.inputs.size(); ++i) {
        const std::string count =
            options.inputs.size() > 1 ? fmt::format("[{}/{}] ", i + 1, options.inputs.size()) : "";
        all_well = ConvertOne(options, options.inputs[i], progress, count, made) && all_well;
    }
    return all_well;
}

/// The last of the names is the output; several inputs need a folder there.
void SplitNames(ConvertOptions& options) {
    options.output = options.inputs.back();
    options.inputs.pop_back();
    std::error_code error;
    if (options.inputs.size() > 1 && !fs::is_directory(options.output, error))
        throw CLI::ValidationError(
            "convert", "several inputs need an existing folder as output, and \"" + options.output +
                           "\" is none");
}

/// Compressions belong to TIFF files.
void CheckCompression(const ConvertOptions& options) {
    if (!options.compression) return;
    std::error_code error;
    const bool is_folder = fs::is_directory(options.output, error);
    const int named =
        TypeFromFileName(is_folder ? options.inputs.front() : options.output).value_or(-1);
    if ((options.output_type >= 0 ? options.output_type : named) != RASTREL_TYPE_TIFF)
        throw CLI::ValidationError("--compress", "the output is no TIFF file");
}

}  // namespace

void AddConvertCommand(CLI::App& app, Job& job) {
    const auto options = std::make_shared<ConvertOptions>();
    CLI::App* command = app.add_subcommand("convert", "convert images to other formats and depths");
    AddInputTypeOption(*command, options->input_type);
    command
        ->add_option("file", options->inputs,
                     "inputs, then the output: a file or an existing folder")
        ->required()
        ->expected(2, -1);
    AddTypeOption(*command, "--type", options->output_type,
                  "the output's format, not by its extension");
    command->add_option("--depth", options->depth, "bits a pixel: 1, 8, 24 or 32")
        ->check(CLI::IsMember({1, 8, 24, 32}));
    command->add_option("--quality", options->quality,
                        "of JPEG output, 1 to 100 (75); of JPEG 2000, 1 to 99, else without loss");
    AddCompressOption(*command, options->compression);
    AddCropOption(*command, options->crop);
    command->callback([options, &job] {
        SplitNames(*options);
        CheckCompression(*options);
        job = [options] { return Convert(*options); };
    });
}

}  // namespace rastrel_cli
