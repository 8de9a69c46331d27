#pragma once

#include <png.h>

#include "formats/recovery.h"

namespace rastrel {

/// libpng's state, with a way back into our code for its errors; its warnings are heard by nobody.
class PngCodec {
  public:
    enum class Direction { kRead, kWrite };

    explicit PngCodec(Direction direction);
    PngCodec(const PngCodec&) = delete;
    PngCodec& operator=(const PngCodec&) = delete;
    ~PngCodec();

    /// False without memory: nothing else can be done then.
    [[nodiscard]] bool Ok() const { return png_ != nullptr && info_ != nullptr; }
    [[nodiscard]] png_structp Png() const { return png_; }
    [[nodiscard]] png_infop Info() const { return info_; }
    /// Runs calls of the library, as RunRecoverably does.
    template <class Calls>
    [[nodiscard]] bool Run(const Calls& calls) {
        return RunRecoverably(recovery_, calls);
    }

  private:
    Direction direction_;
    RecoveryPoint recovery_ = {};
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
};

}  // namespace rastrel
