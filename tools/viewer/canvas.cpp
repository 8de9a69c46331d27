#include "canvas.h"

#include <windowsx.h>

#include <cstdlib>
#include <stdexcept>

namespace rastrel_view {

namespace {

constexpr char kClassName[] = "RastrelCanvas";

ScreenPoint PointOf(LPARAM lparam) {
    return {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
}

RECT RectOf(const Box& box) {
    return {box.x, box.y, box.x + box.width, box.y + box.height};
}

void RegisterCanvasClass(WNDPROC procedure) {
    WNDCLASSEXA window_class = {};
    window_class.cbSize = sizeof(window_class);
    window_class.lpfnWndProc = procedure;
    window_class.hInstance = GetModuleHandleA(nullptr);
    window_class.hCursor = LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));  // the arrow
    window_class.lpszClassName = kClassName;
    RegisterClassExA(&window_class);
}

/// Draws a cell of an image, whose stored rows are counted from the bottom.
void DrawCell(const OwnedImage& image, HDC device, const Cell& cell) {
    const auto& [source, target] = cell;
    Rastrel_Stretch(image.Handle(), device, target.x, target.y, target.width, target.height,
                    source.x, image.Height() - source.y - source.height, source.width,
                    source.height);
}

}  // namespace

Canvas::Canvas(HWND parent, CanvasListener& listener) : listener_(listener) {
    RegisterCanvasClass(&Canvas::WindowProcedure);
    CreateWindowExA(0, kClassName, "", WS_CHILD | WS_VISIBLE, 0, 0, 0, 0, parent, nullptr,
                    GetModuleHandleA(nullptr), this);
    if (window_ == nullptr) throw std::runtime_error("no window could be made for the picture");
}

Canvas::~Canvas() {
    if (window_ != nullptr) SetWindowLongPtrA(window_, GWLP_USERDATA, 0);
}

void Canvas::Show(const Document* document) {
    document_ = document;
    back_is_current_ = false;
    Fit();
}

void Canvas::Fit() {
    is_fitted_ = true;
    if (document_ != nullptr) SetView(FitView(document_->PixelSize(), client_));
    InvalidateRect(window_, nullptr, FALSE);
}

void Canvas::SetZoom(double zoom) {
    if (document_ == nullptr) return;
    is_fitted_ = false;
    SetView(ZoomAt(view_, document_->PixelSize(), client_, zoom, Middle()));
}

void Canvas::ZoomBySteps(int steps) {
    ZoomAtPoint(steps, Middle());
}

void Canvas::ZoomAtPoint(int steps, ScreenPoint anchor) {
    if (document_ == nullptr) return;
    is_fitted_ = false;
    SetView(ZoomAt(view_, document_->PixelSize(), client_, NextZoom(view_.zoom, steps), anchor));
}

void Canvas::Pan(int dx, int dy) {
    if (document_ == nullptr) return;
    const View moved = Moved(view_, document_->PixelSize(), client_, dx, dy);
    if (moved == view_) return;
    is_fitted_ = false;
    SetView(moved);
}

void Canvas::PanByPages(double across, double down) {
    Pan(static_cast<int>(-across * client_.width), static_cast<int>(-down * client_.height));
}

std::optional<Canvas::Pointed> Canvas::PointedAt() const {
    if (document_ == nullptr || !pointer_) return std::nullopt;
    const std::optional<Pixel> pixel = PixelAt(view_, document_->PixelSize(), *pointer_);
    if (!pixel) return std::nullopt;
    return Pointed{*pixel, ToImage(view_, *pointer_)};
}

ScreenPoint Canvas::Middle() const {
    return {client_.width / 2, client_.height / 2};
}

void Canvas::SetView(const View& view) {
    const View before = view_;
    view_ = view;
    const std::int64_t dx = view.left - before.left;
    const std::int64_t dy = view.top - before.top;
    if (back_is_current_ && view.zoom == before.zoom && std::abs(dx) < client_.width &&
        std::abs(dy) < client_.height)
        Scroll(static_cast<int>(dx), static_cast<int>(dy));
    else
        back_is_current_ = false;
    InvalidateRect(window_, nullptr, FALSE);
    listener_.OnPointer();
    if (view.zoom != before.zoom) listener_.OnZoom();
}

void Canvas::Scroll(int dx, int dy) {
    BitBlt(back_->Device(), dx, dy, client_.width, client_.height, back_->Device(), 0, 0, SRCCOPY);
    const Box across = {0, dy > 0 ? 0 : client_.height + dy, client_.width, std::abs(dy)};
    const Box down = {dx > 0 ? 0 : client_.width + dx, 0, std::abs(dx), client_.height};
    Draw(across);
    Draw(down);
}

void Canvas::DrawAll() {
    if (!back_) back_ = std::make_unique<MemoryCanvas>(client_.width, client_.height);
    if (!back_->IsThere()) return;
    Draw({0, 0, client_.width, client_.height});
    back_is_current_ = true;
}

void Canvas::Draw(const Box& part) {
    if (part.width <= 0 || part.height <= 0) return;
    HDC device = back_->Device();
    const RECT rect = RectOf(part);
    if (document_ == nullptr) {
        PaintBackground(device, rect);
        return;
    }
    // Levels are rounded up to whole pixels, which may reach beyond the image.
    const RECT picture = RectOf(ImageOnScreen(view_, document_->PixelSize(), client_));
    const int state = SaveDC(device);
    IntersectClipRect(device, rect.left, rect.top, rect.right, rect.bottom);
    ExcludeClipRect(device, picture.left, picture.top, picture.right, picture.bottom);
    PaintBackground(device, rect);
    RestoreDC(device, state);

    RECT visible = {};
    if (!IntersectRect(&visible, &rect, &picture)) return;
    SaveDC(device);
    IntersectClipRect(device, visible.left, visible.top, visible.right, visible.bottom);
    const int level = LevelFor(view_.zoom, document_->Levels());
    const OwnedImage& image = document_->Level(level);
    for (const Cell& cell :
         CellsIn(ViewOfLevel(view_, level), {image.Width(), image.Height()}, part))
        DrawCell(image, device, cell);
    RestoreDC(device, -1);
}

LRESULT CALLBACK Canvas::WindowProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_NCCREATE) {
        const auto* creation = reinterpret_cast<const CREATESTRUCTA*>(lparam);
        auto* canvas = static_cast<Canvas*>(creation->lpCreateParams);
        canvas->window_ = window;
        SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(canvas));
    }
    auto* canvas = reinterpret_cast<Canvas*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (canvas == nullptr) return DefWindowProcA(window, message, wparam, lparam);
    if (message == WM_NCDESTROY) canvas->window_ = nullptr;
    try {
        return canvas->Handle(message, wparam, lparam);
    } catch (const std::exception&) {
        return 0;  // memory ran out: the picture stays undrawn
    }
}

LRESULT Canvas::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_PAINT:
            OnPaint();
            return 0;
        case WM_ERASEBKGND:
            return 1;  // painted over whole
        case WM_SIZE:
            OnSize({LOWORD(lparam), HIWORD(lparam)});
            return 0;
        case WM_LBUTTONDOWN:
        case WM_MBUTTONDOWN:
            SetFocus(GetParent(window_));
            StartDrag(PointOf(lparam));
            return 0;
        case WM_LBUTTONUP:
        case WM_MBUTTONUP:
            ReleaseCapture();
            return 0;
        case WM_CAPTURECHANGED:
            dragged_from_.reset();
            return 0;
        case WM_MOUSEMOVE:
            OnMouseMove(PointOf(lparam));
            return 0;
        case WM_MOUSELEAVE:
            pointer_.reset();
            listener_.OnPointer();
            return 0;
        default:
            return DefWindowProcA(window_, message, wparam, lparam);
    }
}

void Canvas::OnPaint() {
    if (!back_is_current_ && client_.width > 0 && client_.height > 0) DrawAll();
    PAINTSTRUCT paint = {};
    HDC device = BeginPaint(window_, &paint);
    const RECT& rect = paint.rcPaint;
    if (back_is_current_)
        BitBlt(device, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
               back_->Device(), rect.left, rect.top, SRCCOPY);
    else
        PaintBackground(device, rect);
    EndPaint(window_, &paint);
}

void Canvas::OnSize(Size client) {
    client_ = client;
    back_.reset();
    back_is_current_ = false;
    if (document_ == nullptr) return;
    const Size image = document_->PixelSize();
    SetView(is_fitted_ ? FitView(image, client_) : Constrained(view_, image, client_));
}

void Canvas::OnMouseMove(ScreenPoint point) {
    if (!pointer_) {
        TRACKMOUSEEVENT leaving = {sizeof(leaving), TME_LEAVE, window_, 0};
        TrackMouseEvent(&leaving);
    }
    // Windows that come and go make the system tell of moves that are none.
    if (pointer_ == point) return;
    pointer_ = point;
    if (dragged_from_) {
        const ScreenPoint from = *dragged_from_;
        dragged_from_ = point;
        Pan(point.x - from.x, point.y - from.y);
    }
    listener_.OnPointer();
}

void Canvas::StartDrag(ScreenPoint point) {
    if (document_ == nullptr) return;
    dragged_from_ = point;
    SetCapture(window_);
    SetCursor(LoadCursorA(nullptr, MAKEINTRESOURCEA(32646)));  // the four arrows
}

}  // namespace rastrel_view
