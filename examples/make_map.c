/*
 * Draws a made-up map, as palettised as maps are: depth tints at sea, height tints on land, contour
 * lines and a grid, 16 colours in all. Usage: make_map FILE
 */
#include <math.h>
#include <rastrel.h>
#include <stdio.h>

enum { WIDTH = 900, HEIGHT = 700, TINTS = 14, CONTOUR = 14, GRID = 15, COLORS = 16 };

/* Red, green, blue: sea from deep to shallow, land from low to high, contour lines, grid. */
static const uint8_t kPalette[3][COLORS] = {
    {52, 78, 109, 142, 178, 212, 172, 189, 214, 239, 222, 202, 170, 245, 120, 90},
    {106, 138, 168, 196, 222, 240, 208, 204, 202, 223, 196, 164, 135, 244, 90, 110},
    {162, 186, 206, 224, 238, 247, 165, 150, 143, 170, 135, 110, 92, 240, 60, 150},
};

/* A height from -1 to 1 or so: a few waves that do not repeat within the map. */
static double HeightAt(int x, int y) {
    const double u = x / 130.0;
    const double v = y / 130.0;
    return 0.5 * sin(u + 1.3 * sin(0.7 * v)) * cos(0.8 * v - 0.4 * u) +
           0.3 * sin(1.9 * v + 2.1 * cos(0.6 * u)) + 0.12 * sin(4.3 * u + 1.7) * cos(3.9 * v) +
           0.05 * sin(9.1 * u - 6.3 * v);
}

static int TintOf(double height) {
    const int tint = (int)floor((height + 0.8) / 1.6 * TINTS);
    return tint < 0 ? 0 : tint >= TINTS ? TINTS - 1 : tint;
}

static int ColorAt(int x, int y) {
    const int tint = TintOf(HeightAt(x, y));
    if (x % 100 == 0 || y % 100 == 0) return GRID;
    if (tint != TintOf(HeightAt(x + 1, y)) || tint != TintOf(HeightAt(x, y + 1))) return CONTOUR;
    return tint;
}

int main(int argc, char** argv) {
    int image, x, y, saved;
    if (argc != 2) {
        fprintf(stderr, "usage: make_map FILE\n");
        return 2;
    }
    image = Rastrel_New();
    if (!Rastrel_Create(image, WIDTH, HEIGHT, 8) ||
        !Rastrel_SetPalette(image, COLORS, kPalette[0], kPalette[1], kPalette[2])) {
        fprintf(stderr, "make_map: no memory for the image\n");
        return 1;
    }
    for (y = 0; y < HEIGHT; ++y) {
        for (x = 0; x < WIDTH; ++x)
            Rastrel_SetIndex(image, x, y, ColorAt(x, y));
    }
    saved = Rastrel_Save(image, argv[1], RASTREL_TYPE_NONE);
    if (!saved) fprintf(stderr, "make_map: cannot save %s\n", argv[1]);
    Rastrel_Delete(image);
    return saved ? 0 : 1;
}
