// Where images stand in the viewer's window.

#include "view_geometry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace rastrel_view {

void PrintTo(const View& view, std::ostream* out) {
    *out << view.zoom << " at " << view.left << ", " << view.top;
}

namespace {

TEST(View, FitsTheWholeImageInTheMiddle) {
    const struct {
        Size image;
        Size client;
        View expected;
    } kCases[] = {
        {{100, 50}, {400, 400}, {4, 0, 100}},      {{50, 100}, {400, 400}, {4, 100, 0}},
        {{4000, 1000}, {800, 600}, {0.2, 0, 200}}, {{800, 600}, {800, 600}, {1, 0, 0}},
        {{2, 2}, {1000, 800}, {64, 436, 336}},     {{10, 10}, {0, 0}, {0.1, 0, 0}},
    };
    for (const auto& [image, client, expected] : kCases)
        EXPECT_EQ(FitView(image, client), expected)
            << image.width << " x " << image.height << " in " << client.width << " x "
            << client.height;
}

TEST(View, StepsThroughRoundZooms) {
    const struct {
        double zoom;
        int steps;
        double expected;
    } kCases[] = {
        {1, 1, 2},
        {2, 1, 3},
        {3, 1, 4},
        {4, 1, 6},
        {6, 1, 8},
        {1, -1, 1.0 / 2},
        {2, -1, 1},
        {0.5, 1, 1},
        {0.7, 1, 1},
        {0.7, -1, 0.5},
        {1.0 / 3, 1, 0.5},
        {0.3, 2, 0.5},
        {2.5, -2, 1},
        {64, -3, 24},
        {1, 0, 1},
        {0.01, 1, 1.0 / 96},
        {0.01, -1, 1.0 / 128},
        {0.498, 1, 1},
        {0.51, -1, 1.0 / 3},
    };
    for (const auto& [zoom, steps, expected] : kCases)
        EXPECT_DOUBLE_EQ(NextZoom(zoom, steps), expected) << zoom << ", " << steps;
    for (int steps = -20; steps <= 20; ++steps)
        EXPECT_DOUBLE_EQ(NextZoom(NextZoom(1, steps), -steps), 1) << steps;
}

TEST(View, KeepsTheSpotUnderTheCursorWhenZoomed) {
    const Size image = {20000, 15000};
    const Size client = {801, 599};
    const View start = ZoomAt(FitView(image, client), image, client, 1, {400, 300});
    for (const ScreenPoint anchor : {ScreenPoint{400, 300}, {0, 0}, {800, 598}, {123, 456}}) {
        View view = start;
        const Point spot = ToImage(view, anchor);
        double tolerance = 0;
        for (const int steps : {1, 3, 7, -2, -9, -1, 4}) {
            view = ZoomAt(view, image, client, NextZoom(view.zoom, steps), anchor);
            tolerance += 0.5 / view.zoom + 1e-6;  // the place on the screen is whole
            const Point now = ToImage(view, anchor);
            EXPECT_NEAR(now.x, spot.x, tolerance) << anchor.x << " at " << view.zoom;
            EXPECT_NEAR(now.y, spot.y, tolerance) << anchor.y << " at " << view.zoom;
        }
    }
}

TEST(View, LimitsZooms) {
    const Size client = {800, 600};
    const struct {
        Size image;
        double asked;
        double expected;
    } kCases[] = {
        {{8000, 6000}, 0.001, 0.1},
        {{8000, 6000}, 1000, kMostZoom},
        {{80, 60}, 0.001, 1},
        {{80, 60}, 7, 7},
    };
    for (const auto& [image, asked, expected] : kCases)
        EXPECT_DOUBLE_EQ(ZoomAt(FitView(image, client), image, client, asked, {9, 9}).zoom,
                         expected)
            << image.width << ", " << asked;
}

TEST(View, LeavesNoGapAndKeepsSmallImagesInTheMiddle) {
    const Size client = {100, 100};
    const View view = {2, 0, 0};
    const struct {
        Size image;
        std::int64_t dx;
        std::int64_t dy;
        View expected;
    } kCases[] = {
        {{200, 200}, -30, -40, {2, -30, -40}},  {{200, 200}, -1000, 0, {2, -300, 0}},
        {{200, 200}, 10, 10, {2, 0, 0}},        {{20, 200}, 5, -7, {2, 30, -7}},
        {{200, 21}, -500, -500, {2, -300, 29}},
    };
    for (const auto& [image, dx, dy, expected] : kCases)
        EXPECT_EQ(Moved(view, image, client, dx, dy), expected) << dx << ", " << dy;
}

TEST(View, TellsThePixelUnderTheCursor) {
    const Size image = {10, 5};
    const View view = {4, 20, -8};
    const struct {
        ScreenPoint point;
        std::optional<Pixel> expected;
    } kCases[] = {
        {{20, 0}, Pixel{0, 2}},   {{23, 3}, Pixel{0, 2}},   {{24, 4}, Pixel{1, 3}},
        {{59, 11}, Pixel{9, 4}},  {{60, 11}, std::nullopt}, {{19, 0}, std::nullopt},
        {{59, 12}, std::nullopt},
    };
    for (const auto& [point, expected] : kCases)
        EXPECT_EQ(PixelAt(view, image, point), expected) << point.x << ", " << point.y;
    // Many pixels on one of the screen: the one in its middle.
    EXPECT_EQ(PixelAt({0.1, 0, 0}, {100, 100}, {9, 0}), (Pixel{95, 5}));
}

TEST(View, TellsPlacesOnTheMap) {
    const Point spot = ToMap({600000, 5100000}, 2.5, {0, 0});
    EXPECT_DOUBLE_EQ(spot.x, 600000);
    EXPECT_DOUBLE_EQ(spot.y, 5100000);
    const Point inside = ToMap({600000, 5100000}, 2.5, {10.5, 4});
    EXPECT_DOUBLE_EQ(inside.x, 600026.25);
    EXPECT_DOUBLE_EQ(inside.y, 5099990) << "rows go down, map coordinates up";
    EXPECT_EQ(MapDecimals(2.5), 2);
    EXPECT_EQ(MapDecimals(30), 1);
    EXPECT_EQ(MapDecimals(1000), 0);
    EXPECT_EQ(MapDecimals(0.0001), 6);
    EXPECT_EQ(MapDecimals(0), 0);
}

TEST(Levels, AreThoseThatNeedNoEnlarging) {
    const struct {
        double zoom;
        int levels;
        int expected;
    } kCases[] = {{2, 5, 0},   {1, 5, 0},   {0.51, 5, 0},  {0.5, 5, 1},
                  {0.3, 5, 1}, {0.2, 5, 2}, {0.001, 5, 4}, {0.001, 1, 0}};
    for (const auto& [zoom, levels, expected] : kCases) {
        EXPECT_EQ(LevelFor(zoom, levels), expected) << zoom;
        EXPECT_LE(ViewOfLevel({zoom, 3, 4}, expected).zoom, std::max(zoom, 1.0)) << zoom;
    }
}

/// Which pixel of the image each screen pixel of a part shows, as column + row x width, when cells
/// are enlarged by repeating pixels; -1 where nothing is drawn, and a failure where two cells meet.
std::vector<int> Drawn(const View& view, Size image, const Box& part) {
    std::vector<int> shown(static_cast<std::size_t>(part.width * part.height), -1);
    for (const auto& [source, target] : CellsIn(view, image, part)) {
        EXPECT_TRUE(source.x >= 0 && source.y >= 0 && source.width > 0 && source.height > 0 &&
                    source.x + source.width <= image.width &&
                    source.y + source.height <= image.height)
            << source.x << ", " << source.y << ", " << source.width << ", " << source.height;
        EXPECT_LE(std::max(source.width, source.height), 1024);
        const int left = std::max(target.x, part.x);
        const int right = std::min(target.x + target.width, part.x + part.width);
        const int bottom = std::min(target.y + target.height, part.y + part.height);
        for (int y = std::max(target.y, part.y); y < bottom; ++y) {
            const int row = source.y + (2 * (y - target.y) + 1) * source.height / target.height / 2;
            for (int x = left; x < right; ++x) {
                const int column =
                    source.x + (2 * (x - target.x) + 1) * source.width / target.width / 2;
                int& at = shown[static_cast<std::size_t>((y - part.y) * part.width + x - part.x)];
                EXPECT_EQ(at, -1) << "drawn twice: " << x << ", " << y;
                at = row * image.width + column;
            }
        }
    }
    return shown;
}

struct Scene {
    Size image;
    View view;
};

const Scene kScenes[] = {
    {{47, 33}, {1, 5, -3}},           {{47, 33}, {3, -20, 10}},
    {{47, 33}, {64, -900, -700}},     {{47, 33}, {0.3, 2, 1}},
    {{3000, 2100}, {1, -995, -1000}}, {{3000, 2100}, {2, -2020, 0}},
    {{3000, 2100}, {0.37, -15, -3}},  {{3000, 2100}, {0.01, 10, 10}},
    {{2001, 1}, {1.7, -1500, 20}},    {{1, 5000}, {6, 7, -29900}},
};

TEST(Cells, CoverTheImageOnceAndNothingElse) {
    for (const auto& [image, view] : kScenes) {
        SCOPED_TRACE(std::to_string(image.width) + " at " + std::to_string(view.zoom));
        const Size client = {120, 90};
        const Box on_screen = ImageOnScreen(view, image, client);
        for (const Box& part : {Box{0, 0, 120, 90}, {17, 0, 5, 90}, {0, 80, 120, 10}}) {
            const std::vector<int> shown = Drawn(view, image, part);
            int wrong = 0;
            for (int y = 0; y < part.height; ++y) {
                for (int x = 0; x < part.width; ++x) {
                    const int column = part.x + x;
                    const int row = part.y + y;
                    const bool has_image = column >= on_screen.x && row >= on_screen.y &&
                                           column < on_screen.x + on_screen.width &&
                                           row < on_screen.y + on_screen.height;
                    const bool is_drawn = shown[static_cast<std::size_t>(y * part.width + x)] >= 0;
                    wrong += has_image != is_drawn ? 1 : 0;
                }
            }
            EXPECT_EQ(wrong, 0) << part.x << ", " << part.y;
        }
    }
}

TEST(Cells, ShowThePixelThatTheCursorIsTold) {
    for (const auto& [image, view] : kScenes) {
        if (view.zoom != std::floor(view.zoom)) continue;
        SCOPED_TRACE(std::to_string(image.width) + " at " + std::to_string(view.zoom));
        const Box part = {0, 0, 120, 90};
        const std::vector<int> shown = Drawn(view, image, part);
        for (int y = 0; y < part.height; y += 7) {
            for (int x = 0; x < part.width; ++x) {
                const std::optional<Pixel> pixel = PixelAt(view, image, {x, y});
                EXPECT_EQ(shown[static_cast<std::size_t>(y * part.width + x)],
                          pixel ? pixel->row * image.width + pixel->column : -1)
                    << x << ", " << y;
            }
        }
    }
}

TEST(Cells, LookTheSameWhereverTheyAreMovedTo) {
    for (const auto& [image, view] : kScenes) {
        SCOPED_TRACE(std::to_string(image.width) + " at " + std::to_string(view.zoom));
        const View moved = {view.zoom, view.left + 13, view.top - 8};
        EXPECT_EQ(Drawn(view, image, {20, 20, 60, 50}), Drawn(moved, image, {33, 12, 60, 50}));
    }
}

}  // namespace
}  // namespace rastrel_view
