#pragma once

#include <cstdint>
#include <optional>
#include <vector>

// Where an image stands in a window. Image coordinates count pixels from the image's upper-left
// corner, x to the right and y downward, so that pixel (column, row) covers [column, column + 1) x
// [row, row + 1). Screen coordinates are whole pixels of the window's client area. Map coordinates
// have y upward, in map units.

namespace rastrel_view {

struct Size {
    int width = 0;
    int height = 0;
};

struct Box {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    friend bool operator==(const Box&, const Box&) = default;
};

struct ScreenPoint {
    int x = 0;
    int y = 0;

    friend bool operator==(const ScreenPoint&, const ScreenPoint&) = default;
};

struct Point {
    double x = 0;
    double y = 0;
};

struct Pixel {
    int column = 0;
    int row = 0;

    friend bool operator==(const Pixel&, const Pixel&) = default;
};

/// The place of an image: how many screen pixels a pixel of the image covers, and the screen place
/// of its upper-left corner. That is whole, so that a move shows the same samples elsewhere.
struct View {
    double zoom = 1;
    std::int64_t left = 0;
    std::int64_t top = 0;

    friend bool operator==(const View&, const View&) = default;
};

constexpr double kMostZoom = 64;

/// The whole image as large as it goes, at most kMostZoom times enlarged, in the middle.
[[nodiscard]] View FitView(Size image, Size client);

/// The view with another zoom in which the spot under a screen point stays there. Zooms are kept
/// within kMostZoom and the lesser of 1 and the zoom that fits.
[[nodiscard]] View ZoomAt(const View& view, Size image, Size client, double zoom,
                          ScreenPoint anchor);

/// The next of the zooms 1, 2, 3, 4, 6, 8, 12 ... and their reciprocals that is above (steps > 0)
/// or below a zoom, and so on for further steps. A zoom that is nearly one of them counts as it.
[[nodiscard]] double NextZoom(double zoom, int steps);

/// The view moved on the screen.
[[nodiscard]] View Moved(const View& view, Size image, Size client, std::int64_t dx,
                         std::int64_t dy);

/// The view brought to where it wastes no room: an image less wide than the window stands in the
/// middle, a wider one leaves no gap at either side; and so for heights.
[[nodiscard]] View Constrained(View view, Size image, Size client);

/// The image coordinates under the middle of a screen pixel.
[[nodiscard]] Point ToImage(const View& view, ScreenPoint point);
/// The image's pixel under a screen pixel; none beside the image.
[[nodiscard]] std::optional<Pixel> PixelAt(const View& view, Size image, ScreenPoint point);
/// The screen place of an edge between pixels, edges being counted from 0; origin is the view's
/// left or top.
[[nodiscard]] std::int64_t EdgeOnScreen(std::int64_t origin, double zoom, int edge);
/// The part of the image's place that lies in the client area; empty sides are 0.
[[nodiscard]] Box ImageOnScreen(const View& view, Size image, Size client);

/// Map coordinates of image coordinates: x and y of the image's upper-left corner and the side of
/// its square pixels in map units.
[[nodiscard]] Point ToMap(Point corner, double pixel_size, Point image);
/// How many decimals tell a hundredth of a pixel on the map apart.
[[nodiscard]] int MapDecimals(double pixel_size);

/// A rectangle of the image, its first row the uppermost, and the rectangle of the screen that
/// shows it.
struct Cell {
    Box source;
    Box target;
};

/// What must be drawn for a part of the screen to be up to date. Cells lie on a grid that belongs
/// to the image, so that a cell looks the same wherever the image is moved to. Their sources are at
/// most 1024 pixels wide and high; they may reach beyond the part.
[[nodiscard]] std::vector<Cell> CellsIn(const View& view, Size image, Box part);

/// Which of an image's levels to draw, 0 being the image itself and each further one half as wide
/// and high: the least detailed one that need not be enlarged. levels is how many there are.
[[nodiscard]] int LevelFor(double zoom, int levels);
/// The same place told for a level's own pixels.
[[nodiscard]] View ViewOfLevel(const View& view, int level);

}  // namespace rastrel_view
