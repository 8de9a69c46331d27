#pragma once

#include <atomic>

namespace rastrel {

/// Three settings of the process that a progressive ECW view reads. They are written without a
/// lock: a reader only needs to see a new value eventually.
struct EcwSettings {
    /// A counter of the host's: a view that is being waited for is given up when it changes. Never
    /// null.
    std::atomic<const int*> display_counter;
    /// The window that gets progress messages; null: none.
    std::atomic<void*> main_frame{nullptr};
    /// Whether the waiting thread's window messages are pumped.
    std::atomic<int> pumps_messages{1};

    EcwSettings();
    /// Null stands for a counter of the library's own, which never changes.
    void SetDisplayCounter(const int* counter);
};

[[nodiscard]] EcwSettings& GetEcwSettings();

}  // namespace rastrel
