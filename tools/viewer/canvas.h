#pragma once

#include <windows.h>

#include <memory>
#include <optional>

#include "document.h"
#include "gdi_objects.h"
#include "view_geometry.h"

namespace rastrel_view {

/// Hears what happens on a canvas.
class CanvasListener {
  public:
    CanvasListener() = default;
    CanvasListener(const CanvasListener&) = delete;
    CanvasListener& operator=(const CanvasListener&) = delete;
    virtual ~CanvasListener() = default;

    /// The pointer, or what is under it, has moved.
    virtual void OnPointer() = 0;
    virtual void OnZoom() = 0;
};

/// The child window that shows a picture. What it shows stands in a memory bitmap of its size, in
/// which only what is new is drawn: a move draws the strips that come into sight.
class Canvas {
  public:
    Canvas(HWND parent, CanvasListener& listener);
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    ~Canvas();

    [[nodiscard]] HWND Window() const { return window_; }

    /// Shows a picture whole; null: none. The picture is the caller's and must outlive its being
    /// shown.
    void Show(const Document* document);

    /// Whole in the window, and so again whenever the window's size changes, until the next move
    /// or change of zoom.
    void Fit();
    void SetZoom(double zoom);
    /// The next zoom of a round number, about the middle of the window.
    void ZoomBySteps(int steps);
    /// The same about a point of the client area.
    void ZoomAtPoint(int steps, ScreenPoint anchor);
    void Pan(int dx, int dy);
    /// Moves by fractions of what the window shows.
    void PanByPages(double across, double down);

    [[nodiscard]] double Zoom() const { return view_.zoom; }
    /// The pixel under the pointer and the pointer's place in image coordinates; none beside the
    /// image.
    struct Pointed {
        Pixel pixel;
        Point spot;
    };
    [[nodiscard]] std::optional<Pointed> PointedAt() const;

  private:
    static LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wparam,
                                            LPARAM lparam);
    LRESULT Handle(UINT message, WPARAM wparam, LPARAM lparam);
    void OnPaint();
    void OnSize(Size client);
    void OnMouseMove(ScreenPoint point);
    void StartDrag(ScreenPoint point);

    [[nodiscard]] ScreenPoint Middle() const;
    void SetView(const View& view);
    /// Moves what the memory bitmap holds and draws what is new on it.
    void Scroll(int dx, int dy);
    void DrawAll();
    /// Draws a part of the client area into the memory bitmap.
    void Draw(const Box& part);

    CanvasListener& listener_;
    HWND window_ = nullptr;
    const Document* document_ = nullptr;
    Size client_;
    View view_;
    bool is_fitted_ = true;
    std::unique_ptr<MemoryCanvas> back_;
    bool back_is_current_ = false;
    std::optional<ScreenPoint> pointer_;
    std::optional<ScreenPoint> dragged_from_;
};

}  // namespace rastrel_view
