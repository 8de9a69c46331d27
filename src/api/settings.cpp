// Settings of the whole process.

#include "core/ecw_settings.h"
#include "rastrel.h"

using namespace rastrel;

void RASTREL_CALL Rastrel_SetPtrNumeroVisualizzazione(int* counter) {
    GetEcwSettings().SetDisplayCounter(counter);
}

void RASTREL_CALL Rastrel_SetMainframeHandle(RastrelWindow window) {
    GetEcwSettings().main_frame = window;
}

void RASTREL_CALL Rastrel_ProcessECWMessage(int flag) {
    GetEcwSettings().pumps_messages = flag;
}

int RASTREL_CALL Rastrel_SetImageHandle(int /*first*/, int /*second*/) {
    return 1;
}
