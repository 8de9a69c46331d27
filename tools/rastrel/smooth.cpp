#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <span>
#include <type_traits>
#include <variant>

#include "commands.h"
#include "grid.h"
#include "grid_files.h"
#include "options.h"
#include "picture.h"
#include "progress_line.h"
#include "text.h"

namespace rastrel_cli {

namespace {

namespace fs = std::filesystem;

constexpr const char* kNotes = R"(
Each cell becomes the mean of its neighbourhood of nine, in which it weighs 4 of 12. The outermost
cells, and those without data or beside such cells, stay as they are. The output has the input's type
of samples.)";

struct SmoothOptions {
    std::string input;
    std::string output;
    int times = 1;
};

/// A file that takes its name when it is complete, and until then may vanish.
class NewFile {
  public:
    explicit NewFile(std::string name) : name_(std::move(name)), part_(name_ + ".part") {}
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile() {
        std::error_code ignored;
        if (written_) fs::remove(part_, ignored);
    }
    [[nodiscard]] bool Write(std::span<const char> bytes) {
        std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(part_.c_str(), "wb"),
                                                             &std::fclose);
        if (!file) return false;
        written_ = true;
        const bool all = std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
        return std::fclose(file.release()) == 0 && all;
    }
    [[nodiscard]] bool TakeName() {
        std::error_code error;
        fs::rename(part_, name_, error);
        written_ = static_cast<bool>(error);
        return !error;
    }

  private:
    std::string name_;
    std::string part_;
    bool written_ = false;
};

template <class Sample>
void Smooth(const Grid& grid, Array<Sample>& samples, int times) {
    const Array<std::uint8_t> valid = ValidNeighborhoods(grid);
    Array<Sample> smoothed(grid.rows, grid.columns);
    for (int i = 0; i < times; ++i) {
        ArrayFunctions<Sample>::kSmooth(smoothed.data(), samples.data(), grid.rows, grid.columns);
        for (std::size_t at = 0; at < valid.size(); ++at) {
            if (valid[at] == 0) smoothed[at] = samples[at];
        }
        std::swap(samples, smoothed);
    }
}

bool SaveGrid(const Grid& grid, const std::string& name) {
    const std::string header_text = RawGridHeaderText(grid);
    NewFile header(fs::path(name).replace_extension(".hdr").string());
    NewFile data(name);
    const bool written = std::visit(
                             [&data](const auto& samples) {
                                 return data.Write({reinterpret_cast<const char*>(samples.data()),
                                                    samples.size() * sizeof(samples[0])});
                             },
                             grid.samples) &&
                         header.Write(header_text);
    return written && data.TakeName() && header.TakeName();
}

bool RunSmooth(const SmoothOptions& options) {
    ProgressLine progress;
    progress.Say("smoothing " + options.input);
    if (ReplacesInput(options.input, options.output)) return false;
    std::string why;
    std::optional<Grid> grid = ReadGrid(options.input, why);
    if (!grid) {
        ReportFailure(options.input, why);
        return false;
    }
    std::visit([&](auto& samples) { Smooth(*grid, samples, options.times); }, grid->samples);
    if (SaveGrid(*grid, options.output)) return true;
    ReportFailure(options.output, "it or its header cannot be written");
    return false;
}

}  // namespace

void AddSmoothCommand(CLI::App& app, Job& job) {
    const auto options = std::make_shared<SmoothOptions>();
    CLI::App* command = app.add_subcommand("smooth", "smooth an elevation grid");
    command->add_option("input", options->input, "grid: bil, bip, bsq or flt with hdr, asc, grd")
        ->required();
    command->add_option("output", options->output, "grid: bil, with a hdr beside it")
        ->required()
        ->check([](const std::string& name) {
            const bool is_bil = LowerCase(fs::path(name).extension().string()) == ".bil";
            return is_bil ? "" : "smoothed grids are written as .bil";
        });
    command->add_option("--times", options->times, "smooths several times over (1)")
        ->check(CLI::Range(1, 1000));
    command->footer(kNotes);
    command->callback([options, &job] { job = [options] { return RunSmooth(*options); }; });
}

}  // namespace rastrel_cli
