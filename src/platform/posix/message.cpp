#include "platform/message.h"

#include <cstdio>

namespace rastrel {

void ShowMessage(const char* text) {
    std::fprintf(stderr, "%s\n", text);
}

}  // namespace rastrel
