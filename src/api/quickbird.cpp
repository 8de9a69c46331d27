// Satellite scenes of four bands, one at a time in the whole module.

#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>

#include "api/calls.h"
#include "formats/tiff/quickbird.h"
#include "rastrel.h"

using namespace rastrel;

namespace {

struct OpenScene {
    std::mutex lock;
    std::unique_ptr<QuickBirdScene> scene;
};

OpenScene& TheScene() {
    static OpenScene scene;
    return scene;
}

}  // namespace

int RASTREL_CALL Rastrel_QuickBird_Open(const char* name) {
    return Guarded(0, [=] {
        auto scene = name != nullptr ? QuickBirdScene::Open(name) : nullptr;
        if (!scene) return 0;
        const std::lock_guard lock(TheScene().lock);
        TheScene().scene = std::move(scene);
        return 1;
    });
}

int RASTREL_CALL Rastrel_QuickBird_ReadRow(uint8_t* row, const uint8_t* red_table,
                                           const uint8_t* green_table, const uint8_t* blue_table) {
    return Guarded(0, [=] {
        const std::lock_guard lock(TheScene().lock);
        const auto& scene = TheScene().scene;
        if (!scene || row == nullptr) return 0;
        return scene->ReadRow(row, red_table, green_table, blue_table) ? 1 : 0;
    });
}

int RASTREL_CALL Rastrel_QuickBird_Close(void) {
    return Guarded(0, [] {
        const std::lock_guard lock(TheScene().lock);
        return std::exchange(TheScene().scene, nullptr) ? 1 : 0;
    });
}
