#pragma once

// The decoder of formats that have no class here, of which decoder.cpp holds the code.

#define STBI_ONLY_TGA
#define STBI_ONLY_PSD
#define STBI_ONLY_PNM
#define STBI_ONLY_PIC
#define STBI_ONLY_HDR
#define STBI_NO_STDIO
#define STBI_NO_FAILURE_STRINGS
#include <stb/stb_image.h>
