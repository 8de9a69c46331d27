#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace rastrel_cli {

/// A line on the terminal that tells what slow work is at: it appears once the work has taken a
/// second, goes on counting, and is wiped when it ends. Nothing appears when standard error is not
/// a terminal.
class ProgressLine {
  public:
    ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    ~ProgressLine();

    /// What is being done from now on.
    void Say(std::string what);
    /// Wipes the line for output of another kind; it comes back by itself.
    void Wipe();

  private:
    void Run();
    void WipeLocked();

    const std::chrono::steady_clock::time_point start_;
    std::mutex lock_;
    std::condition_variable changed_;
    std::string what_;
    std::size_t shown_columns_ = 0;
    bool ended_ = false;
    std::thread thread_;
};

}  // namespace rastrel_cli
