#include "platform/message.h"

#include <windows.h>

namespace rastrel {

void ShowMessage(const char* text) {
    MessageBoxA(nullptr, text, "Error", MB_OK | MB_ICONINFORMATION);
}

}  // namespace rastrel
