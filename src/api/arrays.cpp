// Typed arrays: allocation from the library's own heap.

#include <cstddef>
#include <cstdlib>
#include <limits>

#include "core/checked_size.h"
#include "rastrel.h"

using namespace rastrel;

namespace {

template <class Sample>
Sample* CreateArray(int width, int height) {
    CheckedSize size(std::numeric_limits<std::ptrdiff_t>::max());  // what pointers can span
    const std::uint64_t bytes = size.Mul(size.Mul(width, height), sizeof(Sample));
    if (!size.Ok() || width < 0 || height < 0) return nullptr;
    // An array of no samples still has an address of its own.
    return static_cast<Sample*>(std::malloc(bytes > 0 ? static_cast<std::size_t>(bytes) : 1));
}

}  // namespace

uint8_t* RASTREL_CALL Rastrel_CreateArrayByte(int width, int height) {
    return CreateArray<uint8_t>(width, height);
}

int16_t* RASTREL_CALL Rastrel_CreateArrayShort(int width, int height) {
    return CreateArray<int16_t>(width, height);
}

int32_t* RASTREL_CALL Rastrel_CreateArrayInt(int width, int height) {
    return CreateArray<int32_t>(width, height);
}

float* RASTREL_CALL Rastrel_CreateArrayFloat(int width, int height) {
    return CreateArray<float>(width, height);
}

void RASTREL_CALL Rastrel_DeleteArrayByte(uint8_t* array) {
    std::free(array);
}

void RASTREL_CALL Rastrel_DeleteArrayShort(int16_t* array) {
    std::free(array);
}

void RASTREL_CALL Rastrel_DeleteArrayInt(int32_t* array) {
    std::free(array);
}

void RASTREL_CALL Rastrel_DeleteArrayFloat(float* array) {
    std::free(array);
}
