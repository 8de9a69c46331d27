#include <cstdlib>

// What the decoder does not fill, as the end of a file that is cut, is zero.
#define STBI_MALLOC(size) std::calloc(1, size)
#define STBI_REALLOC(block, size) std::realloc(block, size)
#define STBI_FREE(block) std::free(block)
#define STB_IMAGE_IMPLEMENTATION
#include "formats/other/decoder.h"
