#pragma once

namespace rastrel {

// Sine, cosine and arctangents whose results are the same on every system: system libraries differ
// in the last place, and where a picture's bytes are truncated from such values, a last place can
// be a grey level. They use only additions, multiplications, divisions and square roots, which the
// floating-point standard fixes to the bit, carry about twenty bits more than a double holds, and
// round once: the error is below 0.51 units in the last place (below 1 where the result is
// subnormal).

/// Of an angle in radians, of any size; not a number for infinities.
[[nodiscard]] double PreciseSin(double angle);
[[nodiscard]] double PreciseCos(double angle);

/// In radians, from -pi/2 to pi/2.
[[nodiscard]] double PreciseAtan(double tangent);

/// The angle of the point (x, y) in radians, from -pi to pi, with the conventions of C's atan2 for
/// zeros and infinities.
[[nodiscard]] double PreciseAtan2(double y, double x);

}  // namespace rastrel
