#include "main_window.h"

#include <fmt/format.h>
#include <windowsx.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "../rastrel/reasons.h"
#include "desktop.h"
#include "resource.h"

namespace rastrel_view {

namespace {

constexpr char kClassName[] = "RastrelViewer";
constexpr char kProgramName[] = "Rastrel Viewer";
constexpr UINT kDotsPerInchChanged = 0x02E0;  // WM_DPICHANGED, younger than our oldest Windows

constexpr UINT kActivated = WM_APP + 2;

constexpr UINT_PTR kWorkTimer = 1;
constexpr UINT kWorkTimerMilliseconds = 200;
constexpr UINT_PTR kCaptureTimer = 2;
/// Time for windows to repaint what this one has covered.
constexpr UINT kCaptureTimerMilliseconds = 500;

constexpr int kPanStep = 64;
constexpr double kPagePart = 0.9;

void RegisterMainClass(WNDPROC procedure) {
    WNDCLASSEXA window_class = {};
    window_class.cbSize = sizeof(window_class);
    window_class.lpfnWndProc = procedure;
    window_class.hInstance = GetModuleHandleA(nullptr);
    window_class.hIcon = LoadIconA(nullptr, MAKEINTRESOURCEA(32512));      // the usual program
    window_class.hCursor = LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));  // the arrow
    window_class.lpszMenuName = MAKEINTRESOURCEA(IDR_VIEWER);
    window_class.lpszClassName = kClassName;
    RegisterClassExA(&window_class);
}

/// Shows the wait cursor for as long as it lives.
class WaitCursor {
  public:
    WaitCursor() : previous_(SetCursor(LoadCursorA(nullptr, MAKEINTRESOURCEA(32514)))) {}
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
    ~WaitCursor() { SetCursor(previous_); }

  private:
    HCURSOR previous_;
};

}  // namespace

MainWindow::MainWindow() {
    RegisterMainClass(&MainWindow::WindowProcedure);
    CreateWindowExA(WS_EX_ACCEPTFILES, kClassName, kProgramName,
                    WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT, CW_USEDEFAULT,
                    CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, GetModuleHandleA(nullptr),
                    this);
    if (window_ == nullptr) throw std::runtime_error("the window could not be made");
    status_ = std::make_unique<StatusBar>(window_);
    canvas_ = std::make_unique<Canvas>(window_, *this);
    RECT client = {};
    GetClientRect(window_, &client);
    OnSize(client.right, client.bottom);
}

MainWindow::~MainWindow() {
    for (const auto& job : jobs_)
        job->Cancel();
    if (window_ != nullptr) SetWindowLongPtrA(window_, GWLP_USERDATA, 0);
}

// ---- Messages -----------------------------------------------------------------------------------

LRESULT CALLBACK MainWindow::WindowProcedure(HWND window, UINT message, WPARAM wparam,
                                             LPARAM lparam) {
    if (message == WM_NCCREATE) {
        const auto* creation = reinterpret_cast<const CREATESTRUCTA*>(lparam);
        auto* self = static_cast<MainWindow*>(creation->lpCreateParams);
        self->window_ = window;
        SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    }
    auto* self = reinterpret_cast<MainWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (self == nullptr) return DefWindowProcA(window, message, wparam, lparam);
    if (message == WM_NCDESTROY) self->window_ = nullptr;
    try {
        return self->Handle(message, wparam, lparam);
    } catch (const std::exception& error) {
        ShowError(window, fmt::format("That could not be done: {}.", error.what()));
        return 0;
    }
}

LRESULT MainWindow::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_SIZE:
            OnSize(LOWORD(lparam), HIWORD(lparam));
            return 0;
        case WM_COMMAND:
            OnCommand(LOWORD(wparam));
            return 0;
        case WM_INITMENUPOPUP:
            EnableCommands();
            return 0;
        case WM_MOUSEWHEEL:
            OnWheel(wparam, lparam);
            return 0;
        case WM_DROPFILES:
            OnDrop(reinterpret_cast<HDROP>(wparam));
            return 0;
        case WM_TIMER:
            OnTimer(wparam);
            return 0;
        case Job::kJobDone:
            FinishJob(static_cast<int>(wparam));
            return 0;
        case kDotsPerInchChanged:
            OnDotsPerInch(HIWORD(wparam), *reinterpret_cast<const RECT*>(lparam));
            return 0;
        case WM_ACTIVATE:
            if (LOWORD(wparam) != WA_INACTIVE) PostMessageA(window_, kActivated, 0, 0);
            return DefWindowProcA(window_, message, wparam, lparam);
        case kActivated:
            OnActivate();
            return 0;
        case WM_CLOSE:
            OnClose();
            return 0;
        case WM_DESTROY:
            PostQuitMessage(0);
            return 0;
        default:
            return DefWindowProcA(window_, message, wparam, lparam);
    }
}

void MainWindow::OnCommand(int command) {
    switch (command) {
        case IDM_OPEN:
            if (const auto name = AskForImageFile(window_)) Open(*name);
            break;
        case IDM_SAVE:
            Save();
            break;
        case IDM_INFORMATION:
            ShowInformation();
            break;
        case IDM_EXIT:
            OnClose();
            break;
        case IDM_COPY:
            Copy();
            break;
        case IDM_PASTE:
            Paste();
            break;
        case IDM_CAPTURE:
            BeginCapture();
            break;
        case IDM_ABOUT:
            MessageBoxA(window_, "Rastrel Viewer " RASTREL_VERSION "\nRaster images for maps",
                        kProgramName, MB_OK);
            break;
        default:
            OnViewCommand(command);
            break;
    }
}

void MainWindow::OnViewCommand(int command) {
    switch (command) {
        case IDM_FIT:
            return canvas_->Fit();
        case IDM_ACTUAL_SIZE:
            return canvas_->SetZoom(1);
        case IDM_ZOOM_IN:
            return canvas_->ZoomBySteps(1);
        case IDM_ZOOM_OUT:
            return canvas_->ZoomBySteps(-1);
        case IDM_LEFT:
            return canvas_->Pan(kPanStep, 0);
        case IDM_RIGHT:
            return canvas_->Pan(-kPanStep, 0);
        case IDM_UP:
            return canvas_->Pan(0, kPanStep);
        case IDM_DOWN:
            return canvas_->Pan(0, -kPanStep);
        case IDM_PAGE_LEFT:
            return canvas_->PanByPages(-kPagePart, 0);
        case IDM_PAGE_RIGHT:
            return canvas_->PanByPages(kPagePart, 0);
        case IDM_PAGE_UP:
            return canvas_->PanByPages(0, -kPagePart);
        case IDM_PAGE_DOWN:
            return canvas_->PanByPages(0, kPagePart);
        default:
            break;
    }
}

void MainWindow::OnSize(int width, int height) {
    if (!canvas_ || width == 0 || height == 0) return;  // being made, or minimised
    const int status_height = status_->Place(width);
    MoveWindow(canvas_->Window(), 0, 0, width, std::max(height - status_height, 0), FALSE);
}

void MainWindow::OnWheel(WPARAM wparam, LPARAM lparam) {
    wheel_ += GET_WHEEL_DELTA_WPARAM(wparam);
    const int steps = wheel_ / WHEEL_DELTA;
    wheel_ %= WHEEL_DELTA;
    if (steps == 0) return;
    POINT point = {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
    ScreenToClient(canvas_->Window(), &point);
    canvas_->ZoomAtPoint(steps, {static_cast<int>(point.x), static_cast<int>(point.y)});
}

void MainWindow::OnDrop(HDROP drop) {
    const std::optional<std::string> name = DroppedFile(drop);
    DragFinish(drop);
    SetForegroundWindow(window_);
    if (name) Open(*name);
}

void MainWindow::OnTimer(WPARAM timer) {
    if (timer == kWorkTimer) {
        ShowWork();
    } else if (timer == kCaptureTimer) {
        KillTimer(window_, kCaptureTimer);
        EndCapture();
    }
}

void MainWindow::OnDotsPerInch(int dots, const RECT& place) {
    status_->SetDotsPerInch(dots);
    SetWindowPos(window_, nullptr, place.left, place.top, place.right - place.left,
                 place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
}

/// The save dialog belongs to another thread: it must be kept in front of this window by hand.
void MainWindow::OnActivate() {
    const Job* saving = FindJob(saving_);
    HWND dialog = saving != nullptr ? saving->Dialog() : nullptr;
    if (dialog != nullptr) SetForegroundWindow(dialog);
}

void MainWindow::OnClose() {
    if (saving_ != 0) {
        is_closing_ = true;
        OnActivate();
        return ShowNote("The window closes when the picture is saved.");
    }
    DestroyWindow(window_);
}

void MainWindow::EnableCommands() {
    const auto enable = [this](UINT command, bool possible) {
        EnableMenuItem(GetMenu(window_), command,
                       MF_BYCOMMAND | (possible ? MF_ENABLED : MF_GRAYED));
    };
    for (const int command :
         {IDM_INFORMATION, IDM_COPY, IDM_FIT, IDM_ACTUAL_SIZE, IDM_ZOOM_IN, IDM_ZOOM_OUT})
        enable(static_cast<UINT>(command), document_ != nullptr);
    enable(IDM_SAVE, document_ != nullptr && saving_ == 0);
    enable(IDM_PASTE,
           IsClipboardFormatAvailable(CF_BITMAP) || IsClipboardFormatAvailable(CF_HDROP));
}

// ---- Commands -----------------------------------------------------------------------------------

void MainWindow::Open(const std::string& name) {
    struct Reading {
        std::unique_ptr<Document> document;
        std::string why = "memory does not suffice";
    };
    const auto reading = std::make_shared<Reading>();
    const std::string full_name = FullName(name);
    StartLoading(
        "Reading " + FileTitle(full_name),
        [reading, full_name](Job::Control& control) {
            const auto progress = [&control](double fraction) { return control.Report(fraction); };
            reading->document = ReadDocument(full_name, progress, reading->why);
        },
        [this, reading, full_name] {
            if (reading->document) return Show(std::move(reading->document));
            ShowError(window_, fmt::format("{} cannot be shown:\n{}.", full_name, reading->why));
        });
}

void MainWindow::Adopt(std::unique_ptr<OwnedImage> image, const std::string& title) {
    const auto document = std::make_shared<std::unique_ptr<Document>>();
    *document = std::make_unique<Document>();
    (*document)->title = title;
    (*document)->image = std::move(image);
    StartLoading(
        title,
        [document](Job::Control& control) {
            const auto progress = [&control](double fraction) { return control.Report(fraction); };
            PrepareDocument(**document, progress);
        },
        [this, document] { Show(std::move(*document)); });
}

void MainWindow::Copy() {
    if (!document_) return;
    const WaitCursor wait;
    if (Rastrel_CopyToClipboard(document_->image->Handle(), window_) == 1)
        ShowNote("Copied.");
    else
        ShowError(window_, "The picture cannot be copied to the clipboard.");
}

void MainWindow::Paste() {
    Pasted pasted;
    {
        const WaitCursor wait;
        pasted = FromClipboard(window_);
    }
    if (!pasted.file.empty()) return Open(pasted.file);
    if (!pasted.image) return ShowError(window_, "The clipboard holds no picture.");
    Adopt(std::move(pasted.image), "Pasted");
}

void MainWindow::BeginCapture() {
    if (capture_) return;
    capture_ = ChooseWindow(window_);
    if (!capture_) return;
    ShowWindow(window_, SW_HIDE);
    SetForegroundWindow(capture_->window);
    SetTimer(window_, kCaptureTimer, kCaptureTimerMilliseconds, nullptr);
}

void MainWindow::EndCapture() {
    if (!capture_) return;
    const ListedWindow captured = *std::exchange(capture_, std::nullopt);
    auto image = std::make_unique<OwnedImage>();
    const bool is_done = Rastrel_CreateFromWindow(image->Handle(), captured.window) == 1;
    ShowWindow(window_, SW_SHOW);
    SetForegroundWindow(window_);
    if (!is_done)
        return ShowError(window_, fmt::format("\"{}\" cannot be captured.", captured.title));
    Adopt(std::move(image), "Capture of " + captured.title);
}

void MainWindow::Save() {
    if (!document_ || saving_ != 0) return;
    struct Saving {
        OwnedImage copy;  // the picture goes on being drawn meanwhile
        std::array<char, 260> name = {};
        int type = RASTREL_TYPE_NONE;
        int result = 0;
    };
    const auto saving = std::make_shared<Saving>();
    {
        const WaitCursor wait;
        if (Rastrel_Copy(saving->copy.Handle(), document_->image->Handle()) != 1)
            return ShowError(window_, "Memory does not suffice to save the picture.");
    }
    saving_ = StartJob(
        "Save as",
        [saving](Job::Control& /*control*/) {
            saving->result =
                Rastrel_DialogSave(saving->copy.Handle(), saving->name.data(), &saving->type);
        },
        [this, saving] {
            saving_ = 0;
            Saved(saving->result, saving->name.data(), saving->type);
            if (is_closing_) DestroyWindow(window_);
        });
}

void MainWindow::Saved(int result, const std::string& name, int type) {
    constexpr int kCancelled = 2;
    if (result == kCancelled) return;
    if (result != 1)
        return ShowError(
            window_, fmt::format("{} cannot be saved:\n{}.", name.empty() ? "The picture" : name,
                                 rastrel_cli::WhyNotSaved(name, type, document_->image->Bits())));
    ShowNote(fmt::format("Saved as {}.", FileTitle(name)));
    if (document_->georeference) {
        const auto problem = rastrel_cli::WriteGeoreference(name, *document_->georeference);
        if (problem) ShowError(window_, fmt::format("{}:\n{}.", name, *problem));
    }
}

void MainWindow::ShowInformation() {
    if (document_) MessageBoxA(window_, InformationText(*document_).c_str(), kProgramName, MB_OK);
}

// ---- What is shown ------------------------------------------------------------------------------

void MainWindow::Show(std::unique_ptr<Document> document) {
    std::swap(document_, document);  // the one before lives until the canvas has left it
    canvas_->Show(document_.get());
    status_->Set(StatusBar::kSize, SizeText(*document_));
    OnZoom();
    OnPointer();
}

void MainWindow::OnPointer() {
    const auto pointed = document_ ? canvas_->PointedAt() : std::nullopt;
    status_->Set(StatusBar::kPointer,
                 pointed ? PixelText(*document_, pointed->pixel, pointed->spot) : "");
}

void MainWindow::OnZoom() {
    if (!document_) return;
    const std::string zoom = fmt::format("{:.4g}%", canvas_->Zoom() * 100);
    status_->Set(StatusBar::kZoom, zoom);
    SetWindowTextA(window_,
                   fmt::format("{} ({}) - {}", document_->title, zoom, kProgramName).c_str());
}

// ---- Jobs ---------------------------------------------------------------------------------------

int MainWindow::StartJob(const std::string& title, std::function<void(Job::Control&)> work,
                         std::function<void()> finish) {
    jobs_.push_back(
        std::make_unique<Job>(window_, ++last_job_, title, std::move(work), std::move(finish)));
    SetTimer(window_, kWorkTimer, kWorkTimerMilliseconds, nullptr);
    return last_job_;
}

void MainWindow::StartLoading(const std::string& title, std::function<void(Job::Control&)> work,
                              std::function<void()> finish) {
    if (Job* earlier = FindJob(loading_)) earlier->Cancel();
    loading_ = StartJob(title, std::move(work), std::move(finish));
}

Job* MainWindow::FindJob(int number) const {
    const auto found = std::find_if(jobs_.begin(), jobs_.end(),
                                    [=](const auto& job) { return job->Number() == number; });
    return found != jobs_.end() ? found->get() : nullptr;
}

void MainWindow::FinishJob(int number) {
    const auto found = std::find_if(jobs_.begin(), jobs_.end(),
                                    [=](const auto& job) { return job->Number() == number; });
    if (found == jobs_.end()) return;
    const std::unique_ptr<Job> job = std::move(*found);
    jobs_.erase(found);
    if (jobs_.empty()) KillTimer(window_, kWorkTimer);
    ShowWork();
    job->Finish();
}

void MainWindow::ShowNote(const std::string& note) {
    status_->Set(StatusBar::kPointer, note);
}

void MainWindow::ShowWork() {
    status_->Set(StatusBar::kWork, jobs_.empty() ? "" : jobs_.back()->Text());
}

}  // namespace rastrel_view
