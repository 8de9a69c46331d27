#pragma once

#include <csetjmp>
#include <type_traits>

namespace rastrel {

/// Where control comes back to when a codec library written in C gives up by a long jump.
struct RecoveryPoint {
    std::jmp_buf place;
};

/// Runs calls of such a library and returns their result; false when the library jumped back. A
/// jump skips destructors, so nothing with one may be born in the calls, nor in a callback while
/// the library can jump out of it.
template <class Calls>
[[nodiscard, gnu::noinline]] bool RunRecoverably(RecoveryPoint& point, const Calls& calls) {
    static_assert(std::is_trivially_destructible_v<Calls>);
    if (setjmp(point.place) != 0) return false;  // NOLINT(cert-err52-cpp): the library's own way
    return calls();
}

}  // namespace rastrel
