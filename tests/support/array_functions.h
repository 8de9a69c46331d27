#pragma once

#include "support/images.h"

namespace rastrel_test {

/// The exported functions of one sample type.
template <class Sample>
struct ArrayFunctions;

#define RASTREL_ARRAY_FUNCTIONS(Sample, Suffix)                                     \
    template <>                                                                     \
    struct ArrayFunctions<Sample> {                                                 \
        static constexpr const char* kName = #Suffix;                               \
        static constexpr auto* kStatistics = &Rastrel_Statistics##Suffix;           \
        static constexpr auto* kStatisticsEx = &Rastrel_StatisticsEx##Suffix;       \
        static constexpr auto* kLinearStretch = &Rastrel_LinearStretch##Suffix;     \
        static constexpr auto* kLinearStretchEx = &Rastrel_LinearStretchEx##Suffix; \
        static constexpr auto* kHillshading = &Rastrel_Hillshading##Suffix;         \
        static constexpr auto* kSlope = &Rastrel_Slope##Suffix;                     \
        static constexpr auto* kAspect = &Rastrel_Aspect##Suffix;                   \
        static constexpr auto* kConvolute3x3 = &Rastrel_Convolute3x3##Suffix;       \
    }
RASTREL_ARRAY_FUNCTIONS(std::uint8_t, Byte);
RASTREL_ARRAY_FUNCTIONS(std::int16_t, Short);
RASTREL_ARRAY_FUNCTIONS(std::int32_t, Int);
RASTREL_ARRAY_FUNCTIONS(float, Float);
#undef RASTREL_ARRAY_FUNCTIONS

}  // namespace rastrel_test
