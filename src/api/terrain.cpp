// Terrain derivatives, smoothing and masks of the host's own arrays, whose pointers and sizes are
// trusted.

#include "process/terrain.h"
#include "process/hypsometric.h"
#include "process/masking.h"
#include "process/smoothing.h"
#include "rastrel.h"

using namespace rastrel;

namespace {

/// How many samples an array has that needs no more to be known of.
std::size_t CountOf(int rows, int columns) {
    return Grid<uint8_t>(nullptr, rows, columns).Count();
}

}  // namespace

void RASTREL_CALL Rastrel_HillshadingByte(uint8_t* output, const uint8_t* input, int rows,
                                          int columns, double altitude, double azimuth,
                                          double scale) {
    Hillshade(Grid(input, rows, columns), altitude, azimuth, scale, output);
}

void RASTREL_CALL Rastrel_HillshadingShort(uint8_t* output, const int16_t* input, int rows,
                                           int columns, double altitude, double azimuth,
                                           double scale) {
    Hillshade(Grid(input, rows, columns), altitude, azimuth, scale, output);
}

void RASTREL_CALL Rastrel_HillshadingInt(uint8_t* output, const int32_t* input, int rows,
                                         int columns, double altitude, double azimuth,
                                         double scale) {
    Hillshade(Grid(input, rows, columns), altitude, azimuth, scale, output);
}

void RASTREL_CALL Rastrel_HillshadingFloat(uint8_t* output, const float* input, int rows,
                                           int columns, double altitude, double azimuth,
                                           double scale) {
    Hillshade(Grid(input, rows, columns), altitude, azimuth, scale, output);
}

void RASTREL_CALL Rastrel_SlopeByte(uint8_t* output, const uint8_t* input, int rows, int columns,
                                    double scale) {
    Slope(Grid(input, rows, columns), scale, output);
}

void RASTREL_CALL Rastrel_SlopeShort(uint8_t* output, const int16_t* input, int rows, int columns,
                                     double scale) {
    Slope(Grid(input, rows, columns), scale, output);
}

void RASTREL_CALL Rastrel_SlopeInt(uint8_t* output, const int32_t* input, int rows, int columns,
                                   double scale) {
    Slope(Grid(input, rows, columns), scale, output);
}

void RASTREL_CALL Rastrel_SlopeFloat(uint8_t* output, const float* input, int rows, int columns,
                                     double scale) {
    Slope(Grid(input, rows, columns), scale, output);
}

void RASTREL_CALL Rastrel_AspectByte(uint8_t* output, const uint8_t* input, int rows, int columns,
                                     double scale) {
    Aspect(Grid(input, rows, columns), scale, output);
}

void RASTREL_CALL Rastrel_AspectShort(uint8_t* output, const int16_t* input, int rows, int columns,
                                      double scale) {
    Aspect(Grid(input, rows, columns), scale, output);
}

void RASTREL_CALL Rastrel_AspectInt(uint8_t* output, const int32_t* input, int rows, int columns,
                                    double scale) {
    Aspect(Grid(input, rows, columns), scale, output);
}

void RASTREL_CALL Rastrel_AspectFloat(uint8_t* output, const float* input, int rows, int columns,
                                      double scale) {
    Aspect(Grid(input, rows, columns), scale, output);
}

void RASTREL_CALL Rastrel_Ipsometry(uint8_t* output, const uint8_t* indices, const uint8_t* shading,
                                    double weight, int rows, int columns, const uint32_t* palette) {
    ColorHypsometrically(indices, shading, CountOf(rows, columns), weight, palette, output);
}

void RASTREL_CALL Rastrel_Convolute3x3Byte(uint8_t* output, const uint8_t* input, int rows,
                                           int columns) {
    Smooth(Grid(input, rows, columns), output);
}

void RASTREL_CALL Rastrel_Convolute3x3Short(int16_t* output, const int16_t* input, int rows,
                                            int columns) {
    Smooth(Grid(input, rows, columns), output);
}

void RASTREL_CALL Rastrel_Convolute3x3Int(int32_t* output, const int32_t* input, int rows,
                                          int columns) {
    Smooth(Grid(input, rows, columns), output);
}

void RASTREL_CALL Rastrel_Convolute3x3Float(float* output, const float* input, int rows,
                                            int columns) {
    Smooth(Grid(input, rows, columns), output);
}

void RASTREL_CALL Rastrel_Mask(uint8_t* output, const uint8_t* input, const uint8_t* mask, int rows,
                               int columns) {
    Mask(input, mask, CountOf(rows, columns), output);
}

void RASTREL_CALL Rastrel_Mask24(uint8_t* output, const uint8_t* input, const uint8_t* mask,
                                 int rows, int columns, uint32_t color, int invert) {
    const std::array<uint8_t, 3> pixel = {static_cast<uint8_t>(color >> 16),
                                          static_cast<uint8_t>(color >> 8),
                                          static_cast<uint8_t>(color)};
    Mask24(input, mask, CountOf(rows, columns), pixel, invert != 0, output);
}
