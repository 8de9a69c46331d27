#include "formats/quantize/median_cut.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

namespace rastrel {

namespace {

/// Part of the colours: which, and how many pixels they have.
struct Box {
    std::size_t first;
    std::size_t count;
    std::uint32_t sum;
};

/// The order that the colours start in shows where a cut falls between colours that are alike in
/// the direction of the cut: it is that of a table of chains, the last one that appeared first in
/// each.
void SortByBuckets(std::vector<CountedColor>& colors) {
    constexpr std::uint32_t kBuckets = 6553;
    const auto bucket = [](const CountedColor& color) {
        const auto& [c1, c2, c3] = color.parts;
        return ((c1 * 33023u + c2 * 30013u + c3 * 27011u) & 0x7fffffffu) % kBuckets;
    };
    std::reverse(colors.begin(), colors.end());
    std::vector<std::uint32_t> starts(kBuckets + 1);
    for (const CountedColor& color : colors)
        ++starts[bucket(color) + 1];
    for (std::size_t i = 1; i < starts.size(); ++i)
        starts[i] += starts[i - 1];
    std::vector<CountedColor> sorted(colors.size());
    for (const CountedColor& color : colors)
        sorted[starts[bucket(color)]++] = color;
    colors = std::move(sorted);
}

/// The part of a colour with the longest weighted range, the first of equals.
std::size_t LongestDirection(std::span<const CountedColor> colors) {
    constexpr std::array<int, 3> kWeights = {77, 150, 29};
    ColorParts least = colors.front().parts;
    ColorParts most = least;
    for (const CountedColor& color : colors) {
        for (std::size_t part = 0; part < least.size(); ++part) {
            least[part] = std::min(least[part], color.parts[part]);
            most[part] = std::max(most[part], color.parts[part]);
        }
    }
    std::array<int, 3> ranges = {};
    for (std::size_t part = 0; part < ranges.size(); ++part)
        ranges[part] = kWeights[part] * (most[part] - least[part]);
    return static_cast<std::size_t>(std::max_element(ranges.begin(), ranges.end()) -
                                    ranges.begin());
}

/// Sorts by one part; those that are alike stay in their order.
void SortByPart(std::span<CountedColor> colors, std::size_t part,
                std::vector<CountedColor>& scratch) {
    std::array<std::uint32_t, 257> starts = {};
    for (const CountedColor& color : colors)
        ++starts[color.parts[part] + 1u];
    for (std::size_t i = 1; i < starts.size(); ++i)
        starts[i] += starts[i - 1];
    scratch.assign(colors.begin(), colors.end());
    for (const CountedColor& color : scratch)
        colors[starts[color.parts[part]]++] = color;
}

/// Cuts a box whose colours are sorted: it keeps them up to the middle of its pixels, and the rest
/// is returned. Both get at least one.
Box CutAtMedian(Box& box, std::span<const CountedColor> colors) {
    const std::uint32_t half = box.sum / 2;
    std::size_t kept = 1;
    std::uint32_t kept_sum = colors[box.first].count;
    while (kept_sum < half && kept + 1 < box.count)
        kept_sum += colors[box.first + kept++].count;
    const Box rest = {box.first + kept, box.count - kept, box.sum - kept_sum};
    box.count = kept;
    box.sum = kept_sum;
    return rest;
}

/// Keeps boxes sorted by their sums, the largest first; of equals the one that was there first.
void Insert(std::vector<Box>& boxes, const Box& box) {
    const auto place = std::upper_bound(boxes.begin(), boxes.end(), box,
                                        [](const Box& a, const Box& b) { return a.sum > b.sum; });
    boxes.insert(place, box);
}

/// Moves a box that has become smaller to its place; it was there before those that follow it.
void MoveDown(std::vector<Box>& boxes, std::vector<Box>::iterator box) {
    const std::uint32_t sum = box->sum;
    const auto behind =
        std::find_if(box + 1, boxes.end(), [sum](const Box& other) { return other.sum <= sum; });
    std::rotate(box, box + 1, behind);
}

ColorParts Mean(std::span<const CountedColor> colors) {
    std::array<std::uint64_t, 3> sums = {};
    std::uint64_t count = 0;
    for (const CountedColor& color : colors) {
        for (std::size_t part = 0; part < sums.size(); ++part)
            sums[part] += std::uint64_t{color.parts[part]} * color.count;
        count += color.count;
    }
    ColorParts mean = {};
    for (std::size_t part = 0; part < sums.size(); ++part)
        mean[part] = static_cast<std::uint8_t>(sums[part] / count);
    return mean;
}

}  // namespace

std::vector<ColorParts> MedianCut(std::vector<CountedColor> colors, std::size_t wanted) {
    if (colors.empty()) return {};
    SortByBuckets(colors);
    std::uint32_t pixels = 0;
    for (const CountedColor& color : colors)
        pixels += color.count;
    std::vector<Box> boxes = {{0, colors.size(), pixels}};
    std::vector<CountedColor> scratch;
    while (boxes.size() < wanted) {
        const auto box = std::find_if(boxes.begin(), boxes.end(),
                                      [](const Box& candidate) { return candidate.count > 1; });
        if (box == boxes.end()) break;
        const auto inside = std::span(colors).subspan(box->first, box->count);
        SortByPart(inside, LongestDirection(inside), scratch);
        const Box rest = CutAtMedian(*box, colors);
        MoveDown(boxes, box);
        Insert(boxes, rest);
    }
    std::vector<ColorParts> means;
    means.reserve(boxes.size());
    for (const Box& box : boxes)
        means.push_back(Mean(std::span(colors).subspan(box.first, box.count)));
    return means;
}

}  // namespace rastrel
