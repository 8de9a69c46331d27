#pragma once

#include <windows.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>

namespace rastrel_view {

/// Slow work on a thread of its own. When it has ended the window is posted kJobDone with the job's
/// number, and the window's thread runs Finish.
class Job {
  public:
    static constexpr UINT kJobDone = WM_APP + 1;

    /// What the work may use of its job.
    class Control {
      public:
        /// The fraction done; false when the work shall be given up.
        bool Report(double fraction) {
            percent_ = static_cast<int>(fraction * 100);
            return !cancelled_;
        }

      private:
        friend class Job;
        std::atomic<int> percent_ = -1;
        std::atomic<bool> cancelled_ = false;
    };

    /// title says what is being done. The work runs at once; finish runs later on the window's
    /// thread.
    Job(HWND window, int number, std::string title, std::function<void(Control&)> work,
        std::function<void()> finish);
    Job(const Job&) = delete;
    Job& operator=(const Job&) = delete;
    /// Waits for the work to end.
    ~Job();

    [[nodiscard]] int Number() const { return number_; }
    /// Asks the work to end; what it makes is not wanted any more.
    void Cancel() { control_.cancelled_ = true; }
    /// The window of the work's own thread that shows on the screen, such as a dialog; null: none.
    [[nodiscard]] HWND Dialog() const;
    /// Waits for the work, then tells the window's side unless it was cancelled.
    void Finish();
    /// What is being done, how far it is where that is known, and for how long.
    [[nodiscard]] std::string Text() const;

  private:
    HWND window_;
    const int number_;
    const std::string title_;
    const ULONGLONG start_;
    Control control_;
    std::atomic<DWORD> thread_id_ = 0;
    std::function<void(Control&)> work_;
    std::function<void()> finish_;
    std::thread thread_;
};

}  // namespace rastrel_view
