#pragma once

#include <windows.h>

#include <shellapi.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "canvas.h"
#include "document.h"
#include "job.h"
#include "status_bar.h"
#include "window_list.h"

namespace rastrel_view {

/// The program's window: menu, picture and status bar. Slow work runs in jobs on images of their
/// own, so that the window answers meanwhile; it can be closed at any time.
class MainWindow : public CanvasListener {
  public:
    MainWindow();
    MainWindow(const MainWindow&) = delete;
    MainWindow& operator=(const MainWindow&) = delete;
    ~MainWindow() override;

    [[nodiscard]] HWND Window() const { return window_; }

    /// Begins to read a file or address, whose picture then takes the place of the one shown.
    void Open(const std::string& name);

    void OnPointer() override;
    void OnZoom() override;

  private:
    static LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wparam,
                                            LPARAM lparam);
    LRESULT Handle(UINT message, WPARAM wparam, LPARAM lparam);
    void OnCommand(int command);
    void OnViewCommand(int command);
    void OnSize(int width, int height);
    void OnWheel(WPARAM wparam, LPARAM lparam);
    void OnDrop(HDROP drop);
    void OnTimer(WPARAM timer);
    void OnDotsPerInch(int dots, const RECT& place);
    void OnActivate();
    void OnClose();
    void EnableCommands();

    void Copy();
    void Paste();
    void BeginCapture();
    void EndCapture();
    void Save();
    void Saved(int result, const std::string& name, int type);
    void ShowInformation();

    /// Shows an image that is there, once it is ready to be.
    void Adopt(std::unique_ptr<OwnedImage> image, const std::string& title);
    void Show(std::unique_ptr<Document> document);

    int StartJob(const std::string& title, std::function<void(Job::Control&)> work,
                 std::function<void()> finish);
    /// A job whose picture replaces any that an earlier one is still making.
    void StartLoading(const std::string& title, std::function<void(Job::Control&)> work,
                      std::function<void()> finish);
    void FinishJob(int number);
    [[nodiscard]] Job* FindJob(int number) const;
    void ShowWork();
    /// Tells something until the pointer moves.
    void ShowNote(const std::string& note);

    HWND window_ = nullptr;
    std::unique_ptr<Document> document_;
    std::unique_ptr<StatusBar> status_;
    std::unique_ptr<Canvas> canvas_;
    int wheel_ = 0;  ///< turns of the wheel that have not made a step yet
    std::optional<ListedWindow> capture_;
    bool is_closing_ = false;  ///< as soon as the picture is saved
    int last_job_ = 0;
    int loading_ = 0;  ///< the number of the job, 0 for none
    int saving_ = 0;
    std::vector<std::unique_ptr<Job>> jobs_;
};

}  // namespace rastrel_view
