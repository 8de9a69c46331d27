#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <filesystem>
#include <limits>

#include "commands.h"
#include "compression.h"
#include "options.h"
#include "progress_line.h"
#include "quality.h"
#include "reasons.h"
#include "types.h"

namespace rastrel_cli {

namespace {

struct StackOptions {
    std::vector<std::string> inputs;  ///< from the top down
    std::string output;
    bool is_jpeg = false;            ///< the output's format: JPEG, else TIFF
    std::optional<int> quality;      ///< of JPEG
    std::optional<int> compression;  ///< of TIFF, a tag value
    std::optional<int> depth;
};

/// The tall file while it is being made: one that is not finished is removed.
class TallFile {
  public:
    explicit TallFile(const StackOptions& options) : options_(options) {}
    TallFile(const TallFile&) = delete;
    TallFile& operator=(const TallFile&) = delete;
    ~TallFile() {
        if (writer_ == 0) return;
        static_cast<void>(Close());
        std::error_code error;
        std::filesystem::remove(options_.output, error);
    }

    /// Adds an image, the first of which decides on the form of all. A reason when it fails.
    [[nodiscard]] std::string Add(const Image& image, int total_height) {
        if (writer_ != 0) {
            if (image.Palette() != first_.Palette())
                return "its palette is not the first image's; see --depth 24";
            const int appended = options_.is_jpeg ? Rastrel_JPEGAppend(writer_, image.Handle())
                                                  : Rastrel_TIFFAppend(writer_, image.Handle());
            return appended == 1
                       ? ""
                       : "its depth is not the first image's, or the disk does not take it";
        }
        std::string reason = WhyNotBegun(image, total_height);
        if (!reason.empty()) return reason;
        Rastrel_Copy(first_.Handle(), image.Handle());
        const char* name = options_.output.c_str();
        const int width = Rastrel_GetWidth(image.Handle());
        writer_ = options_.is_jpeg
                      ? Rastrel_JPEGOpen(name, Quality(), width, total_height, image.Handle())
                      : Rastrel_TIFFOpen(name, Compression(), width, total_height, image.Handle());
        return writer_ != 0 ? ""
                            : WhyNotSaved(options_.output,
                                          options_.is_jpeg ? RASTREL_TYPE_JPEG : RASTREL_TYPE_TIFF,
                                          Rastrel_GetDepth(image.Handle()));
    }
    [[nodiscard]] bool Finish() {
        if (Close() != 1) return false;
        writer_ = 0;
        return true;
    }

  private:
    [[nodiscard]] int Close() const {
        return options_.is_jpeg ? Rastrel_JPEGClose(writer_, 0) : Rastrel_TIFFClose(writer_);
    }
    /// Why a file cannot be begun with an image; empty when there is no reason.
    [[nodiscard]] std::string WhyNotBegun(const Image& image, int total_height) const {
        if (!options_.is_jpeg) return WhyNotCompressed(image, Compression());
        constexpr int kMostRows = 65500;
        if (total_height > kMostRows)
            return fmt::format("a JPEG file has at most {} rows, and these are {}", kMostRows,
                               total_height);
        return "";
    }
    [[nodiscard]] int Quality() const { return options_.quality.value_or(kUsualJpegQuality); }
    [[nodiscard]] int Compression() const {
        constexpr int kNone = 1;
        return options_.compression.value_or(kNone);
    }

    const StackOptions& options_;
    Image first_;
    std::intptr_t writer_ = 0;
};

/// The sizes of all inputs, from their headers: they must be of one width.
bool AddUpHeights(const std::vector<std::string>& inputs, int& total) {
    int first_width = 0;
    std::int64_t sum = 0;
    for (const std::string& name : inputs) {
        int width = 0;
        int height = 0;
        if (Rastrel_ReadInfo(name.c_str(), &width, &height, nullptr) != 1) {
            ReportFailure(name, WhyNotRead(name, -1));
            return false;
        }
        if (first_width == 0) first_width = width;
        if (width != first_width) {
            ReportFailure(name, fmt::format("it is {} pixels wide, and the first image {}", width,
                                            first_width));
            return false;
        }
        sum += height;
    }
    if (sum > std::numeric_limits<int>::max()) {
        ReportFailure(inputs.back(), "the images are too high together");
        return false;
    }
    total = static_cast<int>(sum);
    return true;
}

/// The depth that bands are brought to unless another is asked for; 0: their own. Bands of grey
/// would make a TIFF file that says neither its depth nor that it is grey: as colours every program
/// shows them. JPEG has nothing but greys and colours.
int UsualDepth(const StackOptions& options, const Image& image) {
    return options.is_jpeg || IsGrey(image) ? 24 : 0;
}

/// Writes one tall file from images of one width, which are read one at a time.
bool Stack(const StackOptions& options) {
    int total = 0;
    if (!AddUpHeights(options.inputs, total)) return false;
    ProgressLine progress;
    TallFile file(options);
    const auto fail = [&progress](const std::string& name, const std::string& reason) {
        progress.Wipe();
        ReportFailure(name, reason);
        return false;
    };
    for (std::size_t i = 0; i < options.inputs.size(); ++i) {
        const std::string& name = options.inputs[i];
        progress.Say(fmt::format("[{}/{}] adding {}", i + 1, options.inputs.size(), name));
        Image image;
        if (Rastrel_Read(image.Handle(), name.c_str(), -1) != 1)
            return fail(name, WhyNotRead(name, -1));
        const int depth = options.depth.value_or(UsualDepth(options, image));
        if (depth != 0 && !image.ConvertDepth(depth))
            return fail(name, fmt::format("it cannot be converted to {} bits", depth));
        if (options.is_jpeg && depth == 8 && !IsGrey(image))
            return fail(name, "its palette is not grey; see --depth 24");
        const std::string reason = file.Add(image, total);
        if (!reason.empty()) return fail(name, reason);
    }
    return file.Finish() || fail(options.output, "the disk does not take it");
}

}  // namespace

void AddStackCommand(CLI::App& app, Job& job) {
    const auto options = std::make_shared<StackOptions>();
    CLI::App* command =
        app.add_subcommand("stack", "put images one below the other into a TIFF or JPEG file");
    command->add_option("file", options->inputs, "inputs from the top down, then the output")
        ->required()
        ->expected(2, -1);
    AddCompressOption(*command, options->compression);
    command->add_option("--depth", options->depth, "bits a pixel: 1, 8 or 24")
        ->check(CLI::IsMember({1, 8, 24}));
    command->add_option("--quality", options->quality, "of JPEG output, 1 to 99 (75)");
    command->callback([options, &job] {
        options->output = options->inputs.back();
        options->inputs.pop_back();
        options->is_jpeg = TypeFromFileName(options->output) == RASTREL_TYPE_JPEG;
        if (options->is_jpeg && options->compression)
            throw CLI::ValidationError("--compress", "the output is no TIFF file");
        if (options->is_jpeg && options->depth == 1)
            throw CLI::ValidationError("--depth", "a JPEG file has 8 or 24 bits");
        job = [options] { return Stack(*options); };
    });
}

}  // namespace rastrel_cli
