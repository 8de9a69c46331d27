#include "progress_line.h"

#include <fmt/format.h>

#include <cstdio>
#include <utility>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace rastrel_cli {

namespace {

constexpr std::chrono::milliseconds kPatience(1000);
constexpr std::chrono::milliseconds kBetweenUpdates(200);

bool ErrorsGoToTerminal() {
#if defined(_WIN32)
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(fileno(stderr)) != 0;
#endif
}

}  // namespace

ProgressLine::ProgressLine() : start_(std::chrono::steady_clock::now()) {
    if (ErrorsGoToTerminal()) thread_ = std::thread([this] { Run(); });
}

ProgressLine::~ProgressLine() {
    {
        const std::lock_guard<std::mutex> guard(lock_);
        ended_ = true;
    }
    changed_.notify_all();
    if (thread_.joinable()) thread_.join();
}

void ProgressLine::Say(std::string what) {
    const std::lock_guard<std::mutex> guard(lock_);
    what_ = std::move(what);
}

void ProgressLine::Wipe() {
    const std::lock_guard<std::mutex> guard(lock_);
    WipeLocked();
}

void ProgressLine::WipeLocked() {
    if (shown_columns_ == 0) return;
    fmt::print(stderr, "\r{:{}}\r", "", shown_columns_);
    std::fflush(stderr);
    shown_columns_ = 0;
}

void ProgressLine::Run() {
    std::unique_lock<std::mutex> guard(lock_);
    changed_.wait_for(guard, kPatience, [this] { return ended_; });
    while (!ended_) {
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start_;
        const std::string line = fmt::format("{} ({:.0f} s)", what_, taken.count());
        WipeLocked();
        fmt::print(stderr, "{}", line);
        std::fflush(stderr);
        shown_columns_ = line.size();
        changed_.wait_for(guard, kBetweenUpdates, [this] { return ended_; });
    }
    WipeLocked();
}

}  // namespace rastrel_cli
