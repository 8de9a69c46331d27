#include "display/surface/sampling.h"

#include <algorithm>
#include <cstddef>

namespace rastrel {

namespace {

/// A span that goes forward, and whether it has been turned for that.
struct Forward {
    explicit Forward(Span span)
        : start(span.length < 0 ? std::int64_t{span.start} + span.length + 1 : span.start),
          length(span.length < 0 ? -std::int64_t{span.length} : span.length),
          is_turned(span.length < 0) {}
    std::int64_t start;
    std::int64_t length;
    bool is_turned;
};

}  // namespace

Samples ChooseSamples(Span destination, int destination_limit, Span source, int source_limit,
                      bool backward) {
    const Forward to(destination);
    const Forward from(source);
    const std::int64_t begin = std::max<std::int64_t>(0, -to.start);
    const std::int64_t end = std::min(to.length, destination_limit - to.start);
    Samples samples;
    if (begin >= end || from.length == 0) return samples;
    const bool counts_down = backward != (to.is_turned != from.is_turned);
    samples.sources.reserve(static_cast<std::size_t>(end - begin));
    // Pixel i has its centre at (2 i + 1) / (2 length): followed with whole numbers, which no
    // product of two sides exceeds.
    const std::int64_t whole = 2 * to.length;
    std::int64_t at = (2 * begin + 1) * from.length / whole;
    std::int64_t rest = (2 * begin + 1) * from.length % whole;
    const std::int64_t step = from.length / to.length;
    const std::int64_t rest_step = 2 * (from.length % to.length);
    for (std::int64_t i = begin; i < end; ++i) {
        const std::int64_t pixel = from.start + (counts_down ? from.length - 1 - at : at);
        if (pixel >= 0 && pixel < source_limit) {
            if (samples.sources.empty()) samples.first = static_cast<int>(to.start + i);
            samples.sources.push_back(static_cast<int>(pixel));
        }
        at += step;
        rest += rest_step;
        if (rest >= whole) {
            rest -= whole;
            ++at;
        }
    }
    samples.is_in_step = to.length == from.length && !counts_down;
    return samples;
}

}  // namespace rastrel
