// One affine solution for the process, from control points, and pictures rectified by it.

#include <cmath>
#include <mutex>
#include <vector>

#include "api/calls.h"
#include "imaging/affine_fit.h"
#include "imaging/rectify.h"
#include "rastrel.h"

using namespace rastrel;

namespace {

/// The points and what was calculated from them, for all threads.
class ControlPoints {
  public:
    static ControlPoints& OfProcess() {
        static ControlPoints points;
        return points;
    }
    void Reset() {
        const std::lock_guard lock(mutex_);
        points_.clear();
        solution_.reset();
    }
    [[nodiscard]] std::size_t Add(const ControlPoint& point) {
        const std::lock_guard lock(mutex_);
        points_.push_back(point);
        return points_.size();
    }
    [[nodiscard]] bool Calculate() {
        const std::lock_guard lock(mutex_);
        solution_ = FitAffine(points_);
        return solution_.has_value();
    }
    [[nodiscard]] std::optional<AffineSolution> Solution() const {
        const std::lock_guard lock(mutex_);
        return solution_;
    }

  private:
    mutable std::mutex mutex_;
    std::vector<ControlPoint> points_;
    std::optional<AffineSolution> solution_;
};

int Apply(AffineMap AffineSolution::*direction, double* x, double* y) {
    return Guarded(0, [=] {
        const auto solution = ControlPoints::OfProcess().Solution();
        if (!solution || x == nullptr || y == nullptr) return 0;
        const PlanePoint there = ((*solution).*direction).Apply({*x, *y});
        *x = there.x;
        *y = there.y;
        return 1;
    });
}

/// Completes an order by the solution and does the work.
int Transform(int target, int source, int mode, const RastrelProgress* progress,
              Rectification order) {
    if (mode < 0 || mode >= static_cast<int>(Resampling::kArea)) return 0;
    return MakeImageFrom(target, source, [&](const RasterImage& raster, RasterImage& result) {
        const auto solution = ControlPoints::OfProcess().Solution();
        if (!solution) return false;
        order.to_pixel = solution->to_pixel;
        order.way = static_cast<Resampling>(mode);
        if (progress != nullptr && progress->callback != nullptr)
            order.progress = [progress](double fraction) {
                return progress->callback(fraction, "Rectifying", progress->user) != 0;
            };
        return Rectify(raster, order, result);
    });
}

Rectification Over(double xmin, double ymin, double xmax, double ymax, double cell_size) {
    Rectification order;
    order.box = {xmin, ymin, xmax, ymax};
    order.cell_size = cell_size;
    return order;
}

}  // namespace

int RASTREL_CALL Rastrel_AffineReset(void) {
    return Guarded(0, [] {
        ControlPoints::OfProcess().Reset();
        return 1;
    });
}

int RASTREL_CALL Rastrel_AffineAddControlPoint(double column, double row, double x, double y) {
    return Guarded(0, [=] {
        for (const double value : {column, row, x, y}) {
            if (!std::isfinite(value)) return 0;
        }
        return static_cast<int>(ControlPoints::OfProcess().Add({{column, row}, {x, y}}));
    });
}

int RASTREL_CALL Rastrel_AffineCalculate(void) {
    return Guarded(0, [] { return ControlPoints::OfProcess().Calculate() ? 1 : 0; });
}

int RASTREL_CALL Rastrel_AffineApplicaDiretta(double* column_to_x, double* row_to_y) {
    return Apply(&AffineSolution::to_map, column_to_x, row_to_y);
}

int RASTREL_CALL Rastrel_AffineApplicaInversa(double* x_to_column, double* y_to_row) {
    return Apply(&AffineSolution::to_pixel, x_to_column, y_to_row);
}

int RASTREL_CALL Rastrel_AffineTransform(int target, int source, double xmin, double ymin,
                                         double xmax, double ymax, double cell_size, int mode) {
    return Guarded(0, [=] {
        return Transform(target, source, mode, nullptr, Over(xmin, ymin, xmax, ymax, cell_size));
    });
}

int RASTREL_CALL Rastrel_AffineTransformEx(int target, int source, double xmin, double ymin,
                                           double xmax, double ymax, double cell_size, int mode,
                                           int x, int y, int width, int height,
                                           const RastrelProgress* progress) {
    return Guarded(0, [=] {
        Rectification order = Over(xmin, ymin, xmax, ymax, cell_size);
        order.used = {x, y, width, height};
        return Transform(target, source, mode, progress, order);
    });
}

int RASTREL_CALL Rastrel_AffineTransformExBackColor(int target, int source, double xmin,
                                                    double ymin, double xmax, double ymax,
                                                    double cell_size, int mode, int x, int y,
                                                    int width, int height,
                                                    const RastrelProgress* progress, int red,
                                                    int green, int blue) {
    return Guarded(0, [=] {
        Rectification order = Over(xmin, ymin, xmax, ymax, cell_size);
        order.used = {x, y, width, height};
        order.background = ColorOf(red, green, blue);
        return Transform(target, source, mode, progress, order);
    });
}
