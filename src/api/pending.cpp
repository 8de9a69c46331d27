// Exports whose families are not built yet: each returns its failure value and touches nothing.
// A family that is built moves to a file of its own.

#include "rastrel.h"

// Display and desktop

int RASTREL_CALL Rastrel_Draw(int /*handle*/, RastrelDC /*device*/, int /*x*/, int /*y*/,
                              int /*width*/, int /*height*/, int /*source_x*/, int /*source_y*/) {
    return 0;
}

int RASTREL_CALL Rastrel_Stretch(int /*handle*/, RastrelDC /*device*/, int /*x*/, int /*y*/,
                                 int /*width*/, int /*height*/, int /*source_x*/, int /*source_y*/,
                                 int /*source_width*/, int /*source_height*/) {
    return 0;
}

RastrelBitmap RASTREL_CALL Rastrel_Copy2HBitmap(int /*handle*/) {
    return nullptr;
}

int RASTREL_CALL Rastrel_CopyToClipboard(int /*handle*/, RastrelWindow /*window*/) {
    return 0;
}

int RASTREL_CALL Rastrel_CreateFromBitmap(int /*handle*/, RastrelBitmap /*bitmap*/) {
    return 0;
}

int RASTREL_CALL Rastrel_CreateFromWindow(int /*handle*/, RastrelWindow /*window*/) {
    return 0;
}

int RASTREL_CALL Rastrel_CreateFromWindowEX(int /*handle*/, RastrelWindow /*window*/, int /*x*/,
                                            int /*y*/, int /*width*/, int /*height*/,
                                            int /*client*/) {
    return 0;
}

int RASTREL_CALL Rastrel_DialogSave(int /*handle*/, char* /*buffer*/, int* /*type*/) {
    return 0;
}

// Colour reduction and GIF

int RASTREL_CALL Rastrel_Conv24To8(int /*handle*/) {
    return 0;
}

int RASTREL_CALL Rastrel_Conv24To8_Precalcolata(int /*handle*/, int /*count*/,
                                                const uint8_t* /*red*/, const uint8_t* /*green*/,
                                                const uint8_t* /*blue*/) {
    return 0;
}

int RASTREL_CALL Rastrel_Tiff2Gif(const char* /*tiff_name*/, const char* /*gif_name*/) {
    return 0;
}

// TIFF and JPEG by bands, QuickBird scenes

intptr_t RASTREL_CALL Rastrel_TIFFOpen(const char* /*name*/, int /*compression*/, int /*width*/,
                                       int /*height*/, int /*handle*/) {
    return 0;
}

int RASTREL_CALL Rastrel_TIFFAppend(intptr_t /*writer*/, int /*handle*/) {
    return 0;
}

int RASTREL_CALL Rastrel_TIFFClose(intptr_t /*writer*/) {
    return 0;
}

intptr_t RASTREL_CALL Rastrel_JPEGOpen(const char* /*name*/, int /*quality*/, int /*width*/,
                                       int /*height*/, int /*handle*/) {
    return 0;
}

int RASTREL_CALL Rastrel_JPEGAppend(intptr_t /*writer*/, int /*handle*/) {
    return 0;
}

int RASTREL_CALL Rastrel_JPEGClose(intptr_t /*writer*/, int /*reserved*/) {
    return 0;
}

int RASTREL_CALL Rastrel_QuickBird_Open(const char* /*name*/) {
    return 0;
}

int RASTREL_CALL Rastrel_QuickBird_ReadRow(uint8_t* /*row*/, const uint8_t* /*red_table*/,
                                           const uint8_t* /*green_table*/,
                                           const uint8_t* /*blue_table*/) {
    return 0;
}

int RASTREL_CALL Rastrel_QuickBird_Close(void) {
    return 0;
}

// Compositing

int RASTREL_CALL Rastrel_Fusion(int /*first*/, int /*second*/, int /*key_flag*/, int /*red*/,
                                int /*green*/, int /*blue*/, double /*weight*/) {
    return 0;
}

int RASTREL_CALL Rastrel_FusionEx(int /*first*/, int /*second*/, int /*key_flag*/, int /*red*/,
                                  int /*green*/, int /*blue*/, double /*weight*/, int /*mode*/) {
    return 0;
}

int RASTREL_CALL Rastrel_ApplyMask(int /*target*/, int /*mask*/, int /*invert*/, int /*red*/,
                                   int /*green*/, int /*blue*/) {
    return 0;
}

int RASTREL_CALL Rastrel_Luminance(int /*handle*/, int /*key_flag*/, int /*red*/, int /*green*/,
                                   int /*blue*/, int /*offset*/) {
    return 0;
}

int RASTREL_CALL Rastrel_Modify(int /*target*/, int /*source*/, int /*red*/, int /*green*/,
                                int /*blue*/, int /*new_red*/, int /*new_green*/, int /*new_blue*/,
                                int /*tolerance*/) {
    return 0;
}

// Resizing and mosaics

int RASTREL_CALL Rastrel_Resize(int /*target*/, int /*source*/, int /*width*/, int /*height*/,
                                int /*mode*/) {
    return 0;
}

int RASTREL_CALL Rastrel_ResizeEx(int /*target*/, int /*source*/, int /*x*/, int /*y*/,
                                  int /*width*/, int /*height*/, int /*new_width*/,
                                  int /*new_height*/) {
    return 0;
}

int RASTREL_CALL Rastrel_Mosaica(int /*target*/, int /*source*/, double /*target_x*/,
                                 double /*target_y*/, double /*target_size*/, double /*source_x*/,
                                 double /*source_y*/, double /*source_size*/, int /*key_flag*/,
                                 int /*red*/, int /*green*/, int /*blue*/) {
    return 0;
}

int RASTREL_CALL Rastrel_MosaicaWithClipping(int /*target*/, int /*source*/, double /*target_x*/,
                                             double /*target_y*/, double /*target_size*/,
                                             double /*source_x*/, double /*source_y*/,
                                             double /*source_size*/, int /*key_flag*/, int /*red*/,
                                             int /*green*/, int /*blue*/, const double* /*clip*/) {
    return 0;
}

int RASTREL_CALL Rastrel_MosaicaWithMask(int /*target*/, int /*source*/, int /*mask*/,
                                         double /*target_x*/, double /*target_y*/,
                                         double /*target_size*/, double /*source_x*/,
                                         double /*source_y*/, double /*source_size*/,
                                         int /*key_flag*/, int /*red*/, int /*green*/,
                                         int /*blue*/) {
    return 0;
}

// Rectification

int RASTREL_CALL Rastrel_AffineReset(void) {
    return 0;
}

int RASTREL_CALL Rastrel_AffineAddControlPoint(double /*column*/, double /*row*/, double /*x*/,
                                               double /*y*/) {
    return 0;
}

int RASTREL_CALL Rastrel_AffineCalculate(void) {
    return 0;
}

int RASTREL_CALL Rastrel_AffineApplicaDiretta(double* /*column_to_x*/, double* /*row_to_y*/) {
    return 0;
}

int RASTREL_CALL Rastrel_AffineApplicaInversa(double* /*x_to_column*/, double* /*y_to_row*/) {
    return 0;
}

int RASTREL_CALL Rastrel_AffineTransform(int /*target*/, int /*source*/, double /*xmin*/,
                                         double /*ymin*/, double /*xmax*/, double /*ymax*/,
                                         double /*cell_size*/, int /*mode*/) {
    return 0;
}

int RASTREL_CALL Rastrel_AffineTransformEx(int /*target*/, int /*source*/, double /*xmin*/,
                                           double /*ymin*/, double /*xmax*/, double /*ymax*/,
                                           double /*cell_size*/, int /*mode*/, int /*x*/, int /*y*/,
                                           int /*width*/, int /*height*/,
                                           const RastrelProgress* /*progress*/) {
    return 0;
}

int RASTREL_CALL Rastrel_AffineTransformExBackColor(
    int /*target*/, int /*source*/, double /*xmin*/, double /*ymin*/, double /*xmax*/,
    double /*ymax*/, double /*cell_size*/, int /*mode*/, int /*x*/, int /*y*/, int /*width*/,
    int /*height*/, const RastrelProgress* /*progress*/, int /*red*/, int /*green*/, int /*blue*/) {
    return 0;
}

// Image stretching and streams

int RASTREL_CALL Rastrel_CalculateStretching(int /*handle*/, int /*method*/, double /*k*/,
                                             uint8_t* /*red_table*/, uint8_t* /*green_table*/,
                                             uint8_t* /*blue_table*/) {
    return 0;
}

int RASTREL_CALL Rastrel_ApplyStretching(int /*handle*/, const uint8_t* /*red_table*/,
                                         const uint8_t* /*green_table*/,
                                         const uint8_t* /*blue_table*/) {
    return 0;
}

int RASTREL_CALL Rastrel_StreamMaxSize(int /*handle*/) {
    return 0;
}

int RASTREL_CALL Rastrel_Image2Stream(int /*handle*/, uint8_t* /*buffer*/, int /*capacity*/,
                                      int /*type*/, int* /*size*/) {
    return 0;
}

int RASTREL_CALL Rastrel_Stream2Image(int /*handle*/, const uint8_t* /*buffer*/, int /*size*/,
                                      int /*type*/) {
    return 0;
}
