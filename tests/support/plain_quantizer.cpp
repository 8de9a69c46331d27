#include "support/plain_quantizer.h"

#include <algorithm>
#include <forward_list>
#include <optional>

namespace rastrel_test {

namespace {

using Parts = std::array<std::uint8_t, 3>;

struct Counted {
    Parts parts;
    int count;
};

struct Box {
    std::size_t first;
    std::size_t colors;
    int sum;
};

constexpr std::size_t kBuckets = 6553;
constexpr std::size_t kMostColors = 32767;

std::size_t BucketOf(const Parts& parts) {
    return ((parts[0] * 33023u + parts[1] * 30013u + parts[2] * 27011u) & 0x7fffffffu) % kBuckets;
}

template <class Value>
using Chains = std::vector<std::forward_list<Value>>;

std::vector<Parts> PixelsOf(const std::vector<std::uint8_t>& bytes) {
    std::vector<Parts> pixels;
    pixels.reserve(bytes.size() / 3);
    for (std::size_t at = 0; at < bytes.size(); at += 3)
        pixels.push_back({bytes[at], bytes[at + 1], bytes[at + 2]});
    return pixels;
}

/// None when there are too many colours.
std::optional<std::vector<Counted>> CountColors(const std::vector<Parts>& pixels) {
    Chains<Counted> chains(kBuckets);
    std::size_t count = 0;
    for (const Parts& pixel : pixels) {
        auto& chain = chains[BucketOf(pixel)];
        const auto known = std::find_if(chain.begin(), chain.end(),
                                        [&](const Counted& c) { return c.parts == pixel; });
        if (known != chain.end()) {
            ++known->count;
        } else {
            if (++count > kMostColors) return std::nullopt;
            chain.push_front({pixel, 1});
        }
    }
    std::vector<Counted> colors;
    for (const auto& chain : chains)
        colors.insert(colors.end(), chain.begin(), chain.end());
    return colors;
}

std::vector<Box> CutIntoBoxes(std::vector<Counted>& colors, std::size_t wanted, int pixels) {
    std::vector<Box> boxes = {{0, colors.size(), pixels}};
    while (boxes.size() < wanted) {
        const auto box =
            std::find_if(boxes.begin(), boxes.end(), [](const Box& b) { return b.colors >= 2; });
        if (box == boxes.end()) break;
        const auto begin = colors.begin() + static_cast<std::ptrdiff_t>(box->first);
        const auto end = begin + static_cast<std::ptrdiff_t>(box->colors);
        std::array<int, 3> ranges = {};
        for (std::size_t part = 0; part < 3; ++part) {
            const auto by_part = [part](const Counted& a, const Counted& b) {
                return a.parts[part] < b.parts[part];
            };
            const auto [least, most] = std::minmax_element(begin, end, by_part);
            constexpr std::array<int, 3> kWeights = {77, 150, 29};
            ranges[part] = (most->parts[part] - least->parts[part]) * kWeights[part];
        }
        const std::size_t part = ranges[0] >= ranges[1] && ranges[0] >= ranges[2] ? 0
                                 : ranges[1] >= ranges[2]                         ? 1
                                                                                  : 2;
        std::stable_sort(begin, end, [part](const Counted& a, const Counted& b) {
            return a.parts[part] < b.parts[part];
        });
        int sum = begin->count;
        std::size_t kept = 1;
        for (; kept < box->colors - 1 && sum < box->sum / 2; ++kept)
            sum += begin[static_cast<std::ptrdiff_t>(kept)].count;
        const Box rest = {box->first + kept, box->colors - kept, box->sum - sum};
        box->colors = kept;
        box->sum = sum;
        boxes.push_back(rest);
        std::stable_sort(boxes.begin(), boxes.end(),
                         [](const Box& a, const Box& b) { return a.sum > b.sum; });
    }
    return boxes;
}

/// The boxes' means at the scale of the pixels, which are rescaled until their colours fit.
std::vector<Parts> Choose(std::vector<Parts>& pixels, std::size_t wanted, int& maximum) {
    auto colors = CountColors(pixels);
    for (maximum = 255; !colors; colors = CountColors(pixels)) {
        const int rescaled = maximum / 2;
        for (Parts& pixel : pixels) {
            for (std::uint8_t& part : pixel)
                part = static_cast<std::uint8_t>(part * rescaled / maximum);
        }
        maximum = rescaled;
    }
    std::vector<Parts> means;
    for (const Box& box : CutIntoBoxes(*colors, wanted, static_cast<int>(pixels.size()))) {
        Parts mean = {};
        for (std::size_t part = 0; part < 3; ++part) {
            std::int64_t sum = 0;
            for (std::size_t i = box.first; i < box.first + box.colors; ++i)
                sum += std::int64_t{(*colors)[i].parts[part]} * (*colors)[i].count;
            mean[part] = static_cast<std::uint8_t>(std::min<std::int64_t>(sum / box.sum, maximum));
        }
        means.push_back(mean);
    }
    return means;
}

void RescaleTo255(std::vector<Parts>& colors, int maximum) {
    for (Parts& color : colors) {
        for (std::uint8_t& part : color)
            part = static_cast<std::uint8_t>(part * 255 / maximum);
    }
}

/// The index of the least distance, the first of equals, for each pixel; searched once for each
/// colour.
template <class Distance>
std::vector<std::uint8_t> Map(const std::vector<Parts>& pixels, const std::vector<Parts>& colors,
                              Distance distance) {
    struct Known {
        Parts parts;
        std::uint8_t index;
    };
    Chains<Known> chains(kBuckets);
    std::vector<std::uint8_t> indices;
    indices.reserve(pixels.size());
    for (const Parts& pixel : pixels) {
        auto& chain = chains[BucketOf(pixel)];
        auto known = std::find_if(chain.begin(), chain.end(),
                                  [&](const Known& k) { return k.parts == pixel; });
        if (known == chain.end()) {
            int least = 2000000000;
            std::size_t nearest = 0;
            for (std::size_t i = 0; i < colors.size(); ++i) {
                int sum = 0;
                for (std::size_t part = 0; part < 3; ++part)
                    sum += distance(pixel[part] - colors[i][part]);
                if (sum < least) {
                    least = sum;
                    nearest = i;
                }
            }
            chain.push_front({pixel, static_cast<std::uint8_t>(nearest)});
            known = chain.begin();
        }
        indices.push_back(known->index);
    }
    return indices;
}

}  // namespace

PlainReduction ReducePlainly(const std::vector<std::uint8_t>& bytes, std::size_t wanted) {
    std::vector<Parts> pixels = PixelsOf(bytes);
    std::vector<Parts> sorted;
    for (const Parts& pixel : pixels) {
        const auto place = std::lower_bound(sorted.begin(), sorted.end(), pixel);
        if (place != sorted.end() && *place == pixel) continue;
        sorted.insert(place, pixel);
        if (sorted.size() > wanted) break;
    }
    PlainReduction reduction;
    if (sorted.size() <= wanted) {
        reduction.palette = sorted;
        for (const Parts& pixel : pixels)
            reduction.indices.push_back(static_cast<std::uint8_t>(
                std::lower_bound(sorted.begin(), sorted.end(), pixel) - sorted.begin()));
        return reduction;
    }
    int maximum = 0;
    reduction.palette = Choose(pixels, wanted, maximum);
    reduction.indices = Map(pixels, reduction.palette, [](int d) { return d * d; });
    RescaleTo255(reduction.palette, maximum);
    return reduction;
}

std::vector<std::uint8_t> MapPlainly(const std::vector<std::uint8_t>& bytes,
                                     const std::vector<std::array<std::uint8_t, 3>>& palette) {
    return Map(PixelsOf(bytes), palette, [](int d) { return d < 0 ? -d : d; });
}

std::vector<std::array<std::uint8_t, 3>> ChoosePlainly(const std::vector<std::uint8_t>& bytes,
                                                       std::size_t wanted) {
    std::vector<Parts> pixels = PixelsOf(bytes);
    int maximum = 0;
    std::vector<Parts> chosen = Choose(pixels, wanted, maximum);
    RescaleTo255(chosen, maximum);
    return chosen;
}

}  // namespace rastrel_test
