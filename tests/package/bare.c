/*
 * A host without any runtime library, as an MSVC-style linker can link it from objects alone: the
 * exit code is 42 when the module works.
 */
#include <rastrel.h>

int Start(void) {
    int image = Rastrel_New();
    return Rastrel_Create(image, 3, 2, 8) == 1 && Rastrel_GetEffWidth(image) == 4 &&
                   Rastrel_Delete(image) == 1
               ? 42
               : 1;
}
