// One affine solution for the process, from control points.

#include <cmath>
#include <mutex>
#include <vector>

#include "api/calls.h"
#include "imaging/affine_fit.h"
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
