/*
 * Rastrel: raster images for geographic applications.
 *
 * This header is the whole interface: 134 C functions in one module (rastrel.dll on Windows,
 * librastrel.so on Linux). It needs no other header of the library and none of the system's but
 * <stdint.h>, and is read by C (from C99 on) and C++ alike; the argument sizes are fixed, so that
 * C#, Delphi or Python can declare the functions from it.
 *
 * Images and handles
 *   An image is known by a handle, an index from 0 upward. Rastrel_New makes an empty image;
 *   reading, creating or copying gives it a raster; Rastrel_Delete ends it. Handles of deleted
 *   images are given out again, the lowest first.
 *
 * Results
 *   Unless a function says otherwise, 1 is success and 0 is failure; functions that return a
 *   pointer return null on failure. A handle that is negative, beyond the table, or deleted makes
 *   every function return its failure value with nothing changed, and so does an image that has
 *   no raster where one is needed. Null pointers fail in the same way; outputs that may be null
 *   say so. The typed-array functions are the exception: they trust their pointers and sizes.
 *
 * Pixels
 *   A raster is a packed device-independent bitmap of 1, 4, 8, 24 or 32 bits a pixel: rows padded
 *   to a multiple of 4 bytes, the bottom row first. 24-bit pixels are blue, green, red bytes,
 *   32-bit ones blue, green, red, alpha; 4-bit pixels have the left one in the high nibble, 1-bit
 *   ones the leftmost in the highest bit. BMP files of 16 bits a pixel (5 bits a channel, blue
 *   lowest) keep that depth.
 *   - The pixel functions (Rastrel_GetIndex, Rastrel_SetRGB and so on) address stored rows: row 0
 *     is the bottom of the picture.
 *   - Rectangles (partial reads, Rastrel_ExtractPortion, Rastrel_GetImageByte) are in picture
 *     coordinates: origin at the upper left, y downward, in pixels.
 *   - Byte buffers of pixels (Rastrel_GetImageByte, Rastrel_CreateFromByte...) hold the top row
 *     first, without padding.
 *   Colours are separate red, green and blue values from 0 to 255; where they are int, the lowest
 *   eight bits count.
 *
 * File names
 *   Zero-terminated bytes. On Windows they are in the active code page (UTF-8 for a program whose
 *   manifest says so); elsewhere they are passed on as they are, with "\" taken as "/".
 *   A name's format follows from its three-letter extension, in any case:
 *   bmp 0, jpg 1, gif 2, png 3, tif 4, qvi 5, bil 6, bip 7, bsq 8, sid 9, ecw 10, fot 11, map 12,
 *   gfc 13, gaf 14, jp2 and bin 15.
 *   Where an image is read a name may also be an address: "http://", "https://" (at most 5
 *   redirections, 256 MiB and 30 seconds, 10 of them to connect) or "file://" with an absolute
 * path. The format is then the one of the content type that the server states, else that of the
 *   address's extension, else the one that the content shows. Nothing of it stays on the disk.
 *
 * TIFF files
 *   Read by libtiff, in strips or tiles, of 1 to 16 bits a sample: one sample a pixel becomes 8-bit
 *   indices with a palette (greys, or the file's own), three or four become 24 bits. 16-bit samples
 *   are scaled to 8. A file whose own tags say that it is rotated, skewed or flipped on the ground
 *   is delivered north-up, in square cells; places without a pixel are white. The image's quality,
 *   when it is a Compression tag value that can be written for the image, is the compression of a
 *   saved file, else that of the file last read, else none. Messages of libtiff go to the end of
 *   "RASTER.LOG" in the current folder.
 *
 * JPEG, PNG and JPEG 2000 files
 *   JPEG (baseline, progressive and arithmetic): grey files become 8 bits with the grey palette,
 *   those in colour 24; files of four colours (CMYK, YCCK) are refused. What a cut file lacks shows
 *   grey. The image's quality, 1 to 100, is libjpeg's, and 0 or less the least; an image of 8 bits
 *   becomes a grey file only with 100 + quality (101 to 199), its indices being the levels, and any
 *   image of another depth a file of quality 100 with a code above 100.
 *   PNG: 1 bit stays 1 bit; other greys and palettes become 8 bits, colours 24, whatever has alpha
 *   32; 16-bit samples go to the nearest of 8 bits. One fully transparent palette entry or grey is
 *   the transparent index. Written at any depth, without loss.
 *   JPEG 2000 (JP2 files and bare codestreams): grey becomes 8 bits, colours 24, alpha is left out.
 *   Quality 1 to 99 loses detail when saved, others none; 32 bits lose their alpha.
 *   MrSID, ECW and AIMA images: no decoder is available, and every operation on them fails.
 *
 * Threads
 *   Any thread may call any function. Different handles can be used at the same time; work on one
 *   image from two threads at once is for the host to avoid. Work runs on the caller's thread.
 */
#ifndef RASTREL_H_
#define RASTREL_H_

#include <stdint.h>

#if defined(_WIN32) && !defined(_WIN64)
#define RASTREL_CALL __stdcall
#else
#define RASTREL_CALL
#endif

#if defined(_WIN32)
#define RASTREL_API extern
#else
#define RASTREL_API extern __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Types ---------------------------------------------------------------------------------- */

#if defined(_WIN32)
/* The system's own handles: HDC, HWND and HBITMAP, named so that <windows.h> is not needed. */
typedef struct HDC__* RastrelDC;
typedef struct HWND__* RastrelWindow;
typedef struct HBITMAP__* RastrelBitmap;
#else
/*
 * A picture in the host's own memory, drawn into in place of a device context: 32 bits a pixel
 * (blue, green, red, unused), the top row first. The host owns the structure and its pixels.
 */
typedef struct RastrelSurface {
    int32_t width;   /* pixels in a row */
    int32_t height;  /* rows */
    int32_t stride;  /* bytes from one row to the next */
    uint8_t* pixels; /* first byte of the top row */
} RastrelSurface;

typedef RastrelSurface* RastrelDC;
typedef RastrelSurface* RastrelBitmap;
typedef void* RastrelWindow;
#endif

/*
 * A host's ear for slow work. The callback runs on the calling thread with the fraction done, from
 * 0.0 to 1.0, a short text and the user pointer; returning 0 cancels the work.
 */
typedef struct RastrelProgress {
    int(RASTREL_CALL* callback)(double fraction, const char* message, void* user);
    void* user;
} RastrelProgress;

/* Image types, as the "type" arguments take them and Rastrel_GetImageType returns them. */
enum {
    RASTREL_TYPE_NONE = -1, /* as an argument: by the file name's extension */
    RASTREL_TYPE_BMP = 0,
    RASTREL_TYPE_JPEG = 1,
    RASTREL_TYPE_GIF = 2,
    RASTREL_TYPE_PNG = 3,
    RASTREL_TYPE_TIFF = 4,
    RASTREL_TYPE_QVI = 5,
    RASTREL_TYPE_BIL = 6,
    RASTREL_TYPE_BIP = 7,
    RASTREL_TYPE_BSQ = 8,
    RASTREL_TYPE_MRSID = 9,
    RASTREL_TYPE_ECW = 10,
    RASTREL_TYPE_FOT = 11,
    RASTREL_TYPE_MAP = 12,
    RASTREL_TYPE_GFC = 13,
    RASTREL_TYPE_GAF = 14,
    RASTREL_TYPE_JPEG2000 = 15
};

/* ---- Images and handles --------------------------------------------------------------------- */

/*
 * Makes an empty image (type -1, no raster). Returns its handle: the lowest free one. -1 when
 * memory is exhausted.
 */
RASTREL_API int RASTREL_CALL Rastrel_New(void);

/* Ends the image and frees its handle. A call that another thread has in flight on it finishes. */
RASTREL_API int RASTREL_CALL Rastrel_Delete(int handle);

/*
 * Gives the image a new raster of zero pixels and type BMP: width and height from 1 up, 1, 4, 8, 24
 * or 32 bits a pixel, without palette; the whole bitmap at most 2^31 - 1 bytes. What the handle
 * held is gone in any case. On failure the handle itself is deleted.
 */
RASTREL_API int RASTREL_CALL Rastrel_Create(int handle, int width, int height, int bits);

/*
 * The rest of the creating family also gives the handle a new image of type BMP, but on failure
 * leaves the handle in place, with an empty image.
 *
 * From samples of width x height, top row first: bytes become an 8-bit raster with the grey
 * palette (entry i is i, i, i); the 24- and 32-bit forms become a 24-bit raster (blue, green, red;
 * the fourth byte, alpha, is dropped). The source is only read.
 */
RASTREL_API int RASTREL_CALL Rastrel_CreateFromByte(int handle, const uint8_t* pixels, int width,
                                                    int height);
RASTREL_API int RASTREL_CALL Rastrel_CreateFromByte24(int handle, const uint8_t* pixels, int width,
                                                      int height);
RASTREL_API int RASTREL_CALL Rastrel_CreateFromByte32(int handle, const uint8_t* pixels, int width,
                                                      int height);

/*
 * The same to 8 bits of grey by the linear stretch of the full range: with low and high the least
 * and greatest finite sample, a sample v becomes 0 if v <= low, else 255 if v >= high, else
 * (v - low) * 255 / (high - low) truncated, in double precision. A sample that is not a number
 * becomes 0.
 */
RASTREL_API int RASTREL_CALL Rastrel_CreateFromShort(int handle, const int16_t* samples, int width,
                                                     int height);
RASTREL_API int RASTREL_CALL Rastrel_CreateFromInt(int handle, const int32_t* samples, int width,
                                                   int height);
RASTREL_API int RASTREL_CALL Rastrel_CreateFromFloat(int handle, const float* samples, int width,
                                                     int height);

/*
 * A 24-bit image from three of equal size: the red channel of the first, the green of the second,
 * the blue of the third. The target may be one of the three.
 */
RASTREL_API int RASTREL_CALL Rastrel_CreateFrom3Bands(int target, int red_handle, int green_handle,
                                                      int blue_handle);

/*
 * Makes the target a deep copy of the source: raster, palette, type and all. The target may be the
 * source. A source without a raster gives 0 and an empty target.
 */
RASTREL_API int RASTREL_CALL Rastrel_Copy(int target, int source);

/* ---- Files ---------------------------------------------------------------------------------- */

/*
 * Reads a file's size in pixels and its bits a pixel without its pixels, by its extension, as an
 * address, or by its content, like Rastrel_Read. Outputs may be null, and keep their values on
 * failure.
 */
RASTREL_API int RASTREL_CALL Rastrel_ReadInfo(const char* name, int* width, int* height, int* bits);

/*
 * Reads an image file; type -1: by extension. When the type stays the image's own a failed read
 * leaves the raster as it was; a change of type gives the image an empty raster of the new type
 * first, and a type that is unknown or cannot be read leaves it without one. The name "" reads the
 * file again that the raster was last read from or saved to (its type must then be given).
 *
 * A name that fails so is tried as an address, and an existing file then by what it contains,
 * whatever its name or the type say: the formats above by their first bytes, else Targa, Photoshop
 * (the composite image), binary PGM and PPM with samples up to 255, Softimage PIC and Radiance HDR
 * files, greys as 8, colours as 24, either with transparency as 32 bits. The image is then one of
 * type BMP.
 *
 * A file that is cut short loads, its missing pixels zero, unless more than 64 MiB are missing;
 * damaged headers fail. BMP and QVI files with run-length coding load with their coded data as it
 * stands: they save as they were, but pixel functions see code bytes, and cropping and depth
 * conversions refuse them.
 *
 * Raw files (bil, bip, bsq) are pixels alone, one band or three (red, green, blue) of 8 bits. A
 * text header of the same name (hdr) must tell NROWS, NCOLS, NBANDS and NBITS, spelt so; its other
 * lines are passed over, and the type tells how the bands stand. A palette file (clr) may colour
 * one band, which is grey else. Rastrel_ReadInfo needs the header only, and tells any depth.
 */
RASTREL_API int RASTREL_CALL Rastrel_Read(int handle, const char* name, int type);

/*
 * Reads the rectangle (x, y, width, height), clipped to the image, as Rastrel_Read and then
 * Rastrel_ExtractPortion would. Nothing left after clipping: 0. The Ex form then keeps every
 * reduction-th column and row (reduction >= 1), counted from the clipped rectangle's upper left.
 */
RASTREL_API int RASTREL_CALL Rastrel_ReadPartial(int handle, const char* name, int type, int x,
                                                 int y, int width, int height);
RASTREL_API int RASTREL_CALL Rastrel_ReadPartialEx(int handle, const char* name, int type, int x,
                                                   int y, int width, int height, int reduction);

/*
 * Replaces the image by a 24-bit one from three files of equal size: the red channel of the first,
 * the green of the second, the blue of the third. Second and third name null or empty: the one
 * file, as 24 bits. type applies to each file; -1: by extension. The image's type becomes BMP.
 */
RASTREL_API int RASTREL_CALL Rastrel_Read3(int handle, const char* red_name, const char* green_name,
                                           const char* blue_name, int type);

/*
 * Writes the image; type -1: by extension. The image takes the new type on; its pixels do not
 * change. The file appears complete or not at all: on failure an existing file of that name, the
 * image, its type and its name stay as they were. The name "" writes to the file that the raster
 * was last read from or saved to.
 *
 * Raw files are written with their header and, for an image with a palette, their palette file; the
 * pixel file gets the extension of its type. Pixels of 1 and 4 bits are written as bytes; images of
 * 16 and 32 bits cannot be. None of the three old files is touched before all new ones are there.
 */
RASTREL_API int RASTREL_CALL Rastrel_Save(int handle, const char* name, int type);

/* The image's type: -1 for an image that has none (and for no other reason), 0 for a bad handle. */
RASTREL_API int RASTREL_CALL Rastrel_GetImageType(int handle);

/*
 * Puts a text that names the format and depth, then, where the format has one, a line feed and a
 * text on its compression into buffer, cut to size bytes and always zero-terminated.
 */
RASTREL_API int RASTREL_CALL Rastrel_GetDescription(int handle, char* buffer, int size);

/*
 * The code that writers take for the quality or kind of compression; 0 at first. It stays with the
 * raster through conversions, crops and changes of type.
 */
RASTREL_API int RASTREL_CALL Rastrel_SetQuality(int handle, int quality);
RASTREL_API int RASTREL_CALL Rastrel_GetQuality(int handle);

/* ---- Geometry and pixels -------------------------------------------------------------------- */

RASTREL_API int RASTREL_CALL Rastrel_GetWidth(int handle);    /* pixels in a row */
RASTREL_API int RASTREL_CALL Rastrel_GetHeight(int handle);   /* rows */
RASTREL_API int RASTREL_CALL Rastrel_GetDepth(int handle);    /* bits a pixel */
RASTREL_API int RASTREL_CALL Rastrel_GetEffWidth(int handle); /* bytes in a stored row */

/*
 * The first byte of the bottom row. The memory stays the library's: it holds height rows of
 * Rastrel_GetEffWidth bytes and may be written, until the raster is replaced or the image deleted.
 */
RASTREL_API uint8_t* RASTREL_CALL Rastrel_GetRawImage(int handle);

/*
 * A pixel's palette index, in stored rows. Get: -1 outside the image and for rasters deeper than 8
 * bits (0 for a bad handle). Set: 0 there; at 1 bit any index but 0 sets the bit.
 */
RASTREL_API int RASTREL_CALL Rastrel_GetIndex(int handle, int x, int y);
RASTREL_API int RASTREL_CALL Rastrel_SetIndex(int handle, int x, int y, int index);

/*
 * A pixel's colour, in stored rows. Outside the image: 0. Outputs may be null.
 * Get: with a palette, the colour of the pixel's entry (0 if the palette lacks it); without, the
 * three bytes at the pixel's place. Set: an image that was read or created from samples as
 * palettised takes the nearest entry (least sum of squared differences, the first of equals); any
 * other gets the three bytes at the pixel's place, whatever its depth, so that in an image of 8
 * bits or fewer made by Rastrel_Create they also reach the pixels that follow.
 */
RASTREL_API int RASTREL_CALL Rastrel_GetRGB(int handle, int x, int y, uint8_t* red, uint8_t* green,
                                            uint8_t* blue);
RASTREL_API int RASTREL_CALL Rastrel_SetRGB(int handle, int x, int y, int red, int green, int blue);

/*
 * Gives every pixel one colour: the nearest palette entry; without a palette the grey value
 * (77 red + 150 green + 29 blue) / 256 at up to 8 bits; alpha 255 at 32 bits.
 */
RASTREL_API int RASTREL_CALL Rastrel_Fill(int handle, int red, int green, int blue);

/*
 * The colour of the palette entry that is transparent. None: 0, and black. Outputs may be null.
 */
RASTREL_API int RASTREL_CALL Rastrel_GetTransparentColor(int handle, uint8_t* red, uint8_t* green,
                                                         uint8_t* blue);

/*
 * Copies a rectangle's pixels into buffer, width x height pixels of the asked depth; places outside
 * the image are not written. Depth 8: indices, and grey values (77 red + 150 green + 29 blue) / 256
 * for deeper images; 24: colours, through the palette (without one: the value as grey, 4 bits
 * times 17, 1 bit times 255); 32: the same with alpha, 255 where the image has none. Other depths
 * copy nothing. Returns 1 for every valid handle.
 */
RASTREL_API int RASTREL_CALL Rastrel_GetImageByte(int handle, uint8_t* buffer, int depth, int x,
                                                  int y, int width, int height);

/*
 * Crops the image to a rectangle, clipped to it; nothing left: 0, unchanged. Palette, transparent
 * entry, quality and type stay.
 */
RASTREL_API int RASTREL_CALL Rastrel_ExtractPortion(int handle, int x, int y, int width,
                                                    int height);

/* ---- Palettes ------------------------------------------------------------------------------- */

/*
 * Gives the image a palette of count entries, 1 to 256, from three arrays of count bytes. The
 * bitmap's colour table follows. What colours are written by stays as Rastrel_SetRGB tells.
 */
RASTREL_API int RASTREL_CALL Rastrel_SetPalette(int handle, int count, const uint8_t* red,
                                                const uint8_t* green, const uint8_t* blue);

/*
 * Stores at most count entries into three arrays of count bytes. Returns how many it stored: 0
 * without a palette.
 */
RASTREL_API int RASTREL_CALL Rastrel_GetPalette(int handle, int count, uint8_t* red, uint8_t* green,
                                                uint8_t* blue);

/* Gives the target the source's palette; 0 when the source has none. */
RASTREL_API int RASTREL_CALL Rastrel_CopyPalette(int target, int source);

/* Gives the image 256 greys, entry i being (i, i, i), whatever its depth. */
RASTREL_API int RASTREL_CALL Rastrel_SetGrayPalette(int handle);

/* ---- Depth conversions ---------------------------------------------------------------------- */

/*
 * Expands an image through its palette to 24 bits; the palette goes. An image that has 24 bits
 * already, or no palette, is left as it is: 1.
 */
RASTREL_API int RASTREL_CALL Rastrel_Conv8To24(int handle);

/* Widens 1 or 4 bits to 8, index for index; the palette stays. 8 bits: left, 1. Others: 0. */
RASTREL_API int RASTREL_CALL Rastrel_Conv1To8(int handle);

/*
 * Narrows 8 bits to 1. An image that uses only indices 0 and 1 keeps them and their two colours;
 * in any other a pixel is white where (77 red + 150 green + 29 blue) / 256 is 128 or more, else
 * black, with a black and white palette. 1 bit: left, 1. Others: 0.
 */
RASTREL_API int RASTREL_CALL Rastrel_Conv8To1(int handle);

/* ---- Typed arrays --------------------------------------------------------------------------- */

/*
 * Arrays of width x height samples from the library's own heap, not cleared. Null when a size is
 * negative or memory does not suffice. Only the delete functions below may free them (any of the
 * four; null is allowed).
 */
RASTREL_API uint8_t* RASTREL_CALL Rastrel_CreateArrayByte(int width, int height);
RASTREL_API int16_t* RASTREL_CALL Rastrel_CreateArrayShort(int width, int height);
RASTREL_API int32_t* RASTREL_CALL Rastrel_CreateArrayInt(int width, int height);
RASTREL_API float* RASTREL_CALL Rastrel_CreateArrayFloat(int width, int height);
RASTREL_API void RASTREL_CALL Rastrel_DeleteArrayByte(uint8_t* array);
RASTREL_API void RASTREL_CALL Rastrel_DeleteArrayShort(int16_t* array);
RASTREL_API void RASTREL_CALL Rastrel_DeleteArrayInt(int32_t* array);
RASTREL_API void RASTREL_CALL Rastrel_DeleteArrayFloat(float* array);

/* ---- Statistics and stretch of typed arrays ------------------------------------------------- */

/*
 * A typed array is one block of rows x columns samples of the host's, row after row without
 * padding, the top row first: unsigned bytes, shorts, ints or floats, as the function's suffix
 * says. These functions allocate nothing and check nothing: pointers and sizes are trusted, counts
 * below 1 are empty arrays, and outputs must not overlap inputs. Their results have the same bits
 * in every module and on every machine.
 */

/*
 * Statistics of the samples of every step-th row and column from the first ones on; steps below 1
 * are 1. Mean; standard deviation of a sample (divisor n - 1), not a number (0/0) for a single one;
 * the Ex form with minimum and maximum, which are 1e300 and -1e300 where there are no samples. The
 * mean of none is not a number. Exact up to a last rounding for bytes and shorts, within 1e-12 for
 * ints and floats. A float that is not a number makes mean and deviation such, and counts for no
 * extreme.
 */
RASTREL_API void RASTREL_CALL Rastrel_StatisticsByte(const uint8_t* source, int rows, int columns,
                                                     int step, double* mean, double* deviation);
RASTREL_API void RASTREL_CALL Rastrel_StatisticsShort(const int16_t* source, int rows, int columns,
                                                      int step, double* mean, double* deviation);
RASTREL_API void RASTREL_CALL Rastrel_StatisticsInt(const int32_t* source, int rows, int columns,
                                                    int step, double* mean, double* deviation);
RASTREL_API void RASTREL_CALL Rastrel_StatisticsFloat(const float* source, int rows, int columns,
                                                      int step, double* mean, double* deviation);
RASTREL_API void RASTREL_CALL Rastrel_StatisticsExByte(const uint8_t* source, int rows, int columns,
                                                       int step, double* minimum, double* mean,
                                                       double* maximum, double* deviation);
RASTREL_API void RASTREL_CALL Rastrel_StatisticsExShort(const int16_t* source, int rows,
                                                        int columns, int step, double* minimum,
                                                        double* mean, double* maximum,
                                                        double* deviation);
RASTREL_API void RASTREL_CALL Rastrel_StatisticsExInt(const int32_t* source, int rows, int columns,
                                                      int step, double* minimum, double* mean,
                                                      double* maximum, double* deviation);
RASTREL_API void RASTREL_CALL Rastrel_StatisticsExFloat(const float* source, int rows, int columns,
                                                        int step, double* minimum, double* mean,
                                                        double* maximum, double* deviation);

/*
 * Maps samples to bytes linearly: 0 up to low, 255 from high on, (v - low) * 255 / (high - low)
 * truncated between them; 0 for what is not a number. Low and high are mean - k deviations and mean
 * + k deviations of all samples. The Ex form, which stores the bounds it used, takes the minimum
 * and maximum for k <= 0. Where all samples are equal they become 0.
 */
RASTREL_API void RASTREL_CALL Rastrel_LinearStretchByte(uint8_t* output, const uint8_t* source,
                                                        int rows, int columns, double k);
RASTREL_API void RASTREL_CALL Rastrel_LinearStretchShort(uint8_t* output, const int16_t* source,
                                                         int rows, int columns, double k);
RASTREL_API void RASTREL_CALL Rastrel_LinearStretchInt(uint8_t* output, const int32_t* source,
                                                       int rows, int columns, double k);
RASTREL_API void RASTREL_CALL Rastrel_LinearStretchFloat(uint8_t* output, const float* source,
                                                         int rows, int columns, double k);
RASTREL_API void RASTREL_CALL Rastrel_LinearStretchExByte(uint8_t* output, const uint8_t* source,
                                                          int rows, int columns, double k,
                                                          double* low, double* high);
RASTREL_API void RASTREL_CALL Rastrel_LinearStretchExShort(uint8_t* output, const int16_t* source,
                                                           int rows, int columns, double k,
                                                           double* low, double* high);
RASTREL_API void RASTREL_CALL Rastrel_LinearStretchExInt(uint8_t* output, const int32_t* source,
                                                         int rows, int columns, double k,
                                                         double* low, double* high);
RASTREL_API void RASTREL_CALL Rastrel_LinearStretchExFloat(uint8_t* output, const float* source,
                                                           int rows, int columns, double k,
                                                           double* low, double* high);

/* ---- Terrain and smoothing of typed arrays -------------------------------------------------- */

/*
 * Derivatives of an elevation grid by the 3 x 3 gradients of B. K. P. Horn ("Hill shading and the
 * reflectance map", Proceedings of the IEEE 69, 1981): with the eight neighbours z1 z2 z3 / z4 . z6
 * / z7 z8 z9 of a cell, the upper row first,
 *     gx = ((z3 + 2 z6 + z9) - (z1 + 2 z4 + z7)) * scale / 8
 *     gy = ((z7 + 2 z8 + z9) - (z1 + 2 z2 + z3)) * scale / 8
 * in double precision. Scale 1 / cell size (times any exaggeration) gives rise over run where
 * heights and cells have the same unit; below 0 it turns the ground over. Every sample counts:
 * there is no value for missing data. The outermost cells, which lack neighbours, get a fixed
 * value.
 *
 * Hillshading: 0 in the shade to 255 facing the light, sin(altitude) cos(slope) + cos(altitude)
 * sin(slope) cos(aspect - azimuth), times 255 and rounded, with slope = atan(sqrt(gx^2 + gy^2)) and
 * aspect = atan2(-gx, -gy); altitude above the horizon and azimuth in degrees. Border 255. 0 where
 * a neighbour is not a number.
 *
 * Slope: atan(sqrt(gx^2 + gy^2)) in whole degrees, truncated. Border 0; 0 where a neighbour is not
 * a number.
 *
 * Aspect: classes of 45 degrees around 0 = rising toward the first row, 2 = toward the first
 * column, 4 = toward the last row, 6 = toward the last column; 8 on level ground and the border.
 * Cells between 337.5 and 337.7 degrees, and where a neighbour is not a number, are not written.
 *
 * Azimuths and classes are compass bearings for arrays whose first row is the southern one. For one
 * whose first row is the northern one, give 180 - azimuth, and read class c as (12 - c) modulo 8.
 */
RASTREL_API void RASTREL_CALL Rastrel_HillshadingByte(uint8_t* output, const uint8_t* input,
                                                      int rows, int columns, double altitude,
                                                      double azimuth, double scale);
RASTREL_API void RASTREL_CALL Rastrel_HillshadingShort(uint8_t* output, const int16_t* input,
                                                       int rows, int columns, double altitude,
                                                       double azimuth, double scale);
RASTREL_API void RASTREL_CALL Rastrel_HillshadingInt(uint8_t* output, const int32_t* input,
                                                     int rows, int columns, double altitude,
                                                     double azimuth, double scale);
RASTREL_API void RASTREL_CALL Rastrel_HillshadingFloat(uint8_t* output, const float* input,
                                                       int rows, int columns, double altitude,
                                                       double azimuth, double scale);
RASTREL_API void RASTREL_CALL Rastrel_SlopeByte(uint8_t* output, const uint8_t* input, int rows,
                                                int columns, double scale);
RASTREL_API void RASTREL_CALL Rastrel_SlopeShort(uint8_t* output, const int16_t* input, int rows,
                                                 int columns, double scale);
RASTREL_API void RASTREL_CALL Rastrel_SlopeInt(uint8_t* output, const int32_t* input, int rows,
                                               int columns, double scale);
RASTREL_API void RASTREL_CALL Rastrel_SlopeFloat(uint8_t* output, const float* input, int rows,
                                                 int columns, double scale);
RASTREL_API void RASTREL_CALL Rastrel_AspectByte(uint8_t* output, const uint8_t* input, int rows,
                                                 int columns, double scale);
RASTREL_API void RASTREL_CALL Rastrel_AspectShort(uint8_t* output, const int16_t* input, int rows,
                                                  int columns, double scale);
RASTREL_API void RASTREL_CALL Rastrel_AspectInt(uint8_t* output, const int32_t* input, int rows,
                                                int columns, double scale);
RASTREL_API void RASTREL_CALL Rastrel_AspectFloat(uint8_t* output, const float* input, int rows,
                                                  int columns, double scale);

/*
 * Hypsometric colours: each index takes its colour of a palette of 256 (red in the lowest byte,
 * then green and blue; the highest is ignored), whose value, as in hue, saturation and value (A. R.
 * Smith, "Color gamut transform pairs", 1978), becomes value * weight + shading / 255 * (1 -
 * weight), at least 0 and at most 1: weight 1 keeps the colours, 0 takes the brightness of the
 * shading. Indices and shading hold a byte for each cell; the output holds three, blue, green and
 * red.
 */
RASTREL_API void RASTREL_CALL Rastrel_Ipsometry(uint8_t* output, const uint8_t* indices,
                                                const uint8_t* shading, double weight, int rows,
                                                int columns, const uint32_t* palette);

/*
 * Smoothing: a twelfth of the sum of the eight neighbours and four times the cell itself; the
 * outermost cells are copied. Whole samples are summed in 32 bits, which wrap for ints beyond 2^31
 * / 12, and the result is truncated toward zero; floats are summed in double precision.
 */
RASTREL_API void RASTREL_CALL Rastrel_Convolute3x3Byte(uint8_t* output, const uint8_t* input,
                                                       int rows, int columns);
RASTREL_API void RASTREL_CALL Rastrel_Convolute3x3Short(int16_t* output, const int16_t* input,
                                                        int rows, int columns);
RASTREL_API void RASTREL_CALL Rastrel_Convolute3x3Int(int32_t* output, const int32_t* input,
                                                      int rows, int columns);
RASTREL_API void RASTREL_CALL Rastrel_Convolute3x3Float(float* output, const float* input, int rows,
                                                        int columns);

/*
 * Masks of a byte for each cell. Mask: the input byte where the mask is not 0, else 0. Mask24: the
 * input's three bytes (blue, green, red) where the mask is not 0, for invert other than 0 where it
 * is 0, and elsewhere the colour (red in the lowest byte).
 */
RASTREL_API void RASTREL_CALL Rastrel_Mask(uint8_t* output, const uint8_t* input,
                                           const uint8_t* mask, int rows, int columns);
RASTREL_API void RASTREL_CALL Rastrel_Mask24(uint8_t* output, const uint8_t* input,
                                             const uint8_t* mask, int rows, int columns,
                                             uint32_t color, int invert);

/* ---- Georeference --------------------------------------------------------------------------- */

/*
 * Where an image lies on the map: X and Y of the upper-left corner of its upper-left pixel, and the
 * side of its square pixels, all in map units. Rotation is not told. These functions take the names
 * of images, whether or not there are such files, and no handles.
 *
 * The image's extension, in any case, decides where its georeference is:
 *   tif bmp gif jpg jp2 png qvi  a world file with the extension tfw bpw gfw jgw j2w pgw qiw; for a
 *                                TIFF without one, the tags inside the TIFF
 *   bil bip bsq                  the keywords ULXMAP, ULYMAP and XDIM in the header (hdr); ULXMAP
 *                                and ULYMAP are taken for the pixel's corner, not its centre
 *   fot map gfc gaf              the header inside the image, in units of 0.1 and, for the pixel
 *                                size, 0.0001
 *   ecw                          inside the image; this library has no reader for it
 *   sid                          a world file: sdw when reading; written as for other images
 *   others                       a world file with no extension at all: an image whose own name
 *                                has none is its own world file, which writing would replace
 * A world file or header lies in the image's folder. The library joins folder and name with "\"
 * even where there is no folder: the companion of a bare "sheet.tif" is "\sheet.tfw", in the root
 * of the current drive; "./sheet.tif" has its companion beside it. Where file names tell the two
 * apart, a companion whose extension is in upper case is read when there is none in lower case.
 */

/*
 * Stores the companion's name, or "ECWxxx", "FOTxxx", "MAPxxx", "GFCxxx" or "GAFxxx" for images
 * that keep their georeference inside. The buffer must have room for a full path: the length of the
 * name and 4 bytes more are enough.
 */
RASTREL_API int RASTREL_CALL Rastrel_FileNameGeoref(const char* name, char* companion);
/*
 * Reads the georeference. 0 when there is none: the outputs are then 0, 0 and 1 where a companion
 * file is missing, and untouched where a header lacks what it should hold. A world file that opens
 * is a success: an output whose line is missing or no number stays untouched, so that a caller can
 * tell by setting it beforehand. Numbers that are not finite count as none. No output may be null.
 */
RASTREL_API int RASTREL_CALL Rastrel_ReadGeoref(const char* name, double* x, double* y,
                                                double* pixel_size);
/*
 * Writes the georeference. World files are replaced whole; of a header its other lines stay, and of
 * an image with a header inside all other bytes. 0, with every file as it was, when the file cannot
 * be written, an image with a header inside is missing or too short, a value is not finite, or a
 * field of such a header cannot hold a coordinate. There values are stored in whole units, half a
 * unit rounded down; of a GFC's or GAF's pixel size only the lowest 16 bits are kept.
 */
RASTREL_API int RASTREL_CALL Rastrel_WriteGeoref(const char* name, double x, double y,
                                                 double pixel_size);

/* ---- TIFF by bands, QuickBird scenes -------------------------------------------------------- */

/*
 * Writes one tall TIFF file of width x height pixels from images stacked top to bottom, one at a
 * time: the whole need not fit in memory, nor in 2 GiB. The file is written in its own place.
 * - Open takes the Compression tag value (1 none, 2 to 4 fax codes for 1 bit, 5 LZW, 7 JPEG for
 *   24 bits and grey, 8 Deflate, 32773 PackBits) and the first image, whose width must be the
 *   total and whose depth (1, 4, 8 or 24) and palette the whole file has. Returns a writer, which
 *   Close ends; 0, with no file made, when an argument does not fit.
 * - Append adds the next image, of the same depth; its palette is not looked at, and rows of
 *   another width are cut or filled up. 0, with nothing written, when the total height would be
 *   exceeded; 0 also when the disk does not take it.
 * - Close: 1 when all of the file has been written. The heights should add up to the total.
 * A file begun with the 256 greys as palette has neither BitsPerSample nor
 * PhotometricInterpretation; its rows are bytes all the same.
 */
RASTREL_API intptr_t RASTREL_CALL Rastrel_TIFFOpen(const char* name, int compression, int width,
                                                   int height, int handle);
RASTREL_API int RASTREL_CALL Rastrel_TIFFAppend(intptr_t writer, int handle);
RASTREL_API int RASTREL_CALL Rastrel_TIFFClose(intptr_t writer);

/*
 * Reads a satellite scene of four 16-bit bands (11 bits used) row by row, one scene at a time in
 * the whole module; opening another ends the one before. Files in tiles, of other depths or of
 * another number of bands: 0.
 * - ReadRow fills 3 bytes a pixel with the samples of bands 1, 2 and 3 divided by 8; with all three
 *   tables of 256 bytes given, band 1 passes through blue_table, band 2 through green_table and
 * band 3 through red_table; else they may be null. 0 past the last row.
 * - Rows come bottom-up from a file whose first row is the top one, else in the file's order. A
 *   strip is decoded at its first row only: bottom-up, of strips of several rows the other rows
 * show what the strip before them held there.
 */
RASTREL_API int RASTREL_CALL Rastrel_QuickBird_Open(const char* name);
RASTREL_API int RASTREL_CALL Rastrel_QuickBird_ReadRow(uint8_t* row, const uint8_t* red_table,
                                                       const uint8_t* green_table,
                                                       const uint8_t* blue_table);
RASTREL_API int RASTREL_CALL Rastrel_QuickBird_Close(void);

/* ---- Settings ------------------------------------------------------------------------------- */

/*
 * Three settings of the whole process for progressive ECW views: a counter of the host whose change
 * abandons a view that is being waited for (the host owns it and keeps it alive; null: none), the
 * window that gets the progress messages (null: none), and whether the caller's messages are pumped
 * meanwhile (not 0; so at first).
 */
RASTREL_API void RASTREL_CALL Rastrel_SetPtrNumeroVisualizzazione(int* counter);
RASTREL_API void RASTREL_CALL Rastrel_SetMainframeHandle(RastrelWindow window);
RASTREL_API void RASTREL_CALL Rastrel_ProcessECWMessage(int flag);

/* Kept for hosts that call it at start: both values are ignored. Returns 1. */
RASTREL_API int RASTREL_CALL Rastrel_SetImageHandle(int first, int second);

/* ---- Display and desktop -------------------------------------------------------------------- */

/*
 * Draws at (x, y) of a device, width x height pixels (-1: the image's), those of the source
 * rectangle whose lower left pixel is (source_x, source_y), y counting from the bottom stored row.
 * 1 whenever there is a raster: a null device, or one that refuses, is drawn nothing on.
 */
RASTREL_API int RASTREL_CALL Rastrel_Draw(int handle, RastrelDC device, int x, int y, int width,
                                          int height, int source_x, int source_y);

/*
 * Draws a source rectangle, its y from the bottom stored row, scaled to a rectangle of the device
 * by choosing pixels. Sizes of -1: the image's; of the source, the rest of the image; other
 * negative sizes mirror. Where more than 1024 columns or rows of the source are asked for, the work
 * is cut into halves both ways until they are no more. Pixels of the transparent palette entry
 * leave the device as it is, and the image itself is only read. 0 without a device, or when it
 * refuses an opaque image.
 *
 * Both leave the device context as it was, but for its stretching mode, which becomes
 * COLORONCOLOR. On a surface, scaling takes the pixel under each pixel's centre; the unused byte
 * becomes 0, or the alpha of 32-bit images.
 */
RASTREL_API int RASTREL_CALL Rastrel_Stretch(int handle, RastrelDC device, int x, int y, int width,
                                             int height, int source_x, int source_y,
                                             int source_width, int source_height);

/*
 * A new device bitmap with the image's pixels. The caller owns it: DeleteObject on Windows, where
 * it is of the screen's depth; elsewhere a surface in one block, freed with free(). When the system
 * makes none, its own message is shown in a box titled "Error", and the result is null.
 */
RASTREL_API RastrelBitmap RASTREL_CALL Rastrel_Copy2HBitmap(int handle);

/*
 * Puts the image on the clipboard, as a bitmap, in the window's name; the clipboard owns the
 * bitmap. 0 when that fails and on systems without one.
 */
RASTREL_API int RASTREL_CALL Rastrel_CopyToClipboard(int handle, RastrelWindow window);

/*
 * New images (as the creating family above).
 * From a device bitmap, which must not be selected into a device context: 1, 4 and 8 bits with
 * their palette; deeper ones 24 bits, or 32 with alpha 255 throughout, as devices do not use that
 * byte.
 * From what the screen shows of a window, covering windows included, and from a rectangle of it,
 * relative to the window or, client not 0, to its client area; width or height -1: to the edge.
 * What is off the screen is left out. Nothing left, or a system without windows: 0.
 */
RASTREL_API int RASTREL_CALL Rastrel_CreateFromBitmap(int handle, RastrelBitmap bitmap);
RASTREL_API int RASTREL_CALL Rastrel_CreateFromWindow(int handle, RastrelWindow window);
RASTREL_API int RASTREL_CALL Rastrel_CreateFromWindowEX(int handle, RastrelWindow window, int x,
                                                        int y, int width, int height, int client);

/*
 * Asks the user, in a dialog over the thread's active window, for a file's name, its format and, if
 * wanted, a coordinate system; then saves. A name without the extension of a format gets that of
 * the chosen one, and the user is asked before a file is replaced. A chosen coordinate system (UTM
 * zone 32 or 33 north on WGS 84, or one of the two Gauss-Boaga zones on Monte Mario) is written
 * beside the saved image, as well-known text in a .prj file.
 * The chosen name goes into buffer, of 260 characters, the image type into type. 2 when the user
 * cancels, with both untouched; else the result of Rastrel_Save. 0, without a dialog, for an image
 * without a raster and on systems that have none.
 */
RASTREL_API int RASTREL_CALL Rastrel_DialogSave(int handle, char* buffer, int* type);

/* ---- Colour reduction and GIF --------------------------------------------------------------- */

/*
 * GIF files: the first image of a file of either version is read, as 8-bit indices with the file's
 * palette of up to 256 colours and its transparent index; of damaged files what can be decoded, the
 * rest is index 0. Images of 1, 4 and 8 bits of at most 65,535 columns and rows are written, as
 * GIF87a with 256 colours and without transparency. Why one could not be written is told in a
 * message box (elsewhere on standard error), which waits for the user.
 */

/*
 * Reduces an image of more than 8 bits to 8 with a palette of at most 255 colours: its own, sorted
 * by blue, green and red, if they suffice, else those that median cut chooses (P. Heckbert, "Color
 * Image Quantization for Frame Buffer Display", SIGGRAPH 1982) with components of as many bits as
 * give no more than 32,767 colours. Nothing is dithered; alpha and transparent index are dropped. 8
 * bits or fewer: left as it is, 1. 0 when memory does not suffice, the image as it was.
 */
RASTREL_API int RASTREL_CALL Rastrel_Conv24To8(int handle);

/*
 * The same to a given palette of count entries, 1 to 256; the arrays stay the host's. Each pixel
 * becomes the entry with the least sum of absolute differences of red, green and blue, the first of
 * equals. 0 too for other counts and null arrays.
 */
RASTREL_API int RASTREL_CALL Rastrel_Conv24To8_Precalcolata(int handle, int count,
                                                            const uint8_t* red,
                                                            const uint8_t* green,
                                                            const uint8_t* blue);

/*
 * Converts a TIFF file, whatever its name, into a GIF file. One that is read as 24 bits is reduced
 * to the palette of at most 256 colours that median cut chooses for it. 0 when the one cannot be
 * read or the other not written.
 */
RASTREL_API int RASTREL_CALL Rastrel_Tiff2Gif(const char* tiff_name, const char* gif_name);

/* ---- JPEG by bands -------------------------------------------------------------------------- */

/*
 * Writes one tall JPEG file, in its own place, of width x height pixels (each at most 65500) from
 * images of that width stacked top to bottom, one at a time.
 * - Open takes libjpeg's quality, brought into 1 to 99, and the first image: one of 8 bits makes a
 *   grey file, any other a file in colour. Returns a writer, which Close ends; 0, with no file
 * made, for another width, a height that is none, or a name that cannot be written.
 * - Append adds the next image. 0, with nothing written, for another width; 0 also when the disk
 *   does not take it. Grey files take shallow images, by the red of their palettes; files in colour
 *   take 24 and 32 bits. This is not checked: others make rows of no use.
 * - Close: 1 when all of the file has been written. The heights should add up to the total: rows
 *   that reach below it are dropped, and where some are missing Close returns 0. reserved: 0.
 */
RASTREL_API intptr_t RASTREL_CALL Rastrel_JPEGOpen(const char* name, int quality, int width,
                                                   int height, int handle);
RASTREL_API int RASTREL_CALL Rastrel_JPEGAppend(intptr_t writer, int handle);
RASTREL_API int RASTREL_CALL Rastrel_JPEGClose(intptr_t writer, int reserved);

/* ---- Compositing ---------------------------------------------------------------------------- */

/*
 * Fusion blends the second image into the first, equal in size: first x (1 - weight) + second x
 * weight; key_flag spares the places where the second has the key colour. FusionEx takes a mode: 0
 * normal, 1 multiply, 2 screen, 3 overlay, 4 darken, 5 lighten, 6 difference, 7 add.
 */
RASTREL_API int RASTREL_CALL Rastrel_Fusion(int first, int second, int key_flag, int red, int green,
                                            int blue, double weight);
RASTREL_API int RASTREL_CALL Rastrel_FusionEx(int first, int second, int key_flag, int red,
                                              int green, int blue, double weight, int mode);

/*
 * Paints the target where the mask image, equal in size, has a channel that is 0 (invert: that is
 * not 0).
 */
RASTREL_API int RASTREL_CALL Rastrel_ApplyMask(int target, int mask, int invert, int red, int green,
                                               int blue);

/* Adds offset, -255 to 255, to every channel, sparing the key colour when key_flag is set. */
RASTREL_API int RASTREL_CALL Rastrel_Luminance(int handle, int key_flag, int red, int green,
                                               int blue, int offset);

/*
 * Where every channel of the source is within tolerance of a colour the target, equal in size, gets
 * the new colour, elsewhere the source's pixel. The target may be the source.
 */
RASTREL_API int RASTREL_CALL Rastrel_Modify(int target, int source, int red, int green, int blue,
                                            int new_red, int new_green, int new_blue,
                                            int tolerance);

/* ---- Resizing and mosaics ------------------------------------------------------------------- */

/*
 * The target becomes the source, or a rectangle of it in picture coordinates, clipped to the image,
 * of another size in pixels. The target may be the source, and stays as it is on failure. Pixel
 * centres are aligned: the middle of new pixel i lies at (i + 0.5) * old / new - 0.5 of the old
 * ones; the edge pixels go on outside.
 *
 * mode: 0 the pixel that holds the new one's middle, at the source's depth; 1 between the two
 * nearest of each row and column; 2 cubic convolution through the four nearest (R. G. Keys, a =
 * -1/2); 3 the average over the area that a new pixel covers; -1 the best: 0 for palettes that are
 * not all greys, else 3 where a side gets shorter, else 1. ResizeEx takes the best.
 * Modes 1 to 3 give 8 bits for greys, 24 for other palettes and 16 bits; colours of 32 bits count
 * by their alpha. Sums are rounded, halves up. 0 for other modes, sizes below 1 or too large,
 * rectangles outside the image, and run-length data.
 */
RASTREL_API int RASTREL_CALL Rastrel_Resize(int target, int source, int width, int height,
                                            int mode);
RASTREL_API int RASTREL_CALL Rastrel_ResizeEx(int target, int source, int x, int y, int width,
                                              int height, int new_width, int new_height);

/*
 * Puts the source into the target by their georeferences (upper-left corners and pixel sizes in map
 * units): every target pixel whose centre lies in the source gets the source pixel there, unless it
 * is the key colour and key_flag is set. Clipping: xmin, ymin, xmax, ymax in map units, or null.
 * Mask: an image of the source's size; only where it is not black.
 */
RASTREL_API int RASTREL_CALL Rastrel_Mosaica(int target, int source, double target_x,
                                             double target_y, double target_size, double source_x,
                                             double source_y, double source_size, int key_flag,
                                             int red, int green, int blue);
RASTREL_API int RASTREL_CALL Rastrel_MosaicaWithClipping(int target, int source, double target_x,
                                                         double target_y, double target_size,
                                                         double source_x, double source_y,
                                                         double source_size, int key_flag, int red,
                                                         int green, int blue, const double* clip);
RASTREL_API int RASTREL_CALL Rastrel_MosaicaWithMask(int target, int source, int mask,
                                                     double target_x, double target_y,
                                                     double target_size, double source_x,
                                                     double source_y, double source_size,
                                                     int key_flag, int red, int green, int blue);

/* ---- Rectification -------------------------------------------------------------------------- */

/*
 * One affine solution for the process, by least squares from control points: pixel centres at whole
 * numbers, rows from the top, against map X and Y. AddControlPoint returns the number of points, 0
 * when a value is not finite; Calculate fails, and leaves no solution, with fewer than three points
 * or with all on a line. Reset forgets points and solution.
 */
RASTREL_API int RASTREL_CALL Rastrel_AffineReset(void);
RASTREL_API int RASTREL_CALL Rastrel_AffineAddControlPoint(double column, double row, double x,
                                                           double y);
RASTREL_API int RASTREL_CALL Rastrel_AffineCalculate(void);

/* Pixel to map, and map to pixel, in place. 0 before a solution. */
RASTREL_API int RASTREL_CALL Rastrel_AffineApplicaDiretta(double* column_to_x, double* row_to_y);
RASTREL_API int RASTREL_CALL Rastrel_AffineApplicaInversa(double* x_to_column, double* y_to_row);

/*
 * The target becomes the source laid north-up by the solution over a box in map units, in square
 * cells of cell_size map units: length / cell_size + 0.4999999 columns and rows, fractions cut off.
 * mode 0 to 2 as those of Rastrel_Resize, which tells depths and palettes, too. A cell gets the
 * source pixel whose column and row are its place + 0.499999999, fractions cut off, or what lies
 * between its neighbours; cells without one are white (where a palette has no white, index 255).
 * The target may be the source, and stays as it is on failure: no solution, values that are not
 * finite, boxes smaller than a cell, sizes too large, other modes, run-length data.
 *
 * Ex: only the source pixels of a rectangle, in picture coordinates and clipped to the image, are
 * used; progress may be null, and is told 0.0, at least every percent, and 1.0; cancelling is a
 * failure. BackColor: with the colour of the cells without a pixel.
 */
RASTREL_API int RASTREL_CALL Rastrel_AffineTransform(int target, int source, double xmin,
                                                     double ymin, double xmax, double ymax,
                                                     double cell_size, int mode);
RASTREL_API int RASTREL_CALL Rastrel_AffineTransformEx(int target, int source, double xmin,
                                                       double ymin, double xmax, double ymax,
                                                       double cell_size, int mode, int x, int y,
                                                       int width, int height,
                                                       const RastrelProgress* progress);
RASTREL_API int RASTREL_CALL Rastrel_AffineTransformExBackColor(
    int target, int source, double xmin, double ymin, double xmax, double ymax, double cell_size,
    int mode, int x, int y, int width, int height, const RastrelProgress* progress, int red,
    int green, int blue);

/* ---- Image stretching and streams ----------------------------------------------------------- */

/*
 * Tables of 256 bytes that stretch each channel: method 0 mean plus and minus k deviations, 1
 * minimum to maximum, 2 k percent cut at each tail, 3 equalised histogram. Apply puts the image's
 * channels, or its palette, through them.
 */
RASTREL_API int RASTREL_CALL Rastrel_CalculateStretching(int handle, int method, double k,
                                                         uint8_t* red_table, uint8_t* green_table,
                                                         uint8_t* blue_table);
RASTREL_API int RASTREL_CALL Rastrel_ApplyStretching(int handle, const uint8_t* red_table,
                                                     const uint8_t* green_table,
                                                     const uint8_t* blue_table);

/*
 * The image as a file's bytes in memory, and back. type: 0 BMP, 1 JPEG, 3 PNG, 5 QVI; -1 writes QVI
 * and reads by content. StreamMaxSize: bytes that always suffice for QVI. Image2Stream stores the
 * bytes needed in size, also when capacity is too small and it returns 0.
 */
RASTREL_API int RASTREL_CALL Rastrel_StreamMaxSize(int handle);
RASTREL_API int RASTREL_CALL Rastrel_Image2Stream(int handle, uint8_t* buffer, int capacity,
                                                  int type, int* size);
RASTREL_API int RASTREL_CALL Rastrel_Stream2Image(int handle, const uint8_t* buffer, int size,
                                                  int type);

#ifdef __cplusplus
}
#endif

#endif /* RASTREL_H_ */
