#pragma once

#include <optional>
#include <string>

#include "georeference.h"
#include "image.h"
#include "progress_line.h"
#include "saving.h"

namespace rastrel_cli {

/// One run of a command that makes an image from others: its steps are shown on the progress line
/// and what fails is told on standard error.
class ImageWork {
  public:
    /// What is being done from now on.
    void Say(std::string what) { progress_.Say(std::move(what)); }
    /// Makes room on the terminal for output of another kind.
    void Pause() { progress_.Wipe(); }
    /// Tells a failure; always false.
    bool Fail(const std::string& name, const std::string& reason);
    /// Tells what is remarkable without being wrong.
    void Remark(const std::string& name, const std::string& remark);

    /// Reads an image, or a part, whose pixels can be computed with.
    [[nodiscard]] bool Read(Image& image, const std::string& name, int type,
                            const std::optional<Rectangle>& part = std::nullopt);
    /// Brings an image of 8 bits or fewer to 24.
    [[nodiscard]] bool ExpandColors(Image& image, const std::string& name);
    /// Whether two images are of one size; says where they are not.
    [[nodiscard]] bool AreOfOneSize(const Image& image, const std::string& name, const Image& first,
                                    const std::string& first_name);
    [[nodiscard]] bool Save(Image& image, const SavingOptions& options,
                            const std::optional<Georeference>& georeference);

  private:
    ProgressLine progress_;
};

/// Whether a palette has a colour.
[[nodiscard]] bool Contains(const std::vector<PaletteEntry>& palette, PaletteEntry color);

/// The side of an image of this many pixels: at least 1; nothing when it is beyond any image.
[[nodiscard]] std::optional<int> SideOf(double pixels);

/// Why no image of a size can be made; empty when it can, if memory suffices.
[[nodiscard]] std::string WhyNoImageOf(int width, int height, int bits);

}  // namespace rastrel_cli
