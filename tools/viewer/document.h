#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "../rastrel/georeference.h"
#include "overviews.h"
#include "owned_image.h"
#include "view_geometry.h"

namespace rastrel_view {

/// A picture with everything that showing it takes.
struct Document {
    std::string name;   ///< file or address; empty for what came from elsewhere
    std::string title;  ///< what it is called in the window
    std::unique_ptr<OwnedImage> image;
    /// The picture as it looks on the window's background, where the image itself cannot be drawn
    /// in parts: one with a transparent colour, or with coded pixels; else null.
    std::unique_ptr<OwnedImage> flat;
    bool is_coded = false;  ///< pixel functions would see codes
    std::vector<std::unique_ptr<OwnedImage>> overviews;
    std::optional<rastrel_cli::Georeference> georeference;

    [[nodiscard]] Size PixelSize() const { return {image->Width(), image->Height()}; }
    [[nodiscard]] int Levels() const { return static_cast<int>(overviews.size()) + 1; }
    /// What to draw of a level as LevelFor numbers them.
    [[nodiscard]] const OwnedImage& Level(int level) const;
};

/// Reads a file or address. Null when it cannot be read, with the reason in why, and when it is
/// given up, without one.
[[nodiscard]] std::unique_ptr<Document> ReadDocument(const std::string& name,
                                                     const Progress& progress, std::string& why);

/// Makes an image that is there ready to be shown: finds out how it can be drawn, and makes its
/// overviews.
void PrepareDocument(Document& document, const Progress& progress);

/// The end of a name behind its last slash.
[[nodiscard]] std::string FileTitle(const std::string& name);

/// A pixel's place, value and place on the map, as the status bar shows it. spot is the place of
/// the pointer in image coordinates.
[[nodiscard]] std::string PixelText(const Document& document, Pixel pixel, Point spot);
/// Size and depth.
[[nodiscard]] std::string SizeText(const Document& document);
/// All that is known of the picture, in lines.
[[nodiscard]] std::string InformationText(const Document& document);

}  // namespace rastrel_view
