// Georeference beside and in image files.

#include "geo/georeference.h"

#include <cstring>

#include "api/calls.h"
#include "geo/companion.h"
#include "rastrel.h"

using namespace rastrel;

int RASTREL_CALL Rastrel_FileNameGeoref(const char* name, char* companion) {
    return Guarded(0, [=] {
        if (name == nullptr || companion == nullptr) return 0;
        const std::string text = CompanionOf(name).Name();
        std::memcpy(companion, text.c_str(), text.size() + 1);
        return 1;
    });
}

int RASTREL_CALL Rastrel_ReadGeoref(const char* name, double* x, double* y, double* pixel_size) {
    return Guarded(0, [=] {
        if (name == nullptr || x == nullptr || y == nullptr || pixel_size == nullptr) return 0;
        const FoundGeoreference found = ReadGeoreference(name);
        if (found.x) *x = *found.x;
        if (found.y) *y = *found.y;
        if (found.pixel_size) *pixel_size = *found.pixel_size;
        return found.success ? 1 : 0;
    });
}

int RASTREL_CALL Rastrel_WriteGeoref(const char* name, double x, double y, double pixel_size) {
    return Guarded(0, [=] {
        return name != nullptr && WriteGeoreference(name, {x, y, pixel_size}) ? 1 : 0;
    });
}
