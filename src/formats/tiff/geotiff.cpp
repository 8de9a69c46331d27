#include "formats/tiff/geotiff.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>

#include "core/raster_image.h"
#include "formats/tiff/tiff_layout.h"

namespace rastrel {

namespace {

// Tags of GeoTIFF 1.1 (OGC 19-008).
constexpr std::uint32_t kModelPixelScale = 33550;
constexpr std::uint32_t kModelTiepoint = 33922;
constexpr std::uint32_t kModelTransformation = 34264;
constexpr std::uint32_t kGeoKeyDirectory = 34735;

constexpr std::uint16_t kRasterTypeKey = 1025;
constexpr std::uint16_t kRasterPixelIsPoint = 2;

/// The values of a tag of some type; none when the file does not have it, or with values of another
/// type: libtiff takes the type of tags that it does not know from the file.
template <class Value>
std::span<const Value> TagValues(const TiffInput& file, std::uint32_t tag, TIFFDataType type) {
    const TIFFField* field = TIFFFindField(file.Tiff(), tag, TIFF_ANY);
    if (field == nullptr || TIFFFieldDataType(field) != type || TIFFFieldPassCount(field) == 0)
        return {};
    const Value* values = nullptr;
    std::uint32_t count = 0;
    // A host may have told libtiff of the tag, with the narrower of two kinds of counts.
    if (TIFFFieldReadCount(field) == TIFF_VARIABLE) {
        std::uint16_t narrow = 0;
        TIFFGetField(file.Tiff(), tag, &narrow, &values);
        count = narrow;
    } else {
        TIFFGetField(file.Tiff(), tag, &count, &values);
    }
    if (values == nullptr) return {};
    return {values, count};
}

/// In files of the point kind a raster coordinate means a pixel's centre, else its upper-left
/// corner.
bool IsPixelPoint(const TiffInput& file) {
    // A head of four numbers, then four for each key; a place of 0: the fourth is the value.
    constexpr std::size_t kKeyNumbers = 4;
    auto keys = TagValues<std::uint16_t>(file, kGeoKeyDirectory, TIFF_SHORT);
    while (keys.size() >= 2 * kKeyNumbers) {
        keys = keys.subspan(kKeyNumbers);
        if (keys[0] == kRasterTypeKey && keys[1] == 0) return keys[3] == kRasterPixelIsPoint;
    }
    return false;
}

/// Raster coordinates to the ground, as the tags put it.
std::optional<QVgeotif> ReadModel(const TiffInput& file) {
    QVgeotif model;
    const auto matrix = TagValues<double>(file, kModelTransformation, TIFF_DOUBLE);
    if (matrix.size() >= 16) {
        model.x_column = matrix[0];
        model.x_row = matrix[1];
        model.x_origin = matrix[3];
        model.y_column = matrix[4];
        model.y_row = matrix[5];
        model.y_origin = matrix[7];
        return model;
    }
    const auto scale = TagValues<double>(file, kModelPixelScale, TIFF_DOUBLE);
    const auto tie = TagValues<double>(file, kModelTiepoint, TIFF_DOUBLE);
    if (scale.size() < 2 || tie.size() < 6) return std::nullopt;
    // A tie point: column, row and depth, then where they are on the ground.
    model.x_column = scale[0];
    model.y_row = -scale[1];
    model.x_origin = tie[3] - tie[0] * scale[0];
    model.y_origin = tie[4] + tie[1] * scale[1];
    return model;
}

bool IsUsable(const QVgeotif& geotif) {
    const std::array numbers = {
        geotif.x_column, geotif.x_row,    geotif.x_origin,      geotif.y_column,
        geotif.y_row,    geotif.y_origin, geotif.Determinant(), 1 / geotif.Determinant()};
    return std::all_of(numbers.begin(), numbers.end(), [](double v) { return std::isfinite(v); });
}

/// From the least to the largest of a coordinate that the image's four corners have.
struct Range {
    double least;
    double largest;
};
Range CornerRange(double origin, double by_column, double by_row, const Size& size) {
    const double left = -0.5 * by_column;
    const double right = (size.width - 0.5) * by_column;
    const double top = -0.5 * by_row;
    const double bottom = (size.height - 0.5) * by_row;
    return {origin + std::min(left, right) + std::min(top, bottom),
            origin + std::max(left, right) + std::max(top, bottom)};
}
Range XRange(const QVgeotif& geotif) {
    return CornerRange(geotif.x_origin, geotif.x_column, geotif.x_row, geotif.size);
}
Range YRange(const QVgeotif& geotif) {
    return CornerRange(geotif.y_origin, geotif.y_column, geotif.y_row, geotif.size);
}

}  // namespace

std::optional<QVgeotif> ReadGeoTags(const TiffInput& file) {
    ImageInfo info;
    std::optional<QVgeotif> geotif = ReadModel(file);
    if (!geotif || !ReadTiffInfo(file, info)) return std::nullopt;
    geotif->size = {info.width, info.height};
    if (!IsPixelPoint(file)) {
        // To the coordinates of centres, which lie half a pixel off the corners.
        geotif->x_origin += 0.5 * geotif->x_column + 0.5 * geotif->x_row;
        geotif->y_origin += 0.5 * geotif->y_column + 0.5 * geotif->y_row;
    }
    if (!IsUsable(*geotif)) return std::nullopt;
    return geotif;
}

int QVgeotif_ReadGeoref(QVgeotif& geotif, const std::string& name, double& x, double& y,
                        double& pixel_size, int /*reserved*/) {
    const auto file = TiffInput::Open(name);
    if (!file) return 0;
    const auto read = ReadGeoTags(*file);
    if (!read) return 0;
    geotif = *read;
    x = QVgeotif_Affine_xmin(geotif);
    y = QVgeotif_Affine_ymax(geotif);
    pixel_size =
        QVgeotif_AffineNeeded(geotif) != 0 ? QVgeotif_Affine_Cellsize(geotif) : geotif.x_column;
    return 1;
}

int QVgeotif_AffineNeeded(const QVgeotif& geotif) {
    const bool north_up =
        geotif.x_row == 0 && geotif.y_column == 0 && geotif.x_column > 0 && geotif.y_row < 0;
    return north_up ? 0 : 1;
}

double QVgeotif_Affine_Cellsize(const QVgeotif& geotif) {
    return std::sqrt(std::abs(geotif.Determinant()));
}

double QVgeotif_Affine_xmin(const QVgeotif& geotif) {
    return XRange(geotif).least;
}

double QVgeotif_Affine_ymin(const QVgeotif& geotif) {
    return YRange(geotif).least;
}

double QVgeotif_Affine_xmax(const QVgeotif& geotif) {
    return XRange(geotif).largest;
}

double QVgeotif_Affine_ymax(const QVgeotif& geotif) {
    return YRange(geotif).largest;
}

void QVgeotif_AffineDiretta(const QVgeotif& geotif, double* column_to_x, double* row_to_y) {
    const double column = *column_to_x;
    const double row = *row_to_y;
    *column_to_x = geotif.x_column * column + geotif.x_row * row + geotif.x_origin;
    *row_to_y = geotif.y_column * column + geotif.y_row * row + geotif.y_origin;
}

void QVgeotif_AffineInversa(const QVgeotif& geotif, double* x_to_column, double* y_to_row) {
    const double x = *x_to_column - geotif.x_origin;
    const double y = *y_to_row - geotif.y_origin;
    *x_to_column = (geotif.y_row * x - geotif.x_row * y) / geotif.Determinant();
    *y_to_row = (geotif.x_column * y - geotif.y_column * x) / geotif.Determinant();
}

std::optional<TiffGeoreference> ReadTiffGeoreference(const std::string& name) {
    QVgeotif geotif;
    TiffGeoreference place;
    if (QVgeotif_ReadGeoref(geotif, name, place.x, place.y, place.pixel_size, 0) == 0)
        return std::nullopt;
    return place;
}

}  // namespace rastrel
