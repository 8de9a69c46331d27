#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <memory>

#include "commands.h"
#include "compression.h"
#include "image_work.h"
#include "options.h"

namespace rastrel_cli {

namespace {

constexpr int kDeviations = 0;
constexpr int kTails = 2;
constexpr std::array<Choice, 4> kMethods = {
    {{"deviations", kDeviations}, {"range", 1}, {"tails", kTails}, {"equalize", 3}}};

constexpr const char* kNotes = R"(Each channel is stretched by itself:
  deviations  the mean less k deviations becomes 0, the mean plus k deviations 255 (k 2)
  range       the least value becomes 0, the greatest 255
  tails       of the pixels k percent become 0 and k percent 255 (k 1)
  equalize    all values become about equally frequent
Of images with a palette the palette is changed, of grey ones the pixels.)";

struct BalanceOptions {
    std::string input;
    SavingOptions saving;
    int input_type = -1;
    int method = kTails;
    std::optional<double> k;
};

using Table = std::array<std::uint8_t, 256>;

/// Puts the pixels themselves through a table, so that a grey image stays one.
bool StretchGreys(const Image& image, const Table& table) {
    const int width = Rastrel_GetWidth(image.Handle());
    const int height = Rastrel_GetHeight(image.Handle());
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width) *
                                     static_cast<std::size_t>(height));
    if (Rastrel_GetImageByte(image.Handle(), pixels.data(), 8, 0, 0, width, height) != 1)
        return false;
    std::transform(pixels.begin(), pixels.end(), pixels.begin(),
                   [&table](std::uint8_t level) { return table[level]; });
    return Rastrel_CreateFromByte(image.Handle(), pixels.data(), width, height) == 1;
}

bool Balance(const BalanceOptions& options) {
    ImageWork work;
    Image image;
    if (!work.Read(image, options.input, options.input_type)) return false;
    work.Say("balancing " + options.input);
    Table red{};
    Table green{};
    Table blue{};
    const double usual = options.method == kDeviations ? 2.0 : 1.0;
    const bool is_done =
        Rastrel_CalculateStretching(image.Handle(), options.method, options.k.value_or(usual),
                                    red.data(), green.data(), blue.data()) == 1 &&
        (IsGrey(image)
             ? StretchGreys(image, red)
             : Rastrel_ApplyStretching(image.Handle(), red.data(), green.data(), blue.data()) == 1);
    if (!is_done) return work.Fail(options.input, "memory does not suffice to balance it");
    return work.Save(image, options.saving, ReadGeoreference(options.input));
}

/// Each method takes numbers of its own, or none.
void CheckK(const BalanceOptions& options) {
    if (!options.k) return;
    if (options.method != kDeviations && options.method != kTails)
        throw CLI::ValidationError("--k", "this method takes none");
    if (options.method == kDeviations && *options.k <= 0)
        throw CLI::ValidationError("--k", "the deviations must be more than 0");
    constexpr double kHalf = 50;
    if (options.method == kTails && *options.k > kHalf)
        throw CLI::ValidationError("--k", "each tail is at most 50 percent");
}

}  // namespace

void AddBalanceCommand(CLI::App& app, Job& job) {
    const auto options = std::make_shared<BalanceOptions>();
    CLI::App* command =
        app.add_subcommand("balance", "stretch the contrast of an image's channels");
    AddInputTypeOption(*command, options->input_type);
    command->add_option("input", options->input, "an image")->required();
    command->add_option("output", options->saving.name, "what becomes of it")->required();
    AddChoiceOption(*command, "--method", options->method, kMethods, "what is stretched");
    AddNumberOption(*command, "--k", options->k, 0.0, 1e6, "deviations, or percent of each tail");
    AddSavingOptions(*command, options->saving);
    command->footer(kNotes);
    command->callback([options, &job] {
        CheckSavingOptions(options->saving);
        CheckK(*options);
        job = [options] { return Balance(*options); };
    });
}

}  // namespace rastrel_cli
