#include "process/masking.h"

#include <algorithm>

#include "process/masking_kernels.h"

namespace rastrel {

void Mask(const std::uint8_t* input, const std::uint8_t* mask, std::size_t count,
          std::uint8_t* out) {
    for (std::size_t i = simd::Mask(input, mask, count, out); i < count; ++i)
        out[i] = mask[i] != 0 ? input[i] : 0;
}

void Mask24(const std::uint8_t* input, const std::uint8_t* mask, std::size_t count,
            const std::array<std::uint8_t, 3>& color, bool invert, std::uint8_t* out) {
    const std::size_t done = simd::Mask24(input, mask, count, color, invert, out);
    for (std::size_t i = done; i < count; ++i) {
        const bool keeps = (mask[i] != 0) != invert;
        std::copy_n(keeps ? input + 3 * i : color.data(), 3, out + 3 * i);
    }
}

}  // namespace rastrel
