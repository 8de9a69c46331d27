#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "color_ramp.h"

namespace rastrel_cli {

namespace {

constexpr std::size_t kEntries = 256;

/// A stretch of elevations over which one colour blends into another.
struct Segment {
    double from = 0.0;
    double to = 0.0;
    PaletteEntry from_color;
    PaletteEntry to_color;
};

std::uint8_t Blend(std::uint8_t from, std::uint8_t to, double share) {
    return static_cast<std::uint8_t>(std::lround(from + (to - from) * share));
}

PaletteEntry Blend(const PaletteEntry& from, const PaletteEntry& to, double share) {
    return {Blend(from.red, to.red, share), Blend(from.green, to.green, share),
            Blend(from.blue, to.blue, share)};
}

int Difference(const PaletteEntry& a, const PaletteEntry& b) {
    return std::max(
        {std::abs(a.red - b.red), std::abs(a.green - b.green), std::abs(a.blue - b.blue)});
}

/// The ramp as segments that cover minimum to maximum. Of several stops at one elevation the first
/// ends the colours below and the last begins those above.
std::vector<Segment> SegmentsOf(const ColorRamp& ramp, double minimum, double maximum) {
    std::vector<ColorRamp::Stop> stops = ramp.stops;
    for (ColorRamp::Stop& stop : stops) {
        if (stop.is_share)
            stop.position = minimum * (1.0 - stop.position) + maximum * stop.position;
    }
    std::stable_sort(stops.begin(), stops.end(),
                     [](const auto& a, const auto& b) { return a.position < b.position; });
    // Below the lowest and above the highest stop their colours go on.
    stops.insert(stops.begin(), {minimum, false, stops.front().color});
    stops.push_back({maximum, false, stops.back().color});
    std::vector<Segment> segments;
    for (std::size_t i = 0; i + 1 < stops.size(); ++i) {
        const ColorRamp::Stop& low = stops[i];
        const ColorRamp::Stop& high = stops[i + 1];
        const Segment part{
            std::max(low.position, minimum), std::min(high.position, maximum), {}, {}};
        if (!(part.from < part.to)) continue;
        const double length = high.position - low.position;
        segments.push_back({part.from, part.to,
                            Blend(low.color, high.color, (part.from - low.position) / length),
                            Blend(low.color, high.color, (part.to - low.position) / length)});
    }
    return segments;
}

/// How many of the entries each segment gets: one, and a share of the others by how much its colour
/// changes.
std::vector<std::size_t> ShareEntries(const std::vector<Segment>& segments) {
    double all_changes = 0.0;
    for (const Segment& segment : segments)
        all_changes += Difference(segment.from_color, segment.to_color) + 1;
    const auto spare = static_cast<double>(kEntries - segments.size());
    std::vector<std::size_t> counts;
    double changes = 0.0;
    std::size_t given = 0;
    for (const Segment& segment : segments) {
        changes += Difference(segment.from_color, segment.to_color) + 1;
        const auto until_here =
            static_cast<std::size_t>(std::lround(spare * changes / all_changes));
        counts.push_back(1 + until_here - given);
        given = until_here;
    }
    return counts;
}

/// Segments joined in pairs until there are no more than entries.
void JoinSegments(std::vector<Segment>& segments) {
    while (segments.size() > kEntries) {
        std::vector<Segment> joined;
        for (std::size_t i = 0; i < segments.size(); i += 2) {
            Segment pair = segments[i];
            if (i + 1 < segments.size()) {
                pair.to = segments[i + 1].to;
                pair.to_color = segments[i + 1].to_color;
            }
            joined.push_back(pair);
        }
        segments = std::move(joined);
    }
}

}  // namespace

ElevationPalette MakeElevationPalette(const ColorRamp& ramp, double minimum, double maximum) {
    ElevationPalette palette;
    std::vector<Segment> segments = SegmentsOf(ramp, minimum, maximum);
    if (segments.empty()) {
        // A level plain: the colour just below and just above it, where a stop stands there.
        segments = SegmentsOf(ramp, minimum, std::nextafter(minimum, HUGE_VAL));
    }
    JoinSegments(segments);
    const std::vector<std::size_t> counts = ShareEntries(segments);
    std::size_t entry = 0;
    for (std::size_t s = 0; s < segments.size(); ++s) {
        const Segment& segment = segments[s];
        const auto count = static_cast<double>(counts[s]);
        for (std::size_t i = 0; i < counts[s]; ++i, ++entry) {
            const auto step = static_cast<double>(i);
            // The first entry has the colour of the segment's start and the last that of its end.
            const double share = counts[s] > 1 ? step / (count - 1.0) : 0.0;
            palette.limits[entry] = segment.from + (segment.to - segment.from) * (step / count);
            palette.colors[entry] = Blend(segment.from_color, segment.to_color, share);
        }
    }
    return palette;
}

PaletteEntry ColorAt(const ColorRamp& ramp, double elevation) {
    return MakeElevationPalette(ramp, elevation, elevation).colors.front();
}

}  // namespace rastrel_cli
