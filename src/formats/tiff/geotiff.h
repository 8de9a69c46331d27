#pragma once

#include <optional>
#include <string>

#include "core/geometry.h"
#include "formats/tiff/tiff_file.h"

namespace rastrel {

/// The georeference that a TIFF's own tags tell: how pixel coordinates (column and row, from the
/// upper left, pixel centres at whole numbers) map to the ground, and the inverse.
struct QVgeotif {
    // x = x_column * column + x_row * row + x_origin, and y likewise.
    double x_column = 1;
    double x_row = 0;
    double x_origin = 0;
    double y_column = 0;
    double y_row = -1;
    double y_origin = 0;
    Size size;  ///< of the image, in pixels

    [[nodiscard]] double Determinant() const { return x_column * y_row - x_row * y_column; }
};

/// Reads a file's pixel scale and tie point, or its transformation matrix. Non-zero when the file
/// carries a georeference; then x and y are the upper-left corner of the upper-left pixel, or of
/// the box around a turned image, and pixel_size the side of a pixel on the ground. The last
/// argument is reserved: 0. The georeference goes into the first argument.
[[nodiscard]] int QVgeotif_ReadGeoref(QVgeotif& geotif, const std::string& name, double& x,
                                      double& y, double& pixel_size, int reserved);
/// The same for a file that is open.
[[nodiscard]] std::optional<QVgeotif> ReadGeoTags(const TiffInput& file);

/// Non-zero for an image that is rotated, skewed or flipped against a north-up one; pixels that are
/// not square are no reason.
[[nodiscard]] int QVgeotif_AffineNeeded(const QVgeotif& geotif);
/// The side of a square of a pixel's area on the ground.
[[nodiscard]] double QVgeotif_Affine_Cellsize(const QVgeotif& geotif);
// The box around the image on the ground, to the outer edges of its pixels.
[[nodiscard]] double QVgeotif_Affine_xmin(const QVgeotif& geotif);
[[nodiscard]] double QVgeotif_Affine_ymin(const QVgeotif& geotif);
[[nodiscard]] double QVgeotif_Affine_xmax(const QVgeotif& geotif);
[[nodiscard]] double QVgeotif_Affine_ymax(const QVgeotif& geotif);
/// From column and row to ground coordinates, in place.
void QVgeotif_AffineDiretta(const QVgeotif& geotif, double* column_to_x, double* row_to_y);
/// From ground coordinates to column and row, in place.
void QVgeotif_AffineInversa(const QVgeotif& geotif, double* x_to_column, double* y_to_row);

/// The corner and pixel size of the image that reading a TIFF delivers.
struct TiffGeoreference {
    double x = 0;           ///< left edge of the leftmost pixels, in map units
    double y = 0;           ///< upper edge of the uppermost pixels
    double pixel_size = 1;  ///< side of a pixel; of pixels that are not square, the width
};

/// What a TIFF's own tags tell of its place; none when they tell nothing usable.
[[nodiscard]] std::optional<TiffGeoreference> ReadTiffGeoreference(const std::string& name);

}  // namespace rastrel
