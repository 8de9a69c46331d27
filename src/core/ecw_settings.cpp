#include "core/ecw_settings.h"

namespace rastrel {

namespace {

constexpr int kOwnCounter = 0;

}  // namespace

EcwSettings::EcwSettings() : display_counter(&kOwnCounter) {}

void EcwSettings::SetDisplayCounter(const int* counter) {
    display_counter = counter != nullptr ? counter : &kOwnCounter;
}

EcwSettings& GetEcwSettings() {
    static EcwSettings settings;
    return settings;
}

}  // namespace rastrel
