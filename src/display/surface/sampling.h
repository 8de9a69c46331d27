#pragma once

#include <cstdint>
#include <vector>

namespace rastrel {

/// One side, horizontal or vertical, of a rectangle: it covers length pixels from start on, or,
/// when length is negative, that many from start backward.
struct Span {
    int start = 0;
    int length = 0;
};

/// Where the pixels of a scaled run come from.
struct Samples {
    int first = 0;             ///< the first pixel of the destination, as the next ones inside it
    std::vector<int> sources;  ///< the source's pixel for this one and each that follows
    bool is_in_step = false;   ///< each source follows the one before

    [[nodiscard]] bool IsEmpty() const { return sources.empty(); }
};

/// Chooses, for each pixel of a destination of limit pixels that a span covers, the pixel of the
/// source span under its centre; pixels whose source lies outside the source's limit are left out
/// at both ends. Backward: the source is counted from its other end.
[[nodiscard]] Samples ChooseSamples(Span destination, int destination_limit, Span source,
                                    int source_limit, bool backward);

}  // namespace rastrel
