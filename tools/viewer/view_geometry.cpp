#include "view_geometry.h"

#include <algorithm>
#include <cmath>

namespace rastrel_view {

namespace {

/// The library cuts larger stretches in halves of its own, whose seams lie elsewhere.
constexpr int kMostCellSide = 1024;
/// Enlarged cells are drawn whole: this keeps what reaches beyond the window small.
constexpr double kMostEnlargedSide = 1024;

double FittingZoom(Size image, Size client) {
    const double across = static_cast<double>(std::max(client.width, 1)) / image.width;
    const double down = static_cast<double>(std::max(client.height, 1)) / image.height;
    return std::min({across, down, kMostZoom});
}

std::int64_t RoundToWhole(double value) {
    return static_cast<std::int64_t>(std::floor(value + 0.5));
}

std::int64_t ConstrainedOrigin(std::int64_t origin, double zoom, int image_side, int client_side) {
    const std::int64_t extent = EdgeOnScreen(0, zoom, image_side);
    if (extent <= client_side) return (client_side - extent) / 2;
    return std::clamp<std::int64_t>(origin, client_side - extent, 0);
}

/// The zooms 1, 2, 3, 4, 6, 8, 12 ... by number from 0 on; their reciprocals below.
double ZoomOnLadder(int number) {
    if (number < 0) return 1 / ZoomOnLadder(-number);
    if (number == 0) return 1;
    return number % 2 == 1 ? std::ldexp(1, (number + 1) / 2) : std::ldexp(3, number / 2 - 1);
}

/// Zooms this near to one on the ladder count as that: a smaller step would hardly be seen.
constexpr double kHair = 1.0 / 32;

/// The number of the least zoom on the ladder that is not below a zoom.
int NumberOnLadder(double zoom) {
    constexpr int kMostNumber = 64;  // 3 x 2^31 times: more than any image allows
    int number = -kMostNumber;
    while (number < kMostNumber && ZoomOnLadder(number) < zoom * (1 - kHair))
        ++number;
    return number;
}

bool IsOnLadder(double zoom, int number) {
    return ZoomOnLadder(number) <= zoom * (1 + kHair);
}

int CellSide(double zoom) {
    int side = kMostCellSide;
    while (side > 1 && side * zoom > kMostEnlargedSide)
        side /= 2;
    return side;
}

struct Span {
    int first = 0;
    int last = -1;  ///< none when it is below the first
};

/// Which cells along one side have a part of the screen from begin to end.
Span CellsAlong(std::int64_t origin, double zoom, int image_side, int cell_side, int begin,
                int end) {
    // One pixel more on either side, because edges are rounded to the screen.
    const double first = std::floor((static_cast<double>(begin - origin) - 1) / zoom / cell_side);
    const double last = std::floor((static_cast<double>(end - origin) + 1) / zoom / cell_side);
    const int count = (image_side - 1) / cell_side + 1;
    return {static_cast<int>(std::clamp<double>(first, 0, count)),
            static_cast<int>(std::clamp<double>(last, -1, count - 1))};
}

struct Interval {
    int begin = 0;
    int length = 0;
};

struct CellSpan {
    Interval source;
    Interval target;
};

CellSpan CellAlong(std::int64_t origin, double zoom, int image_side, int cell_side, int index) {
    const int begin = index * cell_side;
    const int end = begin + std::min(cell_side, image_side - begin);
    const std::int64_t target_begin = EdgeOnScreen(origin, zoom, begin);
    const std::int64_t target_end = EdgeOnScreen(origin, zoom, end);
    return {{begin, end - begin},
            {static_cast<int>(target_begin), static_cast<int>(target_end - target_begin)}};
}

}  // namespace

View FitView(Size image, Size client) {
    return Constrained({FittingZoom(image, client), 0, 0}, image, client);
}

View ZoomAt(const View& view, Size image, Size client, double zoom, ScreenPoint anchor) {
    const double least = std::min(FittingZoom(image, client), 1.0);
    const Point spot = ToImage(view, anchor);
    View zoomed;
    zoomed.zoom = std::clamp(zoom, least, kMostZoom);
    zoomed.left = RoundToWhole(anchor.x + 0.5 - spot.x * zoomed.zoom);
    zoomed.top = RoundToWhole(anchor.y + 0.5 - spot.y * zoomed.zoom);
    return Constrained(zoomed, image, client);
}

double NextZoom(double zoom, int steps) {
    int number = NumberOnLadder(zoom);
    if (steps > 0 && !IsOnLadder(zoom, number)) --number;
    return ZoomOnLadder(number + steps);
}

View Moved(const View& view, Size image, Size client, std::int64_t dx, std::int64_t dy) {
    return Constrained({view.zoom, view.left + dx, view.top + dy}, image, client);
}

View Constrained(View view, Size image, Size client) {
    view.left = ConstrainedOrigin(view.left, view.zoom, image.width, client.width);
    view.top = ConstrainedOrigin(view.top, view.zoom, image.height, client.height);
    return view;
}

Point ToImage(const View& view, ScreenPoint point) {
    return {(static_cast<double>(point.x - view.left) + 0.5) / view.zoom,
            (static_cast<double>(point.y - view.top) + 0.5) / view.zoom};
}

std::optional<Pixel> PixelAt(const View& view, Size image, ScreenPoint point) {
    const auto [x, y] = ToImage(view, point);
    if (x < 0 || y < 0 || x >= image.width || y >= image.height) return std::nullopt;
    return Pixel{static_cast<int>(x), static_cast<int>(y)};
}

std::int64_t EdgeOnScreen(std::int64_t origin, double zoom, int edge) {
    return origin + RoundToWhole(edge * zoom);
}

Box ImageOnScreen(const View& view, Size image, Size client) {
    const auto clamped = [](std::int64_t edge, int side) {
        return static_cast<int>(std::clamp<std::int64_t>(edge, 0, side));
    };
    const int left = clamped(view.left, client.width);
    const int top = clamped(view.top, client.height);
    const int right = clamped(EdgeOnScreen(view.left, view.zoom, image.width), client.width);
    const int bottom = clamped(EdgeOnScreen(view.top, view.zoom, image.height), client.height);
    return {left, top, right - left, bottom - top};
}

Point ToMap(Point corner, double pixel_size, Point image) {
    return {corner.x + image.x * pixel_size, corner.y - image.y * pixel_size};
}

int MapDecimals(double pixel_size) {
    const double size = std::fabs(pixel_size);
    if (!(size > 0)) return 0;
    constexpr double kMostDecimals = 12;
    return static_cast<int>(std::clamp(2 - std::floor(std::log10(size)), 0.0, kMostDecimals));
}

std::vector<Cell> CellsIn(const View& view, Size image, Box part) {
    std::vector<Cell> cells;
    if (part.width <= 0 || part.height <= 0) return cells;
    const int side = CellSide(view.zoom);
    const Span columns =
        CellsAlong(view.left, view.zoom, image.width, side, part.x, part.x + part.width);
    const Span rows =
        CellsAlong(view.top, view.zoom, image.height, side, part.y, part.y + part.height);
    for (int row = rows.first; row <= rows.last; ++row) {
        const CellSpan y = CellAlong(view.top, view.zoom, image.height, side, row);
        for (int column = columns.first; column <= columns.last; ++column) {
            const CellSpan x = CellAlong(view.left, view.zoom, image.width, side, column);
            // A cell that is rounded to nothing has neighbours that cover its place.
            if (x.target.length == 0 || y.target.length == 0) continue;
            cells.push_back({{x.source.begin, y.source.begin, x.source.length, y.source.length},
                             {x.target.begin, y.target.begin, x.target.length, y.target.length}});
        }
    }
    return cells;
}

int LevelFor(double zoom, int levels) {
    int level = 0;
    while (level + 1 < levels && zoom * 2 <= 1) {
        zoom *= 2;
        ++level;
    }
    return level;
}

View ViewOfLevel(const View& view, int level) {
    return {std::ldexp(view.zoom, level), view.left, view.top};
}

}  // namespace rastrel_view
