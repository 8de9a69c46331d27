#include "document.h"

#include <fmt/format.h>

#include <array>
#include <cstdint>

#include "../rastrel/reasons.h"
#include "flatten.h"

namespace rastrel_view {

namespace {

/// Run-length coded pixels refuse to be cropped, even to all of them.
bool HasCodedPixels(const OwnedImage& image) {
    const int bits = image.Bits();
    if (bits != 4 && bits != 8) return false;
    return Rastrel_ExtractPortion(image.Handle(), 0, 0, image.Width(), image.Height()) != 1;
}

bool HasTransparentColor(const OwnedImage& image) {
    return Rastrel_GetTransparentColor(image.Handle(), nullptr, nullptr, nullptr) == 1;
}

std::string ColorText(const Document& document, Pixel pixel) {
    const OwnedImage& image = document.is_coded ? *document.flat : *document.image;
    std::array<std::uint8_t, 4> color = {};
    if (Rastrel_GetImageByte(image.Handle(), color.data(), 32, pixel.column, pixel.row, 1, 1) != 1)
        return "";
    const auto [blue, green, red, alpha] = color;
    std::string text = fmt::format("RGB {}, {}, {}", red, green, blue);
    if (image.Bits() == 32) text += fmt::format("   alpha {}", alpha);
    if (image.Bits() > 8) return text;
    const int stored_row = image.Height() - 1 - pixel.row;
    return fmt::format("index {}   {}", Rastrel_GetIndex(image.Handle(), pixel.column, stored_row),
                       text);
}

std::string MapText(const rastrel_cli::Georeference& georeference, Point spot) {
    const auto [x, y] = ToMap({georeference.x, georeference.y}, georeference.pixel_size, spot);
    const int decimals = MapDecimals(georeference.pixel_size);
    return fmt::format("map {:.{}f}, {:.{}f}", x, decimals, y, decimals);
}

}  // namespace

const OwnedImage& Document::Level(int level) const {
    if (level > 0) return *overviews[static_cast<std::size_t>(level) - 1];
    return flat ? *flat : *image;
}

std::unique_ptr<Document> ReadDocument(const std::string& name, const Progress& progress,
                                       std::string& why) {
    auto document = std::make_unique<Document>();
    document->name = name;
    document->title = FileTitle(name);
    document->image = std::make_unique<OwnedImage>();
    if (Rastrel_Read(document->image->Handle(), name.c_str(), RASTREL_TYPE_NONE) != 1) {
        why = rastrel_cli::WhyNotRead(name, RASTREL_TYPE_NONE);
        return nullptr;
    }
    document->georeference = rastrel_cli::ReadGeoreference(name);
    if (!progress(0)) return nullptr;
    PrepareDocument(*document, progress);
    return document;
}

void PrepareDocument(Document& document, const Progress& progress) {
    document.is_coded = HasCodedPixels(*document.image);
    if (document.is_coded || HasTransparentColor(*document.image))
        document.flat = Flattened(*document.image);
    // Without a flat copy there is no telling what the pixels look like but by drawing them.
    if (document.is_coded && !document.flat) return;
    document.overviews = MakeOverviews(document.Level(0), progress);
}

std::string FileTitle(const std::string& name) {
    const std::size_t slash = name.find_last_of("/\\");
    return slash == std::string::npos || slash + 1 == name.size() ? name : name.substr(slash + 1);
}

std::string PixelText(const Document& document, Pixel pixel, Point spot) {
    std::string text = fmt::format("{}, {}", pixel.column, pixel.row);
    if (!document.is_coded || document.flat) text += "   " + ColorText(document, pixel);
    if (document.georeference) text += "   " + MapText(*document.georeference, spot);
    return text;
}

std::string SizeText(const Document& document) {
    return fmt::format("{} x {}, {} bit", document.image->Width(), document.image->Height(),
                       document.image->Bits());
}

std::string InformationText(const Document& document) {
    std::array<char, 512> description = {};
    Rastrel_GetDescription(document.image->Handle(), description.data(),
                           static_cast<int>(description.size()));
    std::string text = fmt::format(
        "{}\n\n{}\n{} x {} pixels", document.name.empty() ? document.title : document.name,
        description.data(), document.image->Width(), document.image->Height());
    if (!document.georeference) return text + "\nno georeference";
    const auto& [x, y, pixel_size] = *document.georeference;
    return text + fmt::format("\nupper left {}, {}\npixel size {}", x, y, pixel_size);
}

}  // namespace rastrel_view
