#include "image_work.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <limits>

#include "commands.h"
#include "reasons.h"

namespace rastrel_cli {

bool ImageWork::Fail(const std::string& name, const std::string& reason) {
    progress_.Wipe();
    ReportFailure(name, reason);
    return false;
}

void ImageWork::Remark(const std::string& name, const std::string& remark) {
    progress_.Wipe();
    fmt::print(stderr, "rastrel: {}: {}\n", name, remark);
}

bool ImageWork::Read(Image& image, const std::string& name, int type,
                     const std::optional<Rectangle>& part) {
    Say("reading " + name);
    if (!ReadPart(image, name, type, part)) return Fail(name, WhyPartNotRead(name, type, part));
    if (!image.HasPlainPixels()) return Fail(name, "its pixels are run-length coded");
    // The library computes with bytes, and a pixel of 16 bits has three channels in two of them.
    constexpr int kPackedChannels = 16;
    if (Rastrel_GetDepth(image.Handle()) == kPackedChannels && !image.ConvertDepth(24))
        return Fail(name, "memory does not suffice for it at 24 bits");
    return true;
}

bool ImageWork::ExpandColors(Image& image, const std::string& name) {
    if (Rastrel_GetDepth(image.Handle()) > 8) return true;
    return image.ConvertDepth(24) || Fail(name, "memory does not suffice for it at 24 bits");
}

bool ImageWork::AreOfOneSize(const Image& image, const std::string& name, const Image& first,
                             const std::string& first_name) {
    const int width = Rastrel_GetWidth(image.Handle());
    const int height = Rastrel_GetHeight(image.Handle());
    const int first_width = Rastrel_GetWidth(first.Handle());
    const int first_height = Rastrel_GetHeight(first.Handle());
    if (width == first_width && height == first_height) return true;
    return Fail(name, fmt::format("it has {} x {} pixels, and {} {} x {}", width, height,
                                  first_name, first_width, first_height));
}

bool ImageWork::Save(Image& image, const SavingOptions& options,
                     const std::optional<Georeference>& georeference) {
    Say("saving " + options.name);
    const std::string reason = SaveOnMap(image, options, georeference);
    return reason.empty() || Fail(options.name, reason);
}

bool Contains(const std::vector<PaletteEntry>& palette, PaletteEntry color) {
    return std::find(palette.begin(), palette.end(), color) != palette.end();
}

std::optional<int> SideOf(double pixels) {
    if (!(pixels < std::numeric_limits<int>::max())) return std::nullopt;
    return std::max(static_cast<int>(pixels), 1);
}

std::string WhyNoImageOf(int width, int height, int bits) {
    const double row_bytes = (static_cast<double>(width) * bits + 31) / 32 * 4;
    if (row_bytes * height <= kMostImageBytes) return "";
    return fmt::format("an image of {} x {} pixels is more than the library makes", width, height);
}

}  // namespace rastrel_cli
