/*
 * Makes up an island in the sea as an elevation grid: fractal noise gives its coast and the sea
 * floor, and mountains rise while rivers cut their valleys. Heights in metres as 32-bit floats,
 * cells of 30 metres; the same island every time. Usage: make_island FILE.bil
 */
#include <math.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { SIDE = 1024, CELLS = SIDE * SIDE, CELL_METRES = 30, AGES = 30 };

/* Row after row, the northernmost first. */
static float heights[CELLS];
static float uplift[CELLS];   /* metres an age; 0 at sea */
static float steepest[CELLS]; /* the slope that the ground holds */

/* A number from 0 to 1 for each point of a lattice, by integer hashing. */
static double Lattice(int x, int y, uint32_t seed) {
    uint32_t h = (uint32_t)x * 0x9E3779B1U ^ (uint32_t)y * 0x85EBCA77U ^ seed * 0xC2B2AE3DU;
    h = (h ^ (h >> 15)) * 0x2C1B3C6DU;
    h = (h ^ (h >> 12)) * 0x297A2D39U;
    return (double)(h ^ (h >> 15)) / 4294967295.0;
}

static double Fade(double t) {
    return t * t * t * (t * (t * 6.0 - 15.0) + 10.0);
}

/* Smooth noise from -1 to 1. */
static double Noise(double x, double y, uint32_t seed) {
    const double fx = floor(x), fy = floor(y);
    const int ix = (int)fx, iy = (int)fy;
    const double u = Fade(x - fx), v = Fade(y - fy);
    const double top = Lattice(ix, iy, seed) * (1.0 - u) + Lattice(ix + 1, iy, seed) * u;
    const double low = Lattice(ix, iy + 1, seed) * (1.0 - u) + Lattice(ix + 1, iy + 1, seed) * u;
    return 2.0 * (top * (1.0 - v) + low * v) - 1.0;
}

static double Fractal(double x, double y, int octaves, uint32_t seed) {
    double sum = 0.0, weight = 0.5;
    int i;
    for (i = 0; i < octaves; ++i) {
        sum += weight * Noise(x, y, seed + (uint32_t)i);
        weight *= 0.5;
        /* Each octave is turned, so that the lattices do not show. */
        const double turned = 1.6 * x + 1.2 * y;
        y = 1.6 * y - 1.2 * x;
        x = turned;
    }
    return sum;
}

/* The sea floor, a hilly plain for the land, and what will make mountains of it. */
static void Begin(void) {
    int cell;
    for (cell = 0; cell < CELLS; ++cell) {
        const double x = (cell % SIDE - SIDE / 2) / (SIDE / 2.0);
        const double y = (cell / SIDE - SIDE / 2) / (SIDE / 2.0);
        /* Bent coordinates make bays and capes out of an ellipse. */
        const double bent_x = x + 0.28 * Fractal(2.1 * x + 5.0, 2.1 * y, 6, 11);
        const double bent_y = y + 0.28 * Fractal(2.1 * x, 2.1 * y + 9.0, 6, 23);
        const double from_centre = sqrt(bent_x * bent_x * 0.75 + bent_y * bent_y * 1.15);
        const double shape = 0.62 - from_centre + 0.2 * Fractal(4.0 * x, 4.0 * y, 8, 37);
        const double hills = Fractal(6.0 * x, 6.0 * y, 8, 71);
        steepest[cell] = (float)(0.62 + 0.5 * Fractal(9.0 * x + 2.0, 9.0 * y, 4, 97));
        if (shape < 0.0) {
            heights[cell] = (float)(1900.0 * shape + 40.0 * hills * (1.0 - exp(9.0 * shape)) - 1.0);
        } else {
            const double rise = 1.0 - exp(-5.0 * shape);
            heights[cell] = (float)(1.0 + 250.0 * rise * (1.0 + hills));
            const double ranges = fabs(Fractal(2.6 * x, 2.6 * y + 4.0, 3, 53));
            uplift[cell] = (float)(190.0 * rise * (0.55 + 1.8 * ranges));
        }
    }
}

/*
 * The land cells from the coast upward, each after the neighbour that its water runs to: the lowest
 * rim around a hollow is found first, and the hollow is drained over it (the order of the priority
 * flood of R. Barnes, C. Lehman and D. Mulla, "Priority-Flood", 2014). A heap holds the cells that
 * touch what is drained, the lowest on top.
 */
static int order[CELLS], receiver[CELLS], heap[CELLS], heap_size;
static float water_level[CELLS];

static void Push(int cell) {
    int at = heap_size++;
    while (at > 0 && water_level[heap[(at - 1) / 2]] > water_level[cell]) {
        heap[at] = heap[(at - 1) / 2];
        at = (at - 1) / 2;
    }
    heap[at] = cell;
}

static int Pop(void) {
    const int top = heap[0], last = heap[--heap_size];
    int at = 0, child;
    while ((child = 2 * at + 1) < heap_size) {
        if (child + 1 < heap_size && water_level[heap[child + 1]] < water_level[heap[child]])
            ++child;
        if (water_level[heap[child]] >= water_level[last]) break;
        heap[at] = heap[child];
        at = child;
    }
    heap[at] = last;
    return top;
}

/* Lets the water of undrained neighbours run to a cell. The sea surrounds all land. */
static void Drain(int cell) {
    int row, column;
    for (row = -1; row <= 1; ++row) {
        for (column = -1; column <= 1; ++column) {
            const int neighbor = cell + row * SIDE + column;
            if (neighbor < 0 || neighbor >= CELLS || uplift[neighbor] <= 0.0f ||
                receiver[neighbor] >= 0)
                continue;
            receiver[neighbor] = cell;
            water_level[neighbor] = fmaxf(heights[neighbor], water_level[cell]);
            Push(neighbor);
        }
    }
}

static int DrainAll(void) {
    int cell, count = 0;
    for (cell = 0; cell < CELLS; ++cell) {
        receiver[cell] = -1;
        water_level[cell] = heights[cell];
    }
    for (cell = 0; cell < CELLS; ++cell) {
        if (uplift[cell] <= 0.0f) Drain(cell);
    }
    while (heap_size > 0) {
        order[count] = Pop();
        Drain(order[count++]);
    }
    return count;
}

static float CellsBetween(int cell, int neighbor) {
    const int step = abs(cell - neighbor);
    return step == 1 || step == SIDE ? 1.0f : 1.41421356f;
}

/* No cell stays higher above one of its neighbours than its ground holds. */
static void Slide(int cell) {
    int row, column;
    for (row = -1; row <= 1; ++row) {
        for (column = -1; column <= 1; ++column) {
            const int neighbor = cell + row * SIDE + column;
            if (neighbor == cell || neighbor < 0 || neighbor >= CELLS) continue;
            heights[cell] = fminf(heights[cell],
                                  fmaxf(heights[neighbor], 0.0f) +
                                      steepest[cell] * CELL_METRES * CellsBetween(cell, neighbor));
        }
    }
}

/*
 * One age: the land rises, and rivers cut in proportion to their slope and the square root of the
 * area that they drain, solved from the mouth upward (J. Braun and S. Willett, "A very efficient
 * O(n), implicit and parallel method to solve the stream power equation", 2013). Slopes that are
 * too steep slide.
 */
static void Age(void) {
    static float area[CELLS];
    const int count = DrainAll();
    int i;
    for (i = 0; i < CELLS; ++i)
        area[i] = 1.0f;
    for (i = count - 1; i >= 0; --i)
        area[receiver[order[i]]] += area[order[i]];
    for (i = 0; i < count; ++i) {
        const int cell = order[i], to = receiver[cell];
        const float cut = 0.75f * sqrtf(area[cell]) / CellsBetween(cell, to);
        const float base = fmaxf(heights[to], 0.0f);
        heights[cell] = (heights[cell] + uplift[cell] + cut * base) / (1.0f + cut);
        Slide(cell);
    }
}

static int WriteHeader(const char* data_name) {
    char name[4096];
    const size_t length = strlen(data_name);
    const uint16_t one = 1;
    FILE* file;
    int written;
    if (length < 4 || length >= sizeof name || strcmp(data_name + length - 4, ".bil") != 0)
        return 0;
    memcpy(name, data_name, length - 3);
    memcpy(name + length - 3, "hdr", 4);
    file = fopen(name, "w");
    if (file == NULL) return 0;
    written =
        fprintf(file,
                "BYTEORDER %s\nLAYOUT BIL\nNROWS %d\nNCOLS %d\nNBANDS 1\nNBITS 32\n"
                "PIXELTYPE FLOAT\nULXMAP 640015\nULYMAP 4630705\nXDIM %d\nYDIM %d\n",
                *(const char*)&one == 1 ? "I" : "M", SIDE, SIDE, CELL_METRES, CELL_METRES) > 0;
    return fclose(file) == 0 && written;
}

int main(int argc, char** argv) {
    int age, written;
    FILE* file;
    if (argc != 2) {
        fprintf(stderr, "usage: make_island FILE.bil\n");
        return 2;
    }
    Begin();
    for (age = 0; age < AGES; ++age)
        Age();
    file = fopen(argv[1], "wb");
    written = file != NULL && fwrite(heights, sizeof heights, 1, file) == 1;
    if (file != NULL) written = fclose(file) == 0 && written;
    if (!written || !WriteHeader(argv[1])) {
        fprintf(stderr, "make_island: cannot write %s and its header\n", argv[1]);
        return 1;
    }
    return 0;
}
