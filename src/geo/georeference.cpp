#include "geo/georeference.h"

#include <cmath>

#include "core/ascii.h"
#include "core/byte_source.h"
#include "core/path_parts.h"
#include "formats/tiff/geotiff.h"
#include "geo/aima_header.h"
#include "geo/companion.h"
#include "geo/header_keys.h"
#include "geo/world_file.h"

namespace rastrel {

namespace {

FoundGeoreference ReadFromImage(const std::string& image_name, AimaHeader kind) {
    const auto image = FileSource::Open(image_name);
    return image ? ReadAimaGeoreference(*image, kind) : FoundGeoreference{};
}

/// The companion's own extension decides how it is read: that of "a.hdr.xyz" is "a.hdr".
FoundGeoreference ReadFromCompanion(const std::string& image_name, const std::string& companion) {
    const std::string_view extension = SplitPath(companion).ExtensionText();
    const auto source = FileSource::Open(ExistingInEitherCase(companion));
    if (source) {
        return EqualsInAnyCase(extension, "hdr") ? ReadHeaderGeoreference(*source)
                                                 : ReadWorldFile(*source);
    }
    if (EqualsInAnyCase(extension, "tfw")) {
        if (const auto tags = ReadTiffGeoreference(image_name))
            return FoundGeoreference::Of({tags->x, tags->y, tags->pixel_size});
    }
    return FoundGeoreference::None();
}

bool WriteWorldFile(const std::string& name, const Georeference& georeference) {
    const std::string text = WorldFileText(georeference);
    const auto sink = FileSink::Create(name);
    return sink && sink->Write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}) &&
           sink->Commit();
}

}  // namespace

FoundGeoreference ReadGeoreference(const std::string& image_name) {
    const Companion companion = CompanionOf(image_name);
    switch (companion.read_from) {
        case GeoreferencePlace::kEcwFile:
            return FoundGeoreference::None();  // only the library of its maker reads such files
        case GeoreferencePlace::kShortAimaHeader:
            return ReadFromImage(image_name, AimaHeader::kShort);
        case GeoreferencePlace::kLongAimaHeader:
            return ReadFromImage(image_name, AimaHeader::kLong);
        default:
            return ReadFromCompanion(image_name, companion.Name());
    }
}

bool WriteGeoreference(const std::string& image_name, const Georeference& georeference) {
    if (!std::isfinite(georeference.x) || !std::isfinite(georeference.y) ||
        !std::isfinite(georeference.pixel_size))
        return false;
    const Companion companion = CompanionOf(image_name);
    switch (companion.written_to) {
        case GeoreferencePlace::kRawHeader:
            return WriteHeaderGeoreference(ExistingInEitherCase(companion.WrittenName()),
                                           georeference);
        case GeoreferencePlace::kShortAimaHeader:
            return WriteAimaGeoreference(image_name, AimaHeader::kShort, georeference);
        case GeoreferencePlace::kLongAimaHeader:
            return WriteAimaGeoreference(image_name, AimaHeader::kLong, georeference);
        default:
            return WriteWorldFile(companion.WrittenName(), georeference);
    }
}

}  // namespace rastrel
