#include "job.h"

#include <fmt/format.h>

#include <exception>
#include <utility>

namespace rastrel_view {

namespace {

BOOL CALLBACK FindVisible(HWND window, LPARAM lparam) {
    if (!IsWindowVisible(window)) return TRUE;
    *reinterpret_cast<HWND*>(lparam) = window;
    return FALSE;
}

}  // namespace

Job::Job(HWND window, int number, std::string title, std::function<void(Control&)> work,
         std::function<void()> finish)
    : window_(window),
      number_(number),
      title_(std::move(title)),
      start_(GetTickCount64()),
      work_(std::move(work)),
      finish_(std::move(finish)) {
    thread_ = std::thread([this] {
        thread_id_ = GetCurrentThreadId();
        try {
            work_(control_);
        } catch (const std::exception&) {
            // Memory ran out: what the work should have made is missing, and finish says so.
        }
        PostMessageA(window_, kJobDone, static_cast<WPARAM>(number_), 0);
    });
}

Job::~Job() {
    if (thread_.joinable()) thread_.join();
}

void Job::Finish() {
    if (thread_.joinable()) thread_.join();
    if (!control_.cancelled_) finish_();
}

HWND Job::Dialog() const {
    HWND found = nullptr;
    if (thread_id_ != 0)
        EnumThreadWindows(thread_id_, &FindVisible, reinterpret_cast<LPARAM>(&found));
    return found;
}

std::string Job::Text() const {
    const double seconds = static_cast<double>(GetTickCount64() - start_) / 1000;
    const int percent = control_.percent_;
    if (percent < 0) return fmt::format("{}... {:.0f} s", title_, seconds);
    return fmt::format("{}... {} %", title_, percent);
}

}  // namespace rastrel_view
