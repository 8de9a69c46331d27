// Exports whose families are not built yet: each returns its failure value and touches nothing.
// A family that is built moves to a file of its own.

#include "rastrel.h"

// Display and desktop

RastrelBitmap RASTREL_CALL Rastrel_Copy2HBitmap(int /*handle*/) {
    return nullptr;
}

int RASTREL_CALL Rastrel_CopyToClipboard(int /*handle*/, RastrelWindow /*window*/) {
    return 0;
}

int RASTREL_CALL Rastrel_CreateFromBitmap(int /*handle*/, RastrelBitmap /*bitmap*/) {
    return 0;
}

int RASTREL_CALL Rastrel_CreateFromWindow(int /*handle*/, RastrelWindow /*window*/) {
    return 0;
}

int RASTREL_CALL Rastrel_CreateFromWindowEX(int /*handle*/, RastrelWindow /*window*/, int /*x*/,
                                            int /*y*/, int /*width*/, int /*height*/,
                                            int /*client*/) {
    return 0;
}

int RASTREL_CALL Rastrel_DialogSave(int /*handle*/, char* /*buffer*/, int* /*type*/) {
    return 0;
}
